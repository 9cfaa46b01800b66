// A month of calls made up for the reports' tests, with what every report
// must say about it worked out here from the calls themselves (loops over
// the list, never the store), so that a report's SQL is checked against an
// independent count.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "velqua/store/store.h"

namespace velqua_reports_testing {

struct GenCall {
  int64_t start = 0;  // seconds since 1970-01-01T00:00 of the local start
  int32_t type = 0;   // 1 incoming, 2 outgoing, 3 internal
  bool unanswered = false;
  int64_t duration = 0, ring = 0;
  std::string extension, trunk, number;
  std::string account;  // account code, "" = none
};

// March 2026 and a few calls either side of it (the last evening of
// February, the first minutes of April).
std::vector<GenCall> GenerateMonth(int calls, uint32_t seed);

// A call as the store record at `position` of a source.
velqua_store::Record RecordOf(const GenCall& call, int64_t position);

// The calls as store records, written in batches to a new source of
// switch `switch_name`.
void WriteCalls(velqua_store::Store& store, const std::string& switch_name,
                const std::vector<GenCall>& calls);

// "YYYY-MM-DDTHH:MM:SS" of a GenCall start.
std::string StartText(int64_t start);

struct Counts {
  int64_t calls = 0, seconds = 0, outgoing = 0, incoming = 0, internal = 0, unanswered = 0;
};
struct Missed {
  int64_t missed = 0, not_called_back = 0;
  std::vector<int64_t> rings;
};

// What the reports of the days [from, to) (day numbers since 1970) say.
struct Expected {
  std::map<std::string, Counts> by_extension, by_trunk, by_day;
  std::map<std::string, Missed> missed_by_extension, missed_by_hour;
  int64_t weekday_hour[7][24] = {};   // Monday first
  std::vector<int64_t> lines_in_use;  // per half hour of the period
};
Expected Expect(const std::vector<GenCall>& calls, int64_t from_day, int64_t to_day,
                int64_t callback_seconds);

}  // namespace velqua_reports_testing
