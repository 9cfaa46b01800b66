#include "velqua/records/line_cutter.h"

#include <cstring>

namespace velqua_records {

// Two vectorised memchr calls rather than a loop over the bytes.
size_t LineEnd(std::string_view bytes) {
  const char* p = bytes.data();
  const void* lf = std::memchr(p, '\n', bytes.size());
  const size_t k =
      lf != nullptr ? static_cast<size_t>(static_cast<const char*>(lf) - p) : bytes.size();
  const void* cr = std::memchr(p, '\r', k);
  return cr != nullptr ? static_cast<size_t>(static_cast<const char*>(cr) - p) : k;
}

}  // namespace velqua_records
