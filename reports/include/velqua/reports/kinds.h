// The kinds of report and what each reads from the store. A kind is built
// from aggregates the database computes (velqua/store/aggregates.h), never
// from the calls read one by one, so that a month of a large store is read
// in one pass of its index on the start.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "velqua/reports/report.h"
#include "velqua/store/store.h"

namespace velqua_reports {

struct Request {
  std::string kind;                      // extensions, departments, accounts, trunks ...
  std::string from, to;                  // "YYYY-MM-DD", both included
  std::string switch_name;               // "" = every switch
  std::string department;                // only its extensions' calls; "" = every call
  int64_t lines = 0;                     // trunks: the lines the user has; 0 = not stated
  int64_t callback_seconds = 24 * 3600;  // missed: the callback window
  std::string itemised;                  // extensions: one extension's calls, one by one
  std::string of;                        // compare: the kind compared (default extensions)
  int64_t top = 20;                      // destinations: how many are listed
  std::string by = "cost";               // destinations: ranked by cost, minutes or calls
  bool from_calls = false;               // sum the calls, not the store's day summaries
};

// The kinds, in the order they are listed to users.
const std::vector<std::string>& KindNames();

// Checks a request before the store is read: a known kind, days that exist,
// --from not after --to. Throws velqua_records::Failure with one line naming
// what is wrong.
void CheckRequest(const Request& request);

// The previous calendar month of the day `today` ("YYYY-MM-DD"), as
// {first day, last day}: the default period.
std::pair<std::string, std::string> PreviousMonth(const std::string& today);

// A length of time as a user writes it: "24h", "90m", "45s", "2d", or a
// number of seconds; throws velqua_records::Failure naming `option`.
int64_t SecondsOf(const std::string& text, const char* option);

// Builds the report. Throws velqua_records::Failure for a switch or a
// department the store does not hold, velqua_store::StoreError for the
// store's failures.
Report BuildReport(velqua_store::Store& store, const Request& request);

}  // namespace velqua_reports
