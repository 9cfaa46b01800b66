// Fuzz target: the Calls view's query string (velqua_web's CallQueryOf, on
// the HTTP library's parsing of the query). Any query gives a query within
// its limits, or an ApiError 400 naming a parameter; no other exception.
#include <httplib.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "call_query.h"
#include "fuzz_support.h"
#include "targets.h"

namespace velqua_fuzz_web_query {

int Run(const uint8_t* data, size_t size) {
  httplib::Request request;
  httplib::detail::parse_query_text(std::string(reinterpret_cast<const char*>(data), size),
                                    request.params);
  try {
    const velqua_store::CallQuery q = velqua_web::CallQueryOf(request);
    if (q.limit < 1 || q.limit > 1000 || q.offset < 0) {
      velqua_fuzz::Hallazgo("a page out of its limits");
    }
    if (q.filter.min_duration && *q.filter.min_duration < 0) {
      velqua_fuzz::Hallazgo("a negative least duration");
    }
  } catch (const velqua_web::ApiError& e) {
    if (e.status() != 400 || std::string(e.what()).rfind("parameter '", 0) != 0) {
      velqua_fuzz::Hallazgo("a refusal that is not a 400 naming a parameter");
    }
  }
  return 0;
}

}  // namespace velqua_fuzz_web_query
