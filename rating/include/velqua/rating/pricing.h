// The price of one call under one tariff (doc/rating.md, "The arithmetic").
//
// Charged seconds: the first block when the call is no longer than it, else
// the first block plus the rest rounded up to whole increments. Cost =
// connect fee + charged seconds x price per minute / 60, at least the
// minimum charge, then the markup, then the surcharge, rounded half up once
// to the currency's decimals. Everything before that rounding is an exact
// integer fraction.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "velqua/rating/tariff.h"
#include "velqua/records/call_row.h"

namespace velqua_rating {

// What pricing needs of a call: its local start, duration, type and number.
struct CallToPrice {
  int32_t type = 0;       // emTipoLlamadaTraductor
  int32_t attribute = 0;  // emAtributoTraductor
  bool has_date = true;   // false: the switch printed no date
  int32_t year = 0, month = 0, day = 0;
  int32_t time = 0;          // seconds from midnight
  int32_t duration = -1;     // seconds; negative: not printed
  std::string_view dialled;  // as printed, UTF-8
};

struct Priced {
  enum class Status : uint8_t {
    kPriced,    // `cost` is what the tariff charges
    kFree,      // costs 0 by rule: incoming, internal, unanswered, 0 s
    kUnpriced,  // cannot be priced: `reason` says why; the cost is unknown
  };
  Status status = Status::kUnpriced;
  int64_t cost = 0;          // in 10^-decimals of the currency
  int32_t destination = -1;  // index into Tariff::destinations, or -1
  int32_t band = -1;         // band at the call's start, or -1
  std::string reason;        // kFree and kUnpriced: why, in a few words
};

// Whether a call of this type is charged by the carrier that carried it:
// outgoing, account-code and trunk-to-trunk calls.
bool IsOutgoing(int32_t type);

// Prices `call` under `tariff`; `number` is its dialled number already
// normalised (Normalise). Never throws.
Priced Price(const Tariff& tariff, const CallToPrice& call, std::string_view number);

// The cost of `seconds` (> 0) of a call starting on `day_number` at `time`
// in `rate` of `tariff`, in 10^-decimals of the currency, with the band at
// the start in `band`. Price's arithmetic, for callers that have matched
// the destination themselves.
int64_t Cost(const Tariff& tariff, int32_t rate, int32_t day_number, int32_t time, int32_t seconds,
             int32_t* band = nullptr);

// A row's call, its texts viewed in `utf8_dialled` (which the caller keeps).
CallToPrice FromRow(const velqua_records::Row& row, std::string& utf8_dialled);

}  // namespace velqua_rating
