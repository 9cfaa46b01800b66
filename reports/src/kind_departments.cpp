// departments: calls, talk time and cost per department and per cost
// centre; accounts: the same per account code with its client and project.
// A call counts where the directory put its extension (or account code) on
// the day it was made, so that a person who changed department in the
// middle of the month is charged to each for the days spent there.
#include <map>
#include <set>

#include "cost_tables.h"
#include "directory_view.h"
#include "kinds_internal.h"

namespace velqua_reports {
namespace {

constexpr const char* kNone = "(none)";

std::string OrNone(const std::string& text) { return text.empty() ? kNone : text; }

void AddUnpricedNote(const Totals& all, Report& report) {
  const std::string note = UnpricedNote(all.unpriced);
  if (!note.empty()) report.notes.push_back(note);
}

}  // namespace

void BuildDepartments(velqua_store::Store& store, const Request& request, Report& report) {
  const DirectoryView directory(store.ListDirectory());
  TotalsByKey departments, centres;
  std::map<std::string, std::set<std::string>> members;
  for (const auto& row : velqua_store::CostsBy(store, SpanFor(store, request),
                                               velqua_store::CostGroup::kExtensionDay)) {
    const velqua_rating::DirectoryEntry* e = directory.Extension(row.key, row.day);
    const std::string department = OrNone(e != nullptr ? e->department : "");
    Totals t;
    t.Add(row);
    departments[{department}].Add(t);
    centres[{OrNone(e != nullptr ? e->cost_centre : ""), department}].Add(t);
    if (!row.key.empty()) members[department].insert(row.key);
  }
  const Totals all = SumTotals(departments);
  const Currencies currencies = CurrenciesOf({&all.cost});
  Table by_department = TotalsTable("Departments", {"department"}, departments, currencies);
  // How many extensions made the department's calls, after its name.
  by_department.columns.insert(by_department.columns.begin() + 1, IntColumn("extensions"));
  size_t i = 0;
  int64_t extensions = 0;
  for (const auto& [key, t] : departments) {
    const auto count = static_cast<int64_t>(members[key.front()].size());
    std::vector<Cell>& row = by_department.rows[i++];
    row.insert(row.begin() + 1, Cell::Number(count));
    extensions += count;
  }
  by_department.total->insert(by_department.total->begin() + 1, Cell::Number(extensions));
  report.tables.push_back(std::move(by_department));
  report.tables.push_back(
      TotalsTable("Cost centres", {"cost centre", "department"}, centres, currencies));
  report.charts.push_back(CostChart("department", departments, currencies));
  if (!directory.HasDepartments()) {
    report.notes.push_back("The store holds no directory of departments: every call is (none)");
  }
  AddUnpricedNote(all, report);
}

void BuildAccounts(velqua_store::Store& store, const Request& request, Report& report) {
  const DirectoryView directory(store.ListDirectory());
  TotalsByKey accounts;
  for (const auto& row : velqua_store::CostsBy(store, SpanFor(store, request),
                                               velqua_store::CostGroup::kAccountDay)) {
    const velqua_rating::DirectoryEntry* e = directory.Account(row.key, row.day);
    Totals t;
    t.Add(row);
    accounts[{row.key, e != nullptr ? e->client : "", e != nullptr ? e->project : ""}].Add(t);
  }
  const Totals all = SumTotals(accounts);
  const Currencies currencies = CurrenciesOf({&all.cost});
  report.tables.push_back(
      TotalsTable("Account codes", {"account code", "client", "project"}, accounts, currencies));
  // Per client too, when the directory names them: what to bill each.
  TotalsByKey clients;
  for (const auto& [key, t] : accounts) clients[{OrNone(key[1])}].Add(t);
  if (directory.HasAccounts()) {
    report.tables.push_back(TotalsTable("Clients", {"client"}, clients, currencies));
  }
  report.charts.push_back(CostChart("account code", accounts, currencies));
  AddUnpricedNote(all, report);
}

}  // namespace velqua_reports
