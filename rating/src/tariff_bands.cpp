// The time bands of a tariff: [[band]] entries painted minute by minute on
// the week, so that an overlap or a gap is found, and named, at load.
#include <array>
#include <string>
#include <vector>

#include "tariff_parts.h"

namespace velqua_rating {
namespace {

constexpr int kMinutes = 1440;
constexpr std::array<const char*, 7> kDayNames = {"mon", "tue", "wed", "thu", "fri", "sat", "sun"};
constexpr std::array<const char*, 7> kLongNames = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                                   "Friday", "Saturday", "Sunday"};

int DayIndex(const std::string& name) {
  for (size_t i = 0; i < kDayNames.size(); ++i) {
    if (name == kDayNames[i]) return static_cast<int>(i);
  }
  return -1;
}

std::string Clock(int minute) {
  std::string text = std::to_string(minute / 60);
  if (text.size() < 2) text.insert(0, "0");
  const std::string m = std::to_string(minute % 60);
  return text + ":" + (m.size() < 2 ? "0" + m : m);
}

// "HH:MM" as minutes from midnight; "24:00" only when `end`. -1 if not.
int Minutes(const std::string& text, bool end) {
  if (text.size() != 5 || text[2] != ':') return -1;
  for (size_t i : {0u, 1u, 3u, 4u}) {
    if (text[i] < '0' || text[i] > '9') return -1;
  }
  const int h = (text[0] - '0') * 10 + (text[1] - '0');
  const int m = (text[3] - '0') * 10 + (text[4] - '0');
  if (m > 59 || h > 24 || (h == 24 && (m != 0 || !end))) return -1;
  return h * 60 + m;
}

// The weekdays an entry's `days` names: "mon-fri", "sat", or a list of them.
std::array<bool, 7> Days(const TomlReader& r, const toml::table& entry) {
  std::array<bool, 7> days{};
  const toml::node* node = entry.get("days");
  if (node == nullptr) r.Fail(entry, "'days' is missing (e.g. \"mon-fri\")");
  std::vector<const toml::node*> items;
  if (const auto* list = node->as_array()) {
    for (const auto& item : *list) items.push_back(&item);
  } else {
    items.push_back(node);
  }
  for (const toml::node* item : items) {
    if (!item->is_string()) r.Fail(*item, "'days' must be text such as \"mon-fri\" or \"sat\"");
    const std::string& text = item->as_string()->get();
    const size_t dash = text.find('-');
    const int from = DayIndex(text.substr(0, dash));
    const int to = dash == std::string::npos ? from : DayIndex(text.substr(dash + 1));
    if (from < 0 || to < 0) {
      r.Fail(*item, "'" + text + "' is not a weekday or a range of them (mon ... sun)");
    }
    for (int d = from;; d = (d + 1) % 7) {
      days[static_cast<size_t>(d)] = true;
      if (d == to) break;
    }
  }
  return days;
}

struct Painted {
  int32_t band = -1;
  int64_t line = 0;
};

}  // namespace

void ReadBands(const TomlReader& r, const toml::table& root, Tariff& t) {
  const toml::node* node = root.get("band");
  if (node == nullptr) r.Fail(1, "the tariff has no [[band]]: every call needs a time band");
  const auto* entries = node->as_array();
  if (entries == nullptr || !entries->is_array_of_tables()) {
    r.Fail(*node, "'band' must be a list of [[band]] tables");
  }
  std::vector<Painted> week(7 * kMinutes);
  for (const auto& item : *entries) {
    const toml::table& entry = *item.as_table();
    r.OnlyKeys(entry, {"name", "days", "from", "to"}, "in [[band]]");
    const std::string name = r.Text(entry, "name", true);
    if (name.empty() || name == "all") r.Fail(entry, "a band cannot be named '" + name + "'");
    const auto days = Days(r, entry);
    const int from = Minutes(
        r.Text(entry, "from", false).empty() ? "00:00" : r.Text(entry, "from", false), false);
    const int to =
        Minutes(r.Text(entry, "to", false).empty() ? "24:00" : r.Text(entry, "to", false), true);
    if (from < 0 || to < 0) r.Fail(entry, "'from' and 'to' are times of day, \"HH:MM\"");
    if (from >= to) {
      r.Fail(entry, "band '" + name +
                        "' ends before it starts: write a band that crosses "
                        "midnight as two, one each side of it");
    }
    int32_t band = -1;
    for (size_t i = 0; i < t.bands.size(); ++i) {
      if (t.bands[i] == name) band = static_cast<int32_t>(i);
    }
    if (band < 0) {
      band = static_cast<int32_t>(t.bands.size());
      t.bands.push_back(name);
    }
    const int64_t line = TomlReader::Line(entry);
    for (size_t d = 0; d < 7; ++d) {
      if (!days[d]) continue;
      for (int m = from; m < to; ++m) {
        Painted& p = week[d * kMinutes + static_cast<size_t>(m)];
        if (p.band >= 0) {
          r.Fail(line, "band '" + name + "' overlaps band '" +
                           t.bands[static_cast<size_t>(p.band)] + "' (line " +
                           std::to_string(p.line) + ") on " + kLongNames[d] + " at " + Clock(m));
        }
        p = {band, line};
      }
    }
  }
  for (size_t d = 0; d < 7; ++d) {
    for (int m = 0; m < kMinutes; ++m) {
      const Painted& p = week[d * kMinutes + static_cast<size_t>(m)];
      if (p.band < 0) {
        r.Fail(*node, std::string("no band covers ") + kLongNames[d] + " at " + Clock(m) +
                          ": every minute of the week needs one");
      }
      auto& spans = t.week[d];
      if (spans.empty() || spans.back().band != p.band) {
        spans.push_back({m * 60, (m + 1) * 60, p.band});
      } else {
        spans.back().to = (m + 1) * 60;
      }
    }
  }
}

void ReadHolidays(const TomlReader& r, const toml::table& root, Tariff& t) {
  const toml::node* node = root.get("holidays");
  if (node == nullptr) return;
  const auto* table = node->as_table();
  if (table == nullptr) r.Fail(*node, "'holidays' must be a table of dates and bands");
  for (const auto& [key, value] : *table) {
    int32_t day = 0;
    if (!ReadDate(toml::value<std::string>(std::string(key.str())), day)) {
      r.Fail(value, "'" + std::string(key.str()) + "' is not a date (YYYY-MM-DD)");
    }
    if (!value.is_string()) r.Fail(value, "a holiday's value is the name of its band");
    const std::string& band = value.as_string()->get();
    int32_t index = -1;
    for (size_t i = 0; i < t.bands.size(); ++i) {
      if (t.bands[i] == band) index = static_cast<int32_t>(i);
    }
    if (index < 0) {
      r.Fail(value, "holiday " + std::string(key.str()) + " is in unknown band '" + band + "'");
    }
    t.holidays[day] = index;
  }
}

}  // namespace velqua_rating
