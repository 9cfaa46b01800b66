// Capture: each capture service the server was told of, as `velqua capture
// status` reads it (its configuration and the status file in its spool).
#include "api.h"
#include "routes.h"
#include "server_state.h"

namespace velqua_web {

void RegisterCaptureRoutes(Api& api) {
  ServerState& state = api.state();
  api.Get("/api/capture", Access::kViewer, [&state](ApiRequest& r) {
    const ServeOptions& o = state.options;
    nlohmann::json services = nlohmann::json::array();
    if (o.capture_status) {
      for (const std::string& config : o.capture) {
        nlohmann::json service = nlohmann::json::parse(o.capture_status(config), nullptr, false);
        if (service.is_discarded()) {
          service = {{"config", config}, {"health", "UNKNOWN"}, {"summary", "unreadable status"}};
        }
        services.push_back(service);
      }
    }
    r.Reply({{"available", static_cast<bool>(o.capture_status)}, {"services", services}});
  });
}

}  // namespace velqua_web
