#include "call_query.h"

#include "velqua/records/names.h"

namespace velqua_web {
namespace {

// The query string's parameters, as a handler reads them.
struct Params {
  const httplib::Request& http;
  std::string Param(const std::string& name, const std::string& fallback = "") const {
    return QueryParam(http, name, fallback);
  }
  int64_t IntParam(const std::string& name, int64_t fallback, int64_t low, int64_t high) const {
    return QueryInt(http, name, fallback, low, high);
  }
};

std::optional<int32_t> TypeOf(const std::string& word) {
  if (word.empty()) return std::nullopt;
  for (int32_t v = 0; *velqua_records::CallTypeWord(v) != '\0'; ++v) {
    if (word == velqua_records::CallTypeWord(v)) return v;
  }
  throw ApiError(400, "parameter 'type': unknown call type '" + word + "'");
}

velqua_store::CallSort SortOf(const std::string& word) {
  using velqua_store::CallSort;
  static const std::pair<const char*, CallSort> kSorts[] = {
      {"start", CallSort::kStart},         {"duration", CallSort::kDuration},
      {"extension", CallSort::kExtension}, {"number", CallSort::kDialled},
      {"trunk", CallSort::kTrunk},         {"cost", CallSort::kCost}};
  for (const auto& [name, sort] : kSorts) {
    if (word == name) return sort;
  }
  throw ApiError(400, "parameter 'sort': use start, duration, extension, number, trunk or cost");
}

velqua_store::CallQuery QueryOfParams(const Params& r) {
  velqua_store::CallQuery q;
  velqua_store::CallFilter& f = q.filter;
  f.from = r.Param("from");
  f.to = r.Param("to");
  f.switch_name = r.Param("switch");
  f.extension = r.Param("extension");
  f.trunk = r.Param("trunk");
  f.number_prefix = r.Param("number");
  f.account_code = r.Param("account");
  f.type = TypeOf(r.Param("type"));
  if (r.Param("unanswered") == "1") f.attribute = 4;
  if (r.http.has_param("min_duration")) {
    f.min_duration = r.IntParam("min_duration", 0, 0, int64_t{1} << 40);
  }
  q.sort = SortOf(r.Param("sort", "start"));
  const std::string order = r.Param("order", "desc");
  if (order != "asc" && order != "desc") throw ApiError(400, "parameter 'order': asc or desc");
  q.descending = order == "desc";
  q.offset = r.IntParam("offset", 0, 0, int64_t{1} << 40);
  q.limit = r.IntParam("limit", 50, 1, 1000);
  return q;
}

std::optional<int64_t> CostParam(const Params& r, const char* name) {
  const std::string text = r.Param(name);
  if (text.empty()) return std::nullopt;
  const std::optional<int64_t> millionths = MillionthsOf(text);
  if (!millionths) {
    throw ApiError(400, std::string("parameter '") + name +
                            "': expected an amount such as 12.50, got '" + text + "'");
  }
  return millionths;
}

}  // namespace

std::optional<int64_t> MillionthsOf(const std::string& text) {
  size_t i = text.empty() || text[0] != '-' ? 0 : 1;
  const bool negative = i == 1;
  int64_t units = 0, fraction = 0;
  int whole_digits = 0, decimals = 0;
  for (; i < text.size() && text[i] != '.'; ++i) {
    if (text[i] < '0' || text[i] > '9' || ++whole_digits > 12) return std::nullopt;
    units = units * 10 + (text[i] - '0');
  }
  if (whole_digits == 0) return std::nullopt;
  if (i < text.size()) {  // the point
    for (++i; i < text.size(); ++i) {
      if (text[i] < '0' || text[i] > '9' || ++decimals > 6) return std::nullopt;
      fraction = fraction * 10 + (text[i] - '0');
    }
    if (decimals == 0) return std::nullopt;
  }
  for (int d = decimals; d < 6; ++d) fraction *= 10;
  const int64_t value = units * 1000000 + fraction;
  return negative ? -value : value;
}

velqua_store::CallQuery CallQueryOf(const httplib::Request& http) {
  const Params r{http};
  velqua_store::CallQuery q = QueryOfParams(r);
  q.filter.person = r.Param("person");
  q.filter.department = r.Param("department");
  q.filter.min_cost = CostParam(r, "min_cost");
  q.filter.max_cost = CostParam(r, "max_cost");
  return q;
}

}  // namespace velqua_web
