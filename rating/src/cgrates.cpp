// CGRateS's CSV tariff plans turned into a Velqua tariff's TOML text.
#include "velqua/rating/cgrates.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <vector>

#include "velqua/rating/money.h"

namespace velqua_rating {
namespace {

struct Line {
  int number = 0;
  std::vector<std::string> fields;
};

struct Table {
  std::string path;
  std::vector<Line> lines;
  [[noreturn]] void Fail(int line, const std::string& reason) const {
    throw TariffError(path + ":" + std::to_string(line) + ": " + reason);
  }
};

std::string Trim(const std::string& s) {
  const size_t a = s.find_first_not_of(" \t\r");
  return a == std::string::npos ? "" : s.substr(a, s.find_last_not_of(" \t\r") - a + 1);
}

// A file of the folder: comma-separated, '#' comment lines, at least
// `fields` fields a line.
Table Read(const std::string& folder, const char* name, size_t fields) {
  Table t{folder + "/" + name, {}};
  std::ifstream in(t.path, std::ios::binary);
  if (!in) throw TariffError("cannot read '" + t.path + "'");
  std::string text;
  for (int n = 1; std::getline(in, text); ++n) {
    text = Trim(text);
    if (text.empty() || text[0] == '#') continue;
    Line line{n, {}};
    std::stringstream parts(text);
    for (std::string f; std::getline(parts, f, ',');) line.fields.push_back(Trim(f));
    if (!text.empty() && text.back() == ',') line.fields.emplace_back();
    if (line.fields.size() < fields) {
      t.Fail(n, "expected " + std::to_string(fields) + " fields, found " +
                    std::to_string(line.fields.size()));
    }
    t.lines.push_back(std::move(line));
  }
  return t;
}

// "60s", "1m", "1h", "0": seconds; -1 when not a whole number of seconds.
int64_t Seconds(const std::string& text) {
  if (text == "0") return 0;
  if (text.size() < 2) return -1;
  const char unit = text.back();
  const int64_t scale = unit == 's' ? 1 : unit == 'm' ? 60 : unit == 'h' ? 3600 : 0;
  const std::string number = text.substr(0, text.size() - 1);
  if (scale == 0 || number.empty() || number.size() > 9 ||
      number.find_first_not_of("0123456789") != std::string::npos) {
    return -1;
  }
  return std::stoll(number) * scale;
}

int64_t Money(const Table& t, const Line& line, size_t field) {
  int64_t micro = 0;
  if (!ParseMicro(line.fields[field], micro)) {
    t.Fail(line.number, "'" + line.fields[field] + "' is not an amount Velqua can hold");
  }
  return micro;
}

// One CGRateS rate (its rows by GroupIntervalStart) as a Velqua price.
BandPrice Price(const Table& rates, const std::string& id) {
  std::vector<const Line*> rows;
  for (const auto& l : rates.lines) {
    if (l.fields[0] == id) rows.push_back(&l);
  }
  if (rows.empty()) throw TariffError(rates.path + ": no rate '" + id + "'");
  std::sort(rows.begin(), rows.end(), [](const Line* a, const Line* b) {
    return Seconds(a->fields[5]) < Seconds(b->fields[5]);
  });
  const Line& first = *rows[0];
  const auto per_minute = [&](const Line& l) {
    const int64_t unit = Seconds(l.fields[3]);
    const int64_t micro = Money(rates, l, 2);
    if (unit <= 0 || (micro * 60) % unit != 0) {
      rates.Fail(l.number, "rate " + id + ": " + l.fields[2] + " per " + l.fields[3] +
                               " is not a whole millionth per minute");
    }
    return micro * 60 / unit;
  };
  BandPrice p;
  p.connect = Money(rates, first, 1);
  p.per_minute = per_minute(first);
  const int64_t increment = Seconds(first.fields[4]);
  if (Seconds(first.fields[5]) != 0 || increment <= 0 || increment > 86400) {
    rates.Fail(first.number, "rate " + id + ": the first row must start at 0s with an increment");
  }
  p.first = p.increment = static_cast<int32_t>(increment);
  if (rows.size() > 2) {
    rates.Fail(rows[2]->number,
               "rate " + id + ": more than two price steps cannot be carried over");
  }
  if (rows.size() == 2) {
    const Line& after = *rows[1];
    const int64_t next = Seconds(after.fields[4]);
    if (Seconds(after.fields[5]) != increment || per_minute(after) != p.per_minute ||
        Money(rates, after, 1) != 0 || next <= 0) {
      rates.Fail(after.number, "rate " + id +
                                   ": a price that changes after the first block cannot be "
                                   "carried over (Velqua charges one price a minute)");
    }
    p.increment = static_cast<int32_t>(next);
  }
  return p;
}

// A RatingPlans weight as exact decimal text, so that two weights compare as
// written: "9007199254740993" above "9007199254740992", "0.30000000000000001"
// above "0.3", however many digits they hold.
struct Weight {
  bool negative = false;
  std::string whole;     // no leading zeros
  std::string fraction;  // no trailing zeros
};

// Reads "[+-]digits[.digits]"; false for anything else (an exponent, text).
bool ParseWeight(const std::string& text, Weight& w) {
  size_t at = 0;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) at = 1;
  const size_t dot = text.find('.', at);
  std::string whole = text.substr(at, dot == std::string::npos ? std::string::npos : dot - at);
  std::string fraction = dot == std::string::npos ? "" : text.substr(dot + 1);
  if ((whole.empty() && fraction.empty()) ||
      whole.find_first_not_of("0123456789") != std::string::npos ||
      fraction.find_first_not_of("0123456789") != std::string::npos) {
    return false;
  }
  whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size()));
  fraction.erase(std::min(fraction.find_last_not_of('0') + 1, fraction.size()));
  w.whole = whole;
  w.fraction = fraction;
  w.negative = text[0] == '-' && !(whole.empty() && fraction.empty());  // -0 is 0
  return true;
}

