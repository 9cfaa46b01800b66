// Fuzz target: the capture service's TOML configuration
// (velqua/capture/settings.h). Any text is either accepted or refused with a
// SettingsError naming the file, a line and what is wrong; no other
// exception, no crash.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/capture/settings.h"

namespace velqua_fuzz_capture_config {

int Ejecuta(const uint8_t* datos, size_t tam) {
  const std::string text(reinterpret_cast<const char*>(datos), tam);
  try {
    velqua_capture::ParseSettings(text, "fuzz.toml");
  } catch (const velqua_capture::SettingsError& e) {
    if (std::string(e.what()).rfind("fuzz.toml:", 0) != 0) {
      velqua_fuzz::Hallazgo("a refusal that does not name the file");
    }
  }
  return 0;
}

}  // namespace velqua_fuzz_capture_config
