// Calls: a page of the store's calls in any order, one call with its raw
// record, translation and price, and what is shown as CSV.
#include "api.h"
#include "call_json.h"
#include "call_query.h"
#include "routes.h"
#include "velqua/records/names.h"
#include "velqua/store/aggregates.h"
#include "velqua/store/browse.h"

namespace velqua_web {
namespace {

// A CSV field; one that a spreadsheet would take for a formula ('=', '@')
// is given a leading apostrophe. '+' and '-' stay: numbers dialled begin so.
std::string CsvField(const std::string& text) {
  std::string t = (!text.empty() && (text[0] == '=' || text[0] == '@')) ? "'" + text : text;
  if (t.find_first_of(",\"\r\n") == std::string::npos) return t;
  std::string quoted = "\"";
  for (char c : t) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

std::string Csv(const std::vector<velqua_store::StoredCall>& calls) {
  static const char* const kColumns[] = {"start",       "switch",       "type",      "attribute",
                                         "extension",   "dialled",      "trunk",     "duration",
                                         "ring",        "account_code", "cost",      "currency",
                                         "destination", "person",       "department"};
  std::string out;
  for (const char* c : kColumns) out += std::string(out.empty() ? "" : ",") + c;
  out += "\r\n";
  const auto text = [](const std::optional<std::string>& v) { return v ? CsvField(*v) : ""; };
  const auto number = [](const std::optional<int64_t>& v) {
    return v ? std::to_string(*v) : std::string();
  };
  for (const auto& c : calls) {
    out += text(c.start) + "," + CsvField(c.switch_name) + "," +
           velqua_records::CallTypeWord(c.type) + "," + velqua_records::AttributeWord(c.attribute) +
           "," + text(c.extension) + "," + text(c.dialled) + "," + text(c.trunk) + "," +
           number(c.duration) + "," + number(c.ring) + "," + text(c.account_code) + "," +
           text(c.cost) + "," + text(c.currency) + "," + text(c.destination) + "," +
           text(c.person) + "," + text(c.department) + "\r\n";
  }
  return out;
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
    const velqua_store::CallQuery q = CallQueryOf(r.http);
    const velqua_store::CallPage page = velqua_store::SearchCalls(r.store, q);
    nlohmann::json calls = nlohmann::json::array();
    for (const auto& c : page.calls) calls.push_back(CallJson(c));
    r.Reply({{"calls", calls}, {"offset", q.offset}, {"more", page.more}});
  });
  api.Get("/api/calls/export.csv", Access::kViewer, [](ApiRequest& r) {
    velqua_store::CallQuery q = CallQueryOf(r.http);
    q.offset = 0;
    q.limit = kExportLimit;
    const velqua_store::CallPage page = velqua_store::SearchCalls(r.store, q);
    r.response.set_header("Content-Disposition", "attachment; filename=\"calls.csv\"");
    r.response.set_content(Csv(page.calls), "text/csv; charset=utf-8");
  });
  api.Get(R"(/api/calls/(\d{1,18}))", Access::kViewer, [](ApiRequest& r) {
    const auto call = velqua_store::CallById(r.store, std::stoll(r.http.matches[1]));
    if (!call) throw ApiError(404, "no call " + std::string(r.http.matches[1]));
    nlohmann::json j = CallJson(*call);
    j["destination_class"] = call->destination_class ? *call->destination_class : "";
    j["cost_centre"] = call->cost_centre ? *call->cost_centre : "";
    j["client"] = call->client ? *call->client : "";
    j["project"] = call->project ? *call->project : "";
    r.Reply(j);
  });
}

}  // namespace velqua_web
