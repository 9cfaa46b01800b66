// A tariff's TOML text read into a Tariff (doc/rating.md has the format).
#include <fstream>
#include <sstream>
#include <unordered_map>

#include "tariff_parts.h"
#include "velqua/rating/money.h"

namespace velqua_rating {
namespace {

constexpr const char* kClassNames[] = {"local",     "national", "mobile",    "international",
                                       "toll-free", "premium",  "emergency", "internal"};

void ReadHeader(const TomlReader& r, const toml::table& root, Tariff& t) {
  r.OnlyKeys(root,
             {"name", "version", "currency", "decimals", "mode", "markup_percent", "surcharge",
              "price_incoming", "band", "holidays", "rate", "destination"},
             "in the tariff");
  t.name = r.Text(root, "name", true);
  t.version = r.Text(root, "version", false);
  t.currency = r.Text(root, "currency", true);
  if (t.currency.empty()) r.Fail(*root.get("currency"), "'currency' is empty");
  t.decimals = static_cast<int32_t>(r.Integer(root, "decimals", 0, 6, 2));
  const std::string mode = r.Text(root, "mode", false);
  if (mode == "split") {
    t.mode = Tariff::Mode::kSplit;
  } else if (mode != "start" && !mode.empty()) {
    r.Fail(*root.get("mode"), "'mode' is \"start\" or \"split\", not \"" + mode + "\"");
  }
  if (const toml::node* markup = root.get("markup_percent")) {
    const std::string text = markup->is_string() ? markup->as_string()->get() : "";
    if (!text.empty() && text[0] == '-') r.Fail(*markup, "negative markup: " + text);
    if (!ParsePercent(text, t.markup)) {
      r.Fail(*markup, "'markup_percent' is quoted decimal text, at most 4 decimals and 1000");
    }
  }
  t.surcharge = r.Money(root, "surcharge", 0);
  t.price_incoming = r.Flag(root, "price_incoming", false);
}

BandPrice ReadPrice(const TomlReader& r, const toml::node& node, const std::string& where) {
  const auto* table = node.as_table();
  if (table == nullptr) {
    r.Fail(node, where + " must be a table: { connect = \"0.05\", per_minute = \"0.02\", ... }");
  }
  r.OnlyKeys(*table, {"connect", "per_minute", "first", "increment", "minimum"}, "in " + where);
  if (table->get("per_minute") == nullptr) r.Fail(node, where + " has no 'per_minute'");
  BandPrice p;
  p.connect = r.Money(*table, "connect", 0);
  p.per_minute = r.Money(*table, "per_minute", 0);
  p.first = static_cast<int32_t>(r.Integer(*table, "first", 1, 86400, 60));
  p.increment = static_cast<int32_t>(r.Integer(*table, "increment", 1, 86400, 60));
  p.minimum = r.Money(*table, "minimum", 0);
  return p;
}

void ReadRates(const TomlReader& r, const toml::table& root, Tariff& t) {
  const toml::node* node = root.get("rate");
  if (node == nullptr) r.Fail(1, "the tariff has no [rate.NAME]: destinations need prices");
  const auto* rates = node->as_table();
  if (rates == nullptr) r.Fail(*node, "'rate' must be tables [rate.NAME]");
  for (const auto& [key, value] : *rates) {
    const std::string name(key.str());
    const auto* bands = value.as_table();
    if (bands == nullptr) r.Fail(value, "rate '" + name + "' must be a table of band prices");
    std::vector<BandPrice> prices(t.bands.size());
    std::vector<bool> set(t.bands.size(), false);
    const toml::node* all = nullptr;
    for (const auto& [band, price] : *bands) {
      const std::string band_name(band.str());
      const std::string where = "rate '" + name + "' band '" + band_name + "'";
      if (band_name == "all") {
        all = &price;
        continue;
      }
      size_t i = 0;
      while (i < t.bands.size() && t.bands[i] != band_name) ++i;
      if (i == t.bands.size())
        r.Fail(price, "unknown band '" + band_name + "' in rate '" + name + "'");
      prices[i] = ReadPrice(r, price, where);
      set[i] = true;
    }
    for (size_t i = 0; i < prices.size(); ++i) {
      if (set[i]) continue;
      if (all == nullptr) {
        r.Fail(value, "rate '" + name + "' has no price for band '" + t.bands[i] +
                          "' (give it one, or 'all')");
      }
      prices[i] = ReadPrice(r, *all, "rate '" + name + "' band 'all'");
    }
    t.rate_names.push_back(name);
    t.rates.push_back(std::move(prices));
  }
}

// A prefix as written, without spaces or dashes; "" when it holds a
// character no number can.
std::string CleanPrefix(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == ' ' || c == '-') continue;
    if (!PrefixTable::Accepts(c)) return "";
    out.push_back(c);
  }
  return out;
}

