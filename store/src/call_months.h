// PostgreSQL keeps `calls` in one table a month of the call's start, so
// that a month's query reads that month alone. What a table a month would
// lose is kept elsewhere, in `call_keys` (one row a call, written by the
// calls' own triggers in the statement that writes the call):
//
// - a record's source and position are unique there, so a batch written
//   again adds nothing, as before;
// - a call's id is unique there, and is what prices and other tables refer
//   to (with the call's switch and start, so that a price's day is found
//   without a search through every month);
// - calls without a start, and those whose month has no table yet, go to
//   `calls_other`; the month's table, when it is added, takes its calls
//   from there.
//
// A month's table is added before the calls that need it are written, in a
// short transaction of its own (never inside a batch's: a batch waiting for
// another writer's commit must hold no lock that a new table would need).
// SQLite keeps `calls` whole: this is PostgreSQL's alone.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "sql.h"
#include "values.h"

namespace velqua_store {

// The schema step that turns an unpartitioned `calls` into one partitioned
// by month, keeping every row, its id and its price (call_months.cpp). A
// store whose `calls` is partitioned already is left as it is.
void PartitionCallsByMonth(Connection& db);

// "YYYY-MM" of a start that has a month's table, or "" (no start, or a
// text that is no date: kept in calls_other).
std::string MonthOf(const std::string& start);

// The months a connection knows to have their table, and the adding of
// those missing.
class CallMonths {
 public:
  explicit CallMonths(Connection& db);

  // The months of these calls' starts that have no table yet (the catalog
  // is read again when a month is not known). Empty on SQLite.
  std::vector<std::string> Missing(const CallValues* calls, size_t n);

  // Adds the months' tables, each in a transaction of its own: call it
  // outside of any transaction. A month whose table cannot be added within
  // a second (another transaction holds a lock it needs) is left for a
  // later call; its calls wait in calls_other meanwhile.
  void Add(const std::vector<std::string>& months);

  // Whether calls are kept in a table a month (PostgreSQL).
  bool by_month() const { return postgres_; }

 private:
  void ReadCatalog();

  Connection& db_;
  bool postgres_;
  std::set<std::string> known_;
};

}  // namespace velqua_store
