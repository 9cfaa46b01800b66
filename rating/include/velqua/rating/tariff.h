// A tariff: what a carrier charges for a call, as a user writes it by hand
// (doc/rating.md): destinations by number prefix, a rate per destination and
// time band, the bands by weekday and time of day, holidays, the currency,
// markup and surcharge. LoadTariff checks everything once, so that pricing a
// call never meets a question the tariff cannot answer.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "velqua/rating/prefix_table.h"
#include "velqua/records/common.h"

namespace velqua_rating {

// A tariff refused at load: "<file>:<line>: <reason>". Nothing was loaded.
class TariffError : public velqua_records::Failure {
 public:
  using Failure::Failure;
};

// The classes a destination belongs to, for reports and for the rule that a
// call to an emergency number is never unpriced.
enum class DestinationClass : uint8_t {
  kLocal,
  kNational,
  kMobile,
  kInternational,
  kTollFree,
  kPremium,
  kEmergency,
  kInternal,
};

// "local", "national", "mobile", "international", "toll-free", "premium",
// "emergency", "internal".
const char* ClassName(DestinationClass c);

// What one destination costs in one band. Money in millionths.
struct BandPrice {
  int64_t connect = 0;     // charged once for an answered call of 1 s or more
  int64_t per_minute = 0;  // for every charged second, / 60
  int32_t first = 60;      // the first block, in seconds (at least 1)
  int32_t increment = 60;  // the blocks after it, in seconds (at least 1)
  int64_t minimum = 0;     // the least a call of 1 s or more costs
};

struct Destination {
  std::string name;
  DestinationClass klass = DestinationClass::kNational;
  int32_t rate = 0;  // index into Tariff::rates
};

// A stretch of one weekday in one band, in seconds from midnight.
struct BandSpan {
  int32_t from = 0, to = 0;  // [from, to)
  int32_t band = 0;
};

struct Tariff {
  enum class Mode : uint8_t {
    kStart,  // the band in force when the call starts prices all of it
    kSplit,  // each charged block in the band in force when it starts
  };

  std::string name;
  std::string version;
  std::string currency;  // "EUR"
  int32_t decimals = 2;  // of the currency, 0 to 6
  Mode mode = Mode::kStart;
  int64_t markup = 0;           // ten-thousandths of a percent (12.5 % = 125000)
  int64_t surcharge = 0;        // millionths, added to every priced call
  bool price_incoming = false;  // answered incoming calls priced by their number

  std::vector<std::string> bands;  // band names; a band is its index here
  // Each weekday (0 = Monday) covered from 0 to 86400 s without gap or overlap.
  std::array<std::vector<BandSpan>, 7> week;
  std::unordered_map<int32_t, int32_t> holidays;  // day number (DayNumber) -> band
  std::vector<std::vector<BandPrice>> rates;      // [rate][band]
  std::vector<std::string> rate_names;
  std::vector<Destination> destinations;
  PrefixTable prefixes;  // normalised number prefix -> destination index
};

// Reads a tariff from its text; `path` names it in errors. Throws
// TariffError "<path>:<line>: <reason>" for a syntax error, an unknown key,
// band, rate or class, a negative or malformed price, overlapping bands, a
// weekday time no band covers, a holiday in an unknown band, or a prefix
// given twice (both lines named).
Tariff LoadTariff(const std::string& text, const std::string& path);

// LoadTariff on a file's content; a file that cannot be read is a TariffError.
Tariff LoadTariffFile(const std::string& path);

// Days since 1970-01-01 of a date of the proleptic Gregorian calendar.
int32_t DayNumber(int32_t year, int32_t month, int32_t day);
// 0 = Monday ... 6 = Sunday of a DayNumber.
int32_t Weekday(int32_t day_number);

}  // namespace velqua_rating
