#include "velqua/rating/plan.h"

#include <fstream>
#include <map>
#include <sstream>

#include "toml_reading.h"
#include "velqua/enums.h"

namespace velqua_rating {
namespace {

bool AllDigits(const std::string& s) {
  if (s.empty() || s.size() > 15) return false;
  for (const char c : s) {
    if (c < '0' || c > '9') return false;
  }
  return true;
}

TrunkRange ReadTrunks(const TomlReader& r, const toml::node& node) {
  if (!node.is_string()) r.Fail(node, "a trunk is text: \"T01\" or a range \"1-8\"");
  const std::string& text = node.as_string()->get();
  TrunkRange range;
  const size_t dash = text.find('-');
  if (dash != std::string::npos && AllDigits(text.substr(0, dash)) &&
      AllDigits(text.substr(dash + 1))) {
    range.low = std::stoll(text.substr(0, dash));
    range.high = std::stoll(text.substr(dash + 1));
    if (range.high < range.low) r.Fail(node, "trunk range '" + text + "' ends before it starts");
  } else if (text.empty()) {
    r.Fail(node, "a trunk cannot be empty");
  } else {
    range.name = text;
  }
  return range;
}

NumberRule ReadRule(const TomlReader& r, const toml::table& entry) {
  NumberRule rule;
  if (const toml::node* codes = entry.get("access_codes")) {
    if (!codes->is_array()) r.Fail(*codes, "'access_codes' is a list such as [\"9\"]");
    for (const auto& code : *codes->as_array()) {
      if (!code.is_string() || code.as_string()->get().empty()) {
        r.Fail(code, "an access code is non-empty text such as \"9\"");
      }
      rule.access_codes.push_back(code.as_string()->get());
    }
  }
  if (const toml::node* rewrite = entry.get("rewrite")) {
    if (!rewrite->is_table()) r.Fail(*rewrite, "'rewrite' is a table such as { \"0\" = \"+34\" }");
    for (const auto& [from, to] : *rewrite->as_table()) {
      if (!to.is_string()) r.Fail(to, "a rewrite gives text: \"0\" = \"+34\"");
      rule.rewrites.emplace_back(std::string(from.str()), to.as_string()->get());
    }
  }
  return rule;
}

std::string Folder(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

}  // namespace

bool TrunkRange::Holds(const std::string& trunk) const {
  if (high < low) return trunk == name;
  return AllDigits(trunk) && std::stoll(trunk) >= low && std::stoll(trunk) <= high;
}

RatingPlan RatingPlan::Load(const std::string& text, const std::string& path,
                            const TariffSource& tariffs) {
  const TomlReader r(path);
  const toml::table root = r.Parse(text);
  r.OnlyKeys(root, {"tariff"}, "in the rating plan");
  const toml::node* node = root.get("tariff");
  if (node == nullptr || !node->is_array_of_tables()) {
    r.Fail(node == nullptr ? 1 : TomlReader::Line(*node),
           "a rating plan is a list of [[tariff]] tables");
  }
  std::map<std::string, std::shared_ptr<const Tariff>> loaded;
  RatingPlan plan;
  for (const auto& item : *node->as_array()) {
    const toml::table& entry = *item.as_table();
    r.OnlyKeys(entry, {"switch", "trunks", "from", "file", "access_codes", "rewrite"},
               "in [[tariff]]");
    PlanEntry e;
    e.line = TomlReader::Line(entry);
    e.switch_name = r.Text(entry, "switch", true);
    if (const toml::node* trunks = entry.get("trunks")) {
      if (!trunks->is_array()) r.Fail(*trunks, "'trunks' is a list such as [\"1-4\", \"T9\"]");
      for (const auto& t : *trunks->as_array()) e.trunks.push_back(ReadTrunks(r, t));
    }
    const toml::node* from = entry.get("from");
    if (from != nullptr && !ReadDate(*from, e.from)) r.Fail(*from, "'from' is a date, YYYY-MM-DD");
    if (from == nullptr) e.from = DayNumber(1900, 1, 1);
    e.file = r.Text(entry, "file", true);
    e.rule = ReadRule(r, entry);
    auto& tariff = loaded[e.file];
    if (tariff == nullptr) {
      if (tariffs) {
        tariff = tariffs(e.file);
      } else {
        const std::string file =
            !e.file.empty() && e.file[0] == '/' ? e.file : Folder(path) + e.file;
        tariff = std::make_shared<const Tariff>(LoadTariffFile(file));
      }
      if (tariff == nullptr) r.Fail(entry, "no tariff '" + e.file + "'");
    }
    e.tariff = tariff;
    plan.entries_.push_back(std::move(e));
  }
  return plan;
}

RatingPlan RatingPlan::LoadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw TariffError("cannot read rating plan '" + path + "'");
  std::ostringstream text;
  text << in.rdbuf();
  return Load(text.str(), path);
}

const PlanEntry* RatingPlan::Select(const std::string& switch_name, const std::string& trunk,
                                    int32_t day) const {
  const PlanEntry* best = nullptr;
  bool best_names_trunk = false;
  for (const auto& e : entries_) {
    if (e.switch_name != switch_name || e.from > day) continue;
    bool names_trunk = false;
    if (!e.trunks.empty()) {
      for (const auto& range : e.trunks) names_trunk = names_trunk || range.Holds(trunk);
      if (!names_trunk) continue;
    }
    if (best == nullptr || names_trunk > best_names_trunk ||
        (names_trunk == best_names_trunk && e.from >= best->from)) {
      best = &e;
      best_names_trunk = names_trunk;
    }
  }
  return best;
}

Rated Rater::Rate(const std::string& switch_name, const std::string& trunk,
                  const CallToPrice& call) {
  Rated out;
  if (call.has_date) {
    out.entry = plan_.Select(switch_name, trunk, DayNumber(call.year, call.month, call.day));
  }
  if (out.entry == nullptr) {
    // Calls no carrier charges need no tariff to cost 0.
    if (!IsOutgoing(call.type)) {
      out.priced.status = Priced::Status::kFree;
      out.priced.reason = call.type == velqua::emTradEntrante ? "incoming" : "not charged";
      return out;
    }
    out.priced.reason =
        call.has_date ? "no tariff for switch " + switch_name + " on this date" : "no date";
    return out;
  }
  Normalise(call.dialled, out.entry->rule, number_);
  out.priced = Price(*out.entry->tariff, call, number_);
  return out;
}

}  // namespace velqua_rating
