// Capture: each capture service the server was told of, as `velqua capture
// status` reads it (its configuration and the status file in its spool).
//
// The page counts a source as up when it is connected, as its State column
// says, even when it has been silent longer than its limit: that silence is
// a warning of its own (the source's "silent" and "problem"), not a
// connection down. The summary's count says so.
#include "api.h"
#include "routes.h"
#include "server_state.h"

namespace velqua_web {
namespace {

// The array `key` of `j`, or an empty one.
nlohmann::json Items(const nlohmann::json& j, const char* key) {
  const auto found = j.find(key);
  return found != j.end() && found->is_array() ? *found : nlohmann::json::array();
}

bool Connected(const nlohmann::json& source) {
  for (const nlohmann::json& s : Items(source, "streams")) {
    if (s.is_object() && s.value("state", "") == "connected") return true;
  }
  return false;
}

// Adds "sources": {total, connected, silent}, the counts the service's
// summary words ("2 of 4 sources connected, 1 of them silent longer than
// its limit").
void CountSources(nlohmann::json& service) {
  int total = 0, connected = 0, silent = 0;
  const bool running = service.value("running", false);
  for (const nlohmann::json& sw : Items(service, "switches")) {
    for (const nlohmann::json& source : Items(sw, "sources")) {
      ++total;
      if (!running || !Connected(source)) continue;
      ++connected;
      if (source.value("silent", false)) ++silent;
    }
  }
  service["sources"] = {{"total", total}, {"connected", connected}, {"silent", silent}};
}

}  // namespace

void RegisterCaptureRoutes(Api& api) {
  ServerState& state = api.state();
  api.Get("/api/capture", Access::kViewer, [&state](ApiRequest& r) {
    const ServeOptions& o = state.options;
    nlohmann::json services = nlohmann::json::array();
    if (o.capture_status) {
      for (const std::string& config : o.capture) {
        nlohmann::json service = nlohmann::json::parse(o.capture_status(config), nullptr, false);
        if (service.is_discarded() || !service.is_object()) {
          service = {{"config", config}, {"health", "UNKNOWN"}, {"summary", "unreadable status"}};
        }
        CountSources(service);
        services.push_back(service);
      }
    }
    r.Reply({{"available", static_cast<bool>(o.capture_status)}, {"services", services}});
  });
}

}  // namespace velqua_web
