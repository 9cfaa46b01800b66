// What a person browsing the store asks of it (the web page): a page of
// calls in any order, one call by its number, what arrived since a moment,
// and costs summed by a directory column or destination. Every function
// reads only; each throws StoreError, and velqua_records::Failure for a
// malformed date in a filter.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "velqua/store/aggregates.h"
#include "velqua/store/store.h"

namespace velqua_store {

// What a page of calls is sorted by; ties by the call's number.
enum class CallSort { kStart, kDuration, kExtension, kDialled, kTrunk, kCost };

struct CallQuery {
  CallFilter filter;  // its limit is not used
  CallSort sort = CallSort::kStart;
  bool descending = true;  // newest (longest, dearest ...) first
  int64_t offset = 0;      // calls skipped
  int64_t limit = 50;      // calls on the page
};

struct CallPage {
  std::vector<StoredCall> calls;
  bool more = false;  // calls follow the page
};

CallPage SearchCalls(Store& store, const CallQuery& query);

// The call of that number (StoredCall::id), if stored.
std::optional<StoredCall> CallById(Store& store, int64_t id);

// The highest call and unrecognised-record numbers (0: none): where a
// watcher of new arrivals starts.
struct ArrivalMark {
  int64_t call = 0;
  int64_t unrecognised = 0;
};
ArrivalMark LatestArrival(Store& store);

// The calls and unrecognised records stored after the mark, oldest first,
// at most `limit` of each, and the mark after them. Cheap when nothing
// arrived: two index look-ups.
struct UnrecognisedArrival {
  int64_t id = 0;
  StoredUnrecognised record;
};
struct Arrivals {
  std::vector<StoredCall> calls;
  std::vector<UnrecognisedArrival> unrecognised;
  ArrivalMark mark;
};
Arrivals ArrivedAfter(Store& store, const ArrivalMark& mark, int64_t limit);

// Priced calls of a span grouped by what `by` names, with their summed cost
// as exact decimal text (per currency: a group whose calls are priced in
// two currencies is two rows). Dearest first. Calls kept at 0 without a
// currency (no tariff priced them) and, by destination, calls without one
// are left out. Read from the day summaries unless span.from_calls.
enum class CostKey { kDepartment, kDestination, kExtension, kAll };  // kAll: key ""
struct CostTotal {
  std::string key;  // "" for calls without one
  std::string currency;
  int64_t calls = 0;
  std::string cost;  // "12.35"
};
std::vector<CostTotal> SumCostBy(Store& store, const Span& span, CostKey by);

// The rating plan and tariffs in force, as PutRatingPlan kept them: the plan
// first, then the tariffs by name.
struct RatingFile {
  std::string name, kind;  // kind: "plan" or "tariff"
  std::string content, loaded_utc;
};
std::vector<RatingFile> RatingFiles(Store& store);

// The local start day ("YYYY-MM-DD") of the newest call, or "" for none.
std::string LatestCallDay(Store& store);

}  // namespace velqua_store
