#include "velqua/rating/pricing.h"

#include <algorithm>

#include "velqua/enums.h"
#include "velqua/rating/money.h"
#include "velqua/records/common.h"

namespace velqua_rating {
namespace {

// Every sum of a call is held exactly in 128 bits: at most 2^31 s x 10^12
// millionths per minute x 10^7 (100 % + markup) x 10^6 x 2 < 2^127.
__extension__ typedef __int128 Wide;

constexpr int64_t kDay = 86400;

// The band in force at `t` (seconds since 1970-01-01, local) and the
// instant it ends.
int32_t BandAt(const Tariff& tariff, int64_t t, int64_t* end) {
  const int64_t day = t >= 0 ? t / kDay : (t - kDay + 1) / kDay;
  const int64_t second = t - day * kDay;
  const auto holiday = tariff.holidays.find(static_cast<int32_t>(day));
  if (holiday != tariff.holidays.end()) {
    *end = (day + 1) * kDay;
    return holiday->second;
  }
  const auto& spans = tariff.week[static_cast<size_t>(Weekday(static_cast<int32_t>(day)))];
  // A day has a handful of spans: a scan is faster than a search.
  for (const auto& span : spans) {
    if (second < span.to) {
      *end = day * kDay + span.to;
      return span.band;
    }
  }
  *end = (day + 1) * kDay;  // unreachable for a loaded tariff: spans cover the day
  return spans.empty() ? 0 : spans.back().band;
}

// Rounds numerator / denominator (both >= 0) half up to an integer.
int64_t RoundHalfUp(Wide numerator, Wide denominator) {
  return static_cast<int64_t>((numerator * 2 + denominator) / (denominator * 2));
}

}  // namespace

bool IsOutgoing(int32_t type) {
  return type == velqua::emTradSaliente || type == velqua::emTradCodigoCuenta ||
         type == velqua::emTradInterTroncal;
}

int64_t Cost(const Tariff& tariff, int32_t rate, int32_t day_number, int32_t time, int32_t seconds,
             int32_t* band) {
  const auto& prices = tariff.rates[static_cast<size_t>(rate)];
  const int64_t start = static_cast<int64_t>(day_number) * kDay + time;
  int64_t end = 0;
  const int32_t first_band = BandAt(tariff, start, &end);
  if (band != nullptr) *band = first_band;
  const BandPrice& p = prices[static_cast<size_t>(first_band)];
  const int64_t increments =
      seconds <= p.first ? 0 : (int64_t{seconds} - p.first + p.increment - 1) / p.increment;
  // sum of charged seconds x price per minute, in millionths x seconds
  Wide charged = Wide{p.first} * p.per_minute;
  if (tariff.mode == Tariff::Mode::kStart) {
    charged += Wide{increments} * p.increment * p.per_minute;
  } else {
    // The increments start at start + first + k x increment, k < increments:
    // those starting before each band change are counted by division, so a
    // long call costs as little as a short one.
    const int64_t base = start + p.first;
    int64_t k = 0;
    while (k < increments) {
      const int32_t b = BandAt(tariff, base + k * p.increment, &end);
      const int64_t upto = std::min(increments, (end - base + p.increment - 1) / p.increment);
      charged += Wide{upto - k} * p.increment * prices[static_cast<size_t>(b)].per_minute;
      k = upto;
    }
  }
  // In millionths / 60 from here on.
  Wide total = Wide{p.connect} * 60 + charged;
  total = std::max(total, Wide{p.minimum} * 60);
  // The markup in ten-thousandths of a percent: 100 % is 10^6.
  total = total * (1000000 + tariff.markup) + Wide{tariff.surcharge} * 60 * 1000000;
  Wide scale = 1;
  for (int32_t i = 0; i < tariff.decimals; ++i) scale *= 10;
  return RoundHalfUp(total * scale, Wide{60} * 1000000 * kMicro);
}

Priced Price(const Tariff& tariff, const CallToPrice& call, std::string_view number) {
  Priced out;
  const bool outgoing = IsOutgoing(call.type);
  const bool incoming = call.type == velqua::emTradEntrante;
  auto free = [&out](const char* why) {
    out.status = Priced::Status::kFree;
    out.reason = why;
    return out;
  };
  if (!outgoing && !(incoming && tariff.price_incoming)) {
    return free(incoming                                    ? "incoming"
                : call.type == velqua::emTradInterExtension ? "internal"
                                                            : "not charged");
  }
  if (call.attribute == velqua::emATRNoContestada) return free("unanswered");
  if (call.duration == 0) return free("0 s");
  if (number.empty()) {
    if (incoming) return free("incoming");
    out.reason = "no dialled number";
    return out;
  }
  const int32_t destination = tariff.prefixes.Find(number);
  if (destination < 0) {
    if (incoming) return free("incoming");
    out.reason = "no tariff for " + std::string(number);
    return out;
  }
  out.destination = destination;
  if (call.duration < 0) {
    out.reason = "no duration";
    return out;
  }
  if (!call.has_date) {
    out.reason = "no date";
    return out;
  }
  const auto& d = tariff.destinations[static_cast<size_t>(destination)];
  out.cost = Cost(tariff, d.rate, DayNumber(call.year, call.month, call.day), call.time,
                  call.duration, &out.band);
  out.status = Priced::Status::kPriced;
  return out;
}

CallToPrice FromRow(const velqua_records::Row& row, std::string& utf8_dialled) {
  CallToPrice call;
  call.type = row.type;
  call.attribute = row.attribute;
  call.has_date = row.HasDate();
  call.year = row.year;
  call.month = row.month;
  call.day = row.day;
  call.time = row.time;
  call.duration = row.duration;
  utf8_dialled.clear();
  velqua_records::AppendUtf8(utf8_dialled, row.dialled);
  call.dialled = utf8_dialled;
  return call;
}

}  // namespace velqua_rating
