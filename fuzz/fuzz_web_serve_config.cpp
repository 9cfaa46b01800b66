// Fuzz target: serve.toml (velqua_web's LoadServeConfig). Any bytes are
// read into options within their limits, or refused with a ServeError
// naming the file; no other exception, no crash.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/web/server.h"

namespace velqua_fuzz_web_serve_config {

int Run(const uint8_t* data, size_t size) {
  const std::string path = velqua_fuzz::CarpetaTemporal::Ruta() + "/serve.toml";
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  velqua_web::ServeOptions o;
  try {
    velqua_web::LoadServeConfig(path, o);
  } catch (const velqua_web::ServeError& e) {
    if (std::string(e.what()).rfind(path, 0) != 0) {
      velqua_fuzz::Hallazgo("a refusal that does not name the file");
    }
    return 0;
  }
  if (o.threads < 4 || o.connections < 1 || o.body_limit < 1024 || o.session_minutes < 1) {
    velqua_fuzz::Hallazgo("an option read out of its range");
  }
  for (const std::string& capture : o.capture) {
    if (capture.empty()) velqua_fuzz::Hallazgo("an empty capture configuration name");
  }
  return 0;
}

}  // namespace velqua_fuzz_web_serve_config
