// The libFuzzer entry point of one target, the function VELQUA_FUZZ_TARGET
// names (set per program by fuzz/CMakeLists.txt).
#include "targets.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  return VELQUA_FUZZ_TARGET(data, size);
}
