// Fuzz target: the web server's Cookie header reader (velqua_web's
// CookieValue). Any header gives a value that is a piece of the header
// without a ';', for the session cookie and for a name it is given.
#include <cstddef>
#include <cstdint>
#include <string>

#include "auth.h"
#include "fuzz_support.h"
#include "targets.h"

namespace velqua_fuzz_web_cookie {

int Run(const uint8_t* data, size_t size) {
  const std::string header(reinterpret_cast<const char*>(data), size);
  for (const std::string& name : {std::string(velqua_web::kSessionCookie), std::string("a")}) {
    const std::string value = velqua_web::CookieValue(header, name);
    if (value.find(';') != std::string::npos) velqua_fuzz::Hallazgo("a value across a ';'");
    if (!value.empty() && header.find(name + "=" + value) == std::string::npos) {
      velqua_fuzz::Hallazgo("a value that is not the header's");
    }
  }
  return 0;
}

}  // namespace velqua_fuzz_web_cookie