// -1, 0, 1 as a is below, equal to or above b.
int Compare(const Weight& a, const Weight& b) {
  if (a.negative != b.negative) return a.negative ? -1 : 1;
  int magnitude = 0;
  if (a.whole.size() != b.whole.size()) {
    magnitude = a.whole.size() < b.whole.size() ? -1 : 1;
  } else if (const int c = a.whole.compare(b.whole); c != 0) {
    magnitude = c < 0 ? -1 : 1;
  } else if (const int f = a.fraction.compare(b.fraction); f != 0) {
    magnitude = f < 0 ? -1 : 1;  // no trailing zeros: text order is value order
  }
  return a.negative ? -magnitude : magnitude;
}

// A whole number of at most 9 digits, or -1.
int32_t SmallWhole(const std::string& text) {
  if (text.empty() || text.size() > 9 || text.find_first_not_of("0123456789") != std::string::npos)
    return -1;
  return static_cast<int32_t>(std::stol(text));
}

std::string Quoted(const std::string& s) {
  std::string out = "\"";
  for (const char c : s) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out + '"';
}

const std::array<const char*, 7> kDays = {"mon", "tue", "wed", "thu", "fri", "sat", "sun"};

struct Timing {
  int line = 0;
  std::array<bool, 7> days{};  // Monday first
  int minute = 0;
  std::vector<std::string> dates;  // a holiday timing's dates
};

Timing ReadTiming(const Table& t, const Line& l) {
  Timing timing;
  timing.line = l.number;
  const std::string& years = l.fields[1];
  const std::string& months = l.fields[2];
  const std::string& month_days = l.fields[3];
  const std::string& week_days = l.fields[4];
  std::string time = l.fields[5] == "*asap" ? "00:00:00" : l.fields[5];
  if (time.size() != 8 || time[2] != ':' || time[5] != ':' || time.substr(6) != "00") {
    t.Fail(l.number, "timing " + l.fields[0] + ": starts at '" + l.fields[5] +
                         "'; Velqua's bands start on whole minutes (HH:MM:00)");
  }
  timing.minute = std::stoi(time.substr(0, 2)) * 60 + std::stoi(time.substr(3, 2));
  if (years == "*any" && months == "*any" && month_days == "*any") {
    std::stringstream parts(week_days == "*any" ? "1;2;3;4;5;6;0" : week_days);
    for (std::string d; std::getline(parts, d, ';');) {
      if (d.size() != 1 || d[0] < '0' || d[0] > '7') {
        t.Fail(l.number, "timing " + l.fields[0] + ": '" + d + "' is not a weekday (0-7)");
      }
      timing.days[static_cast<size_t>((d[0] - '0' + 6) % 7)] = true;
    }
    return timing;
  }
  // One year, one month, some days, all day: holidays.
  if (years.size() != 4 || months.find(';') != std::string::npos || week_days != "*any" ||
      timing.minute != 0 || years.find_first_not_of("0123456789") != std::string::npos ||
      months.size() > 2 || months.empty() ||
      months.find_first_not_of("0123456789") != std::string::npos) {
    t.Fail(l.number, "timing " + l.fields[0] +
                         ": recurring months or days cannot be carried over (Velqua's holidays "
                         "are dated days; its bands weekly)");
  }
  std::stringstream parts(month_days);
  for (std::string d; std::getline(parts, d, ';');) {
    if (d.empty() || d.size() > 2 || d.find_first_not_of("0123456789") != std::string::npos) {
      t.Fail(l.number, "timing " + l.fields[0] + ": '" + d + "' is not a day of the month");
    }
    timing.dates.push_back(years + "-" + (months.size() == 1 ? "0" : "") + months + "-" +
                           (d.size() == 1 ? "0" : "") + d);
  }
  return timing;
}

}  // namespace

