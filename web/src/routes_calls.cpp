// The calls of the store, filtered as `velqua calls` filters them.
#include "api.h"
#include "call_json.h"
#include "routes.h"
#include "velqua/records/names.h"
#include "velqua/store/aggregates.h"

namespace velqua_web {
namespace {

std::optional<int32_t> TypeOf(const std::string& word) {
  if (word.empty()) return std::nullopt;
  for (int32_t v = 0; *velqua_records::CallTypeWord(v) != '\0'; ++v) {
    if (word == velqua_records::CallTypeWord(v)) return v;
  }
  throw ApiError(400, "parameter 'type': unknown call type '" + word + "'");
}

velqua_store::CallFilter FilterOf(const ApiRequest& r) {
  velqua_store::CallFilter f;
  f.from = r.Param("from");
  f.to = r.Param("to");
  f.switch_name = r.Param("switch");
  f.extension = r.Param("extension");
  f.trunk = r.Param("trunk");
  f.number_prefix = r.Param("number");
  f.account_code = r.Param("account");
  f.type = TypeOf(r.Param("type"));
  f.limit = r.IntParam("limit", 100, 1, 1000);
  return f;
}

}  // namespace

void RegisterSwitchRoutes(Api& api) {
  api.Get("/api/switches", Access::kViewer, [](ApiRequest& r) {
    nlohmann::json list = nlohmann::json::array();
    for (const std::string& name : velqua_store::SwitchNames(r.store)) {
      list.push_back({{"name", name},
                      {"calls", r.store.CountCalls(name)},
                      {"unrecognised", r.store.CountUnrecognised(name)}});
    }
    r.Reply(list);
  });
}

void RegisterCallRoutes(Api& api) {
  api.Get("/api/calls", Access::kViewer, [](ApiRequest& r) {
    nlohmann::json calls = nlohmann::json::array();
    r.store.ListCalls(FilterOf(r),
                      [&](const velqua_store::StoredCall& c) { calls.push_back(CallJson(c)); });
    r.Reply({{"calls", calls}});
  });
}

}  // namespace velqua_web
