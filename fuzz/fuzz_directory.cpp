// Fuzz target: the directory's CSV reader (velqua/rating/directory.h). Any
// bytes are either read, every row with its key, or refused with a
// TariffError naming the file and a line; no other exception, no crash.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/rating/directory.h"

namespace velqua_fuzz_directory {

int Ejecuta(const uint8_t* datos, size_t tam) {
  const std::string text(reinterpret_cast<const char*>(datos), tam);
  try {
    for (const auto& entry : velqua_rating::ReadDirectory(text, "fuzz.csv")) {
      if (entry.key.empty()) velqua_fuzz::Hallazgo("a row read without its key");
    }
  } catch (const velqua_rating::TariffError& e) {
    if (std::string(e.what()).rfind("fuzz.csv:", 0) != 0) {
      velqua_fuzz::Hallazgo("a refusal that does not name the file");
    }
  }
  return 0;
}

}  // namespace velqua_fuzz_directory