void ReadDestinations(const TomlReader& r, const toml::table& root, Tariff& t) {
  const toml::node* node = root.get("destination");
  if (node == nullptr) r.Fail(1, "the tariff has no [[destination]]");
  const auto* entries = node->as_array();
  if (entries == nullptr || !entries->is_array_of_tables()) {
    r.Fail(*node, "'destination' must be a list of [[destination]] tables");
  }
  std::unordered_map<std::string, int64_t> lines;  // prefix -> line it was given on
  for (const auto& item : *entries) {
    const toml::table& entry = *item.as_table();
    r.OnlyKeys(entry, {"name", "class", "rate", "prefixes"}, "in [[destination]]");
    Destination d;
    d.name = r.Text(entry, "name", true);
    const std::string klass = r.Text(entry, "class", true);
    size_t c = 0;
    while (c < std::size(kClassNames) && klass != kClassNames[c]) ++c;
    if (c == std::size(kClassNames)) {
      r.Fail(*entry.get("class"), "unknown class '" + klass +
                                      "' (local, national, mobile, international, toll-free, "
                                      "premium, emergency, internal)");
    }
    d.klass = static_cast<DestinationClass>(c);
    std::string rate = r.Text(entry, "rate", false);
    if (rate.empty()) rate = klass;
    size_t i = 0;
    while (i < t.rate_names.size() && t.rate_names[i] != rate) ++i;
    if (i == t.rate_names.size()) {
      r.Fail(
          entry.get("rate") != nullptr ? *entry.get("rate") : static_cast<const toml::node&>(entry),
          "unknown rate '" + rate + "' for destination '" + d.name + "'");
    }
    d.rate = static_cast<int32_t>(i);
    const auto index = static_cast<int32_t>(t.destinations.size());
    const toml::node* prefixes = entry.get("prefixes");
    if (prefixes == nullptr || !prefixes->is_array() || prefixes->as_array()->empty()) {
      r.Fail(entry, "destination '" + d.name + "' needs 'prefixes', a list of number prefixes");
    }
    for (const auto& p : *prefixes->as_array()) {
      const std::string prefix = p.is_string() ? CleanPrefix(p.as_string()->get()) : "";
      if (prefix.empty()) {
        r.Fail(p, "a prefix is quoted text of digits, '+', '*' or '#'");
      }
      const int64_t line = TomlReader::Line(p);
      const auto [at, added] = lines.emplace(prefix, line);
      if (!added) {
        r.Fail(line, "prefix " + prefix + " is given twice, on line " + std::to_string(at->second) +
                         " and on line " + std::to_string(line));
      }
      t.prefixes.Add(prefix, index);
    }
    t.destinations.push_back(std::move(d));
  }
}

}  // namespace

const char* ClassName(DestinationClass c) { return kClassNames[static_cast<size_t>(c)]; }

int32_t DayNumber(int32_t year, int32_t month, int32_t day) {
  // Days from civil, counted in eras of 400 years from 1 March 0000.
  year -= month <= 2 ? 1 : 0;
  const int32_t era = (year >= 0 ? year : year - 399) / 400;
  const int32_t yoe = year - era * 400;
  const int32_t doy = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
  const int32_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

int32_t Weekday(int32_t day_number) {
  // 1970-01-01 was a Thursday (3 counting from Monday).
  const int32_t w = (day_number + 3) % 7;
  return w < 0 ? w + 7 : w;
}

Tariff LoadTariff(const std::string& text, const std::string& path) {
  const TomlReader r(path);
  const toml::table root = r.Parse(text);
  Tariff t;
  ReadHeader(r, root, t);
  ReadBands(r, root, t);
  ReadHolidays(r, root, t);
  ReadRates(r, root, t);
  ReadDestinations(r, root, t);
  return t;
}

Tariff LoadTariffFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw TariffError("cannot read tariff '" + path + "'");
  std::ostringstream text;
  text << in.rdbuf();
  return LoadTariff(text.str(), path);
}

}  // namespace velqua_rating
