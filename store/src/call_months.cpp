// The months' tables of `calls` on PostgreSQL, as they are needed.
#include "call_months.h"

#include <cstring>

namespace velqua_store {
namespace {

bool Digits(const std::string& text, size_t from, size_t n) {
  for (size_t i = from; i < from + n; ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  return true;
}

}  // namespace

std::string MonthOf(const std::string& start) {
  // Years 1000 to 9999: a four-digit year compares as text as it does as a
  // number, and every bound of a month's table is a date of that form.
  if (start.size() < 7 || start[4] != '-' || !Digits(start, 0, 4) || !Digits(start, 5, 2) ||
      start[0] == '0') {
    return "";
  }
  const int month = (start[5] - '0') * 10 + (start[6] - '0');
  return month >= 1 && month <= 12 ? start.substr(0, 7) : "";
}

CallMonths::CallMonths(Connection& db)
    : db_(db), postgres_(std::strcmp(db.engine(), "postgresql") == 0) {}

void CallMonths::ReadCatalog() {
  db_.Run(
      "SELECT c.relname FROM pg_inherits i JOIN pg_class c ON c.oid = i.inhrelid "
      "WHERE i.inhparent = 'calls'::regclass AND c.relname ~ '^calls_[0-9]{4}_[0-9]{2}$'",
      {}, [&](const ResultRow& r) {
        std::string month = r.Text(0).substr(6);
        month[4] = '-';
        known_.insert(month);
      });
}

std::vector<std::string> CallMonths::Missing(const CallValues* calls, size_t n) {
  std::set<std::string> unknown;
  if (!postgres_) return {};
  for (size_t i = 0; i < n; ++i) {
    // Most calls of a batch share a month: compare the text before making one.
    const std::string& start = calls[i].start;
    if (i > 0 && start.compare(0, 7, calls[i - 1].start, 0, 7) == 0) continue;
    std::string month = MonthOf(start);
    if (!month.empty() && known_.count(month) == 0) unknown.insert(std::move(month));
  }
  if (unknown.empty()) return {};
  ReadCatalog();
  std::vector<std::string> missing;
  for (const std::string& month : unknown) {
    if (known_.count(month) == 0) missing.push_back(month);
  }
  return missing;
}

void CallMonths::Add(const std::vector<std::string>& months) {
  for (const std::string& month : months) {
    bool added = false;
    InTransaction(db_, [&] {
      db_.Run("SET LOCAL lock_timeout = '1s'");
      db_.Run("SELECT calls_add_month($1)", {month},
              [&](const ResultRow& r) { added = r.Text(0) == "t"; });
    });
    if (added) known_.insert(month);
  }
}

}  // namespace velqua_store
