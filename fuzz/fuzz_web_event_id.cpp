// Fuzz target: the Last-Event-ID header a reconnecting live page sends
// (velqua_web's LastEventId). Any header gives the fallback or the number
// it spells, never a negative one, never an exception.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_support.h"
#include "live_feed.h"
#include "targets.h"

namespace velqua_fuzz_web_event_id {

int Run(const uint8_t* data, size_t size) {
  const std::string header(reinterpret_cast<const char*>(data), size);
  const int64_t id = velqua_web::LastEventId(header, -7);
  if (id == -7) return 0;
  if (id < 0) velqua_fuzz::Hallazgo("a negative feed number");
  if (std::to_string(id) != header.substr(header.find_first_not_of('0') == std::string::npos
                                              ? header.size() - 1
                                              : header.find_first_not_of('0'))) {
    velqua_fuzz::Hallazgo("a number the header does not spell");
  }
  return 0;
}

}  // namespace velqua_fuzz_web_event_id