std::string ImportCgrates(const CgratesImport& o) {
  const Table destinations = Read(o.folder, "Destinations.csv", 2);
  const Table rates = Read(o.folder, "Rates.csv", 6);
  const Table dest_rates = Read(o.folder, "DestinationRates.csv", 5);
  const Table timings_csv = Read(o.folder, "Timings.csv", 6);
  const Table plans = Read(o.folder, "RatingPlans.csv", 4);
  std::set<std::string> plan_ids;
  for (const auto& l : plans.lines) plan_ids.insert(l.fields[0]);
  std::string plan = o.plan;
  if (plan.empty()) {
    if (plan_ids.size() != 1) {
      throw TariffError(plans.path + ": " + std::to_string(plan_ids.size()) +
                        " rating plans: name the one to import");
    }
    plan = *plan_ids.begin();
  } else if (plan_ids.count(plan) == 0) {
    throw TariffError(plans.path + ": no rating plan '" + plan + "'");
  }
  std::map<std::string, Timing> timings;
  for (const auto& l : timings_csv.lines) timings[l.fields[0]] = ReadTiming(timings_csv, l);
  // band (timing tag) -> destination -> (weight, rate tag)
  std::vector<std::string> bands;
  std::map<std::string, std::map<std::string, std::pair<Weight, std::string>>> chosen;
  int32_t decimals = -1;
  for (const auto& p : plans.lines) {
    if (p.fields[0] != plan) continue;
    const std::string& tag = p.fields[2];
    if (timings.count(tag) == 0) plans.Fail(p.number, "no timing '" + tag + "'");
    if (tag == "all") plans.Fail(p.number, "a timing cannot be named 'all'");
    if (std::find(bands.begin(), bands.end(), tag) == bands.end()) bands.push_back(tag);
    Weight weight;
    if (!ParseWeight(p.fields[3], weight)) {
      plans.Fail(p.number, "weight '" + p.fields[3] + "' is not a decimal number");
    }
    bool found = false;
    for (const auto& d : dest_rates.lines) {
      if (d.fields[0] != p.fields[1]) continue;
      found = true;
      if (d.fields[3] != "*middle") {
        dest_rates.Fail(d.number, "rounding " + d.fields[3] +
                                      " cannot be carried over (Velqua rounds half up, *middle)");
      }
      const int32_t places = SmallWhole(d.fields[4]);
      if (places < 0 || places > 6) {
        dest_rates.Fail(
            d.number, "rounding decimals '" + d.fields[4] + "' is not a whole number from 0 to 6");
      }
      if (decimals >= 0 && places != decimals) {
        dest_rates.Fail(d.number, "rounding to " + d.fields[4] +
                                      " decimals where others round to " +
                                      std::to_string(decimals));
      }
      decimals = places;
      if (d.fields.size() > 5 && !d.fields[5].empty() && d.fields[5] != "0") {
        dest_rates.Fail(d.number, "a maximum cost per call cannot be carried over");
      }
      if (d.fields[1] == "*any")
        dest_rates.Fail(d.number, "destination *any cannot be carried over");
      auto& slot = chosen[tag][d.fields[1]];
      const int order = slot.second.empty() ? 1 : Compare(weight, slot.first);
      if (order > 0) {
        slot = {weight, d.fields[2]};
      } else if (order == 0 && slot.second != d.fields[2]) {
        dest_rates.Fail(d.number, "destination " + d.fields[1] +
                                      " has two rates of the same weight in timing " + tag);
      }
    }
    if (!found) plans.Fail(p.number, "no destination rates '" + p.fields[1] + "'");
  }
  if (bands.empty()) throw TariffError(plans.path + ": rating plan '" + plan + "' is empty");
  std::ostringstream toml;
  toml << "# Imported from the CGRateS tariff plan in " << o.folder << ", rating plan " << plan
       << ".\nname = " << Quoted(plan) << "\ncurrency = " << Quoted(o.currency)
       << "\ndecimals = " << (decimals >= 0 ? decimals : o.decimals) << "\nmode = \"split\"\n";
  // Weekly bands: each weekday from its timings' starts; before the first
  // start of a day, the band the day before ended in.
  std::array<std::vector<std::pair<int, std::string>>, 7> starts;
  for (const auto& tag : bands) {
    const Timing& t = timings[tag];
    for (size_t d = 0; d < 7; ++d) {
      if (t.days[d] && t.dates.empty()) starts[d].emplace_back(t.minute, tag);
    }
  }
  for (auto& s : starts) std::sort(s.begin(), s.end());
  for (size_t d = 0; d < 7; ++d) {
    std::string carried;
    for (size_t back = 1; back <= 7 && carried.empty(); ++back) {
      const auto& before = starts[(d + 7 - back) % 7];
      if (!before.empty()) carried = before.back().second;
    }
    if (carried.empty()) throw TariffError(timings_csv.path + ": no timing covers the week");
    std::vector<std::pair<int, std::string>> spans = starts[d];
    if (spans.empty() || spans.front().first > 0) spans.insert(spans.begin(), {0, carried});
    for (size_t i = 0; i < spans.size(); ++i) {
      const int to = i + 1 < spans.size() ? spans[i + 1].first : 1440;
      if (to == spans[i].first) {
        timings_csv.Fail(timings[spans[i].second].line,
                         "two timings start on " + std::string(kDays[d]) + " at the same time");
      }
      char from_text[32], to_text[32];
      std::snprintf(from_text, sizeof from_text, "%02d:%02d", spans[i].first / 60,
                    spans[i].first % 60);
      std::snprintf(to_text, sizeof to_text, "%02d:%02d", to / 60, to % 60);
      toml << "\n[[band]]\nname = " << Quoted(spans[i].second) << "\ndays = \"" << kDays[d]
           << "\"\nfrom = \"" << from_text << "\"\nto = \"" << to_text << "\"\n";
    }
  }
  // A timing of dated days only is a band of holidays only.
  for (const auto& tag : bands) {
    if (!timings[tag].dates.empty())
      toml << "\n[[band]]\nname = " << Quoted(tag) << "\ndays = []\n";
  }
  toml << "\n[holidays]\n";
  for (const auto& tag : bands) {
    for (const auto& date : timings[tag].dates) toml << date << " = " << Quoted(tag) << "\n";
  }
  // A rate per destination, a price per band.
  std::set<std::string> used;
  for (const auto& [tag, dests] : chosen) {
    for (const auto& [dest, rate] : dests) used.insert(dest);
  }
  std::map<std::string, std::vector<std::string>> prefixes;
  std::map<std::string, int> prefix_lines;
  for (const auto& l : destinations.lines) {
    if (used.count(l.fields[0]) == 0) continue;
    const auto [at, added] = prefix_lines.emplace(l.fields[1], l.number);
    if (!added) {
      destinations.Fail(l.number, "prefix " + l.fields[1] + " is given twice, on line " +
                                      std::to_string(at->second) + " and on line " +
                                      std::to_string(l.number));
    }
    prefixes[l.fields[0]].push_back(l.fields[1]);
  }
  for (const auto& dest : used) {
    if (prefixes.count(dest) == 0)
      throw TariffError(destinations.path + ": no destination '" + dest + "'");
    toml << "\n[rate." << Quoted(dest) << "]\n";
    for (const auto& tag : bands) {
      const auto found = chosen[tag].find(dest);
      if (found == chosen[tag].end()) {
        throw TariffError(plans.path + ": destination " + dest + " has no rate in timing " + tag +
                          " of rating plan " + plan);
      }
      const BandPrice p = Price(rates, found->second.second);
      toml << Quoted(tag) << " = { connect = " << Quoted(FormatMicro(p.connect))
           << ", per_minute = " << Quoted(FormatMicro(p.per_minute)) << ", first = " << p.first
           << ", increment = " << p.increment << " }\n";
    }
  }
  for (const auto& dest : used) {
    toml << "\n[[destination]]\nname = " << Quoted(dest)
         << "\nclass = \"national\"  # CGRateS has no classes: set the right one\nrate = "
         << Quoted(dest) << "\nprefixes = [";
    for (size_t i = 0; i < prefixes[dest].size(); ++i) {
      toml << (i ? ", " : "") << Quoted(prefixes[dest][i]);
    }
    toml << "]\n";
  }
  const std::string text = toml.str();
  LoadTariff(text, "(imported from " + o.folder + ")");  // what Velqua refuses, refused now
  return text;
}

}  // namespace velqua_rating
