// Which tariff prices which call: a rating plan (a TOML file, doc/rating.md)
// lists tariffs per switch, optionally per trunk or group of trunks (two
// carriers on one switch), each effective from a date, each with the rule
// that brings the switch's dialled numbers to the tariff's form.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "velqua/rating/number.h"
#include "velqua/rating/pricing.h"
#include "velqua/rating/tariff.h"

namespace velqua_rating {

// Trunks as a plan names them: one name ("T01") or a range of numbers
// ("1-8", compared as numbers, so "05" is in it).
struct TrunkRange {
  std::string name;            // exact trunk name when not a range
  int64_t low = 0, high = -1;  // a range when high >= low
  bool Holds(const std::string& trunk) const;
};

struct PlanEntry {
  std::string switch_name;
  std::vector<TrunkRange> trunks;  // empty: every trunk of the switch
  int32_t from = 0;                // DayNumber the entry applies from
  std::string file;                // the tariff as named in the plan
  std::shared_ptr<const Tariff> tariff;
  NumberRule rule;
  int64_t line = 0;  // in the plan file
};

// Gives the tariff a plan names in `file` (relative names already resolved).
using TariffSource = std::function<std::shared_ptr<const Tariff>(const std::string& file)>;

class RatingPlan {
 public:
  // Reads a plan; each tariff it names comes from `tariffs` (default: read
  // from the file, relative to the plan's folder; each file once). Throws
  // TariffError "<file>:<line>: <reason>" for the plan's faults and the
  // tariffs' own.
  static RatingPlan Load(const std::string& text, const std::string& path,
                         const TariffSource& tariffs = nullptr);
  static RatingPlan LoadFile(const std::string& path);

  // The entry pricing a call of `switch_name` over `trunk` on `day`: among
  // the switch's entries in force on that day (the latest `from` not after
  // it), one naming the trunk wins over one for every trunk. nullptr: none.
  const PlanEntry* Select(const std::string& switch_name, const std::string& trunk,
                          int32_t day) const;

  const std::vector<PlanEntry>& entries() const { return entries_; }

 private:
  std::vector<PlanEntry> entries_;
};

// A call priced through a plan: the entry and tariff used (nullptr when
// none applies), and the price.
struct Rated {
  const PlanEntry* entry = nullptr;
  Priced priced;
};

// Prices calls through a plan. One Rater per thread: it keeps a buffer.
class Rater {
 public:
  explicit Rater(const RatingPlan& plan) : plan_(plan) {}

  // A call without a printed date is unpriced ("no date"): no tariff can be
  // chosen for it.
  Rated Rate(const std::string& switch_name, const std::string& trunk, const CallToPrice& call);

  // The number as the last Rate matched it.
  const std::string& number() const { return number_; }

 private:
  const RatingPlan& plan_;
  std::string number_;
};

}  // namespace velqua_rating
