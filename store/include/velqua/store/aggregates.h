// Totals over a period of calls, computed by the database engine (GROUP BY,
// window functions) rather than by reading calls one by one: what reports
// are made of. Every function reads only; each throws StoreError.
//
// A period is the days [from, to_next) of the calls' local start as the
// switch printed it. Calls without a printed date are never in a period;
// groupings by hour or weekday leave out calls without a printed time too.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "velqua/store/store.h"

namespace velqua_store {

// An extension's days within a span: [from, to_next), "" = unbounded.
struct ExtensionDays {
  std::string extension, from, to_next;
};

struct Span {
  std::string from;         // first day, "YYYY-MM-DD"
  std::string to_next;      // the day after the last, "YYYY-MM-DD"
  std::string switch_name;  // "" = every switch
  // When set, only the calls of these extensions on these days (the
  // members of a department over time); an empty list lets no call in.
  std::optional<std::vector<ExtensionDays>> extensions = std::nullopt;
  // Read the calls themselves, never the store's day summaries (slower; the
  // two agree: this checks that they do).
  bool from_calls = false;
};

// What the calls are grouped by; the key's text in CallCounts::key.
enum class CallGroup {
  kExtension,    // the extension ("" for calls without one)
  kTrunk,        // the trunk; calls without a trunk are left out
  kDay,          // "YYYY-MM-DD"
  kHour,         // "00" ... "23"
  kWeekdayHour,  // "w HH": w is 0 (Sunday) ... 6 (Saturday)
};

// The calls of one group. Unanswered: the transfer attribute says so, of
// any type; incoming, outgoing (account-code calls included) and internal
// count answered calls only, so that the four never overlap.
struct CallCounts {
  std::string key;
  int64_t calls = 0;
  int64_t seconds = 0;  // the durations' sum (talk time)
  int64_t outgoing = 0, incoming = 0, internal = 0, unanswered = 0;
};

// The calls of the span grouped so, in the key's byte order.
std::vector<CallCounts> CountCallsBy(Store& store, const Span& span, CallGroup group);

// Missed calls (incoming and unanswered) of one group: how many, and their
// ring time (calls with a printed ring time: sum, count and the 90th
// percentile by nearest rank).
struct MissedCounts {
  std::string key;
  int64_t missed = 0;
  int64_t ring_calls = 0, ring_seconds = 0, ring_p90 = 0;
};

// kExtension or kHour groupings; in the key's byte order.
std::vector<MissedCounts> CountMissedBy(Store& store, const Span& span, CallGroup group);

// A missed call with a caller's number that was never called back: no
// outgoing call of the same switch to exactly that number from the missed
// call's start to `callback_seconds` after it. (One query finds them all;
// a report groups the few it finds as it needs.)
struct MissedCall {
  std::string start, extension, number;
  int64_t ring = -1;  // -1: not printed
};

// Every missed call of the span with a caller's number that was never
// called back, by start, then extension, then number (each by its bytes).
std::vector<MissedCall> MissedNotCalledBack(Store& store, const Span& span,
                                            int64_t callback_seconds);
// The same calls handed one at a time to `visit`, in the same order, none
// kept: memory stays the same however many there are. The call handed is
// valid during the call of `visit` only.
void ForEachMissedNotCalledBack(Store& store, const Span& span, int64_t callback_seconds,
                                const std::function<void(const MissedCall&)>& visit);

// Trunk lines in use, by half hour. A call holds its trunk from its start
// for its ring time and duration; calls on a trunk with a printed time and
// a length above 0 are counted. For each half hour (`slot`: seconds since
// 1970-01-01T00:00 of the local start, divided by 1800) in which a call
// starts or ends: the most calls at once within it, and the change from its
// start to its end. A half hour without either has the level its
// predecessors leave (the sum of their changes). In slot order.
struct ChannelSlot {
  int64_t slot = 0;
  int64_t peak = 0;
  int64_t change = 0;
};
std::vector<ChannelSlot> ChannelsInUse(Store& store, const Span& span);

// What the calls of a group cost: the sum of their stored prices in one
// currency, in units of 10^-decimals of it (a price kept as "1.25" is 125
// units of 2 decimals).
struct Money {
  std::string currency;
  int32_t decimals = 0;
  int64_t units = 0;
};

// What priced calls are grouped by.
enum class CostGroup {
  kExtension,     // key: the extension ("" for calls without one)
  kTrunk,         // key: the trunk; calls without a trunk are left out
  kExtensionDay,  // key: the extension, day: "YYYY-MM-DD"
  kAccountDay,    // key: the account code, day; calls without one are left out
  kDestination,   // key: the destination, day: its class; calls without one are left out
};

// The calls of a group in one currency (currency "" for calls without a
// price, or priced 0 without a tariff): how many, their talk time, their
// cost, how many the rating plan could not price, and the kinds of call as
// CountCallsBy counts them (so that one pass gives both). A group whose prices
// have several currencies or decimals gives a row for each.
struct CostCounts {
  std::string key, day;
  int64_t calls = 0, seconds = 0;
  Money cost;
  int64_t unpriced = 0;
  int64_t outgoing = 0, incoming = 0, internal = 0, unanswered = 0;  // as CallCounts
};

// The calls of the span grouped so, by key, day, currency and decimals.
std::vector<CostCounts> CostsBy(Store& store, const Span& span, CostGroup group);

// The names of the store's switches, in byte order.
std::vector<std::string> SwitchNames(Store& store);

}  // namespace velqua_store
