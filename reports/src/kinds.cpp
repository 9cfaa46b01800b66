// The kinds of report: checking a request, the default period, and the
// report's heading shared by every kind.
#include <algorithm>

#include "directory_view.h"
#include "kinds_internal.h"
#include "period.h"
#include "velqua/records/common.h"
#include "velqua/store/aggregates.h"

namespace velqua_reports {
namespace {

struct KindInfo {
  const char* name;
  const char* title;
  void (*build)(velqua_store::Store&, const Request&, Report&);
};

constexpr KindInfo kKinds[] = {
    {"extensions", "Extensions", BuildExtensions},
    {"departments", "Departments and cost centres", BuildDepartments},
    {"accounts", "Account codes", BuildAccounts},
    {"trunks", "Trunks and lines in use", BuildTrunks},
    {"destinations", "Destinations", BuildDestinations},
    {"missed", "Missed calls", BuildMissed},
    {"traffic", "Traffic", BuildTraffic},
    {"compare", "Comparison with the previous period", BuildCompare},
};

const KindInfo* FindKind(const std::string& name) {
  for (const KindInfo& k : kKinds) {
    if (name == k.name) return &k;
  }
  return nullptr;
}

std::string KindList() {
  std::string list;
  for (const std::string& name : KindNames()) list += (list.empty() ? "" : ", ") + name;
  return list;
}

}  // namespace

const std::vector<std::string>& KindNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> n;
    for (const KindInfo& k : kKinds) n.emplace_back(k.name);
    return n;
  }();
  return names;
}

void CheckRequest(const Request& request) {
  using velqua_records::Failure;
  if (FindKind(request.kind) == nullptr) {
    throw Failure("unknown report '" + request.kind + "': expected " + KindList());
  }
  if (request.kind == "compare" && !request.of.empty() &&
      (FindKind(request.of) == nullptr || request.of == "compare")) {
    throw Failure("--of: cannot compare '" + request.of + "': expected one of " + KindList() +
                  " but compare");
  }
  if (DayNumber(request.from, "--from") > DayNumber(request.to, "--to")) {
    throw Failure("the period starts (--from " + request.from + ") after it ends (--to " +
                  request.to + ")");
  }
  if (request.lines < 0) throw Failure("--lines: expected a number of lines, 0 or more");
  if (request.callback_seconds <= 0) throw Failure("--callback-window: expected a positive time");
  if (!request.itemised.empty() && request.kind != "extensions") {
    throw Failure("--itemised: only for the extensions report");
  }
  if (!request.itemised.empty() && !request.department.empty()) {
    throw Failure("--itemised names one extension: leave out --department");
  }
  if (request.top <= 0) throw Failure("--top: expected a number of destinations, 1 or more");
  if (request.by != "cost" && request.by != "minutes" && request.by != "calls") {
    throw Failure("--by: expected cost, minutes or calls, got '" + request.by + "'");
  }
}

std::pair<std::string, std::string> PreviousMonth(const std::string& today) {
  DayNumber(today, "today");  // a day that exists
  const int64_t last = DayNumber(today.substr(0, 8) + "01", "today") - 1;
  const std::string last_text = DayText(last);
  return {last_text.substr(0, 8) + "01", last_text};
}

int64_t SecondsOf(const std::string& text, const char* option) {
  size_t digits = 0;
  while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') ++digits;
  const std::string unit = text.substr(digits);
  const int64_t scale = unit.empty() || unit == "s" ? 1
                        : unit == "m"               ? 60
                        : unit == "h"               ? 3600
                        : unit == "d"               ? 86400
                                                    : 0;
  if (digits == 0 || digits > 9 || scale == 0) {
    throw velqua_records::Failure(std::string(option) + ": expected a time such as 24h, 90m, " +
                                  "45s or 2d, got '" + text + "'");
  }
  return std::stoll(text.substr(0, digits)) * scale;
}

velqua_store::Span SpanFor(velqua_store::Store& store, const Request& request) {
  velqua_store::Span span = SpanOf(request.from, request.to, request.switch_name);
  span.from_calls = request.from_calls;
  if (!request.department.empty()) {
    span.extensions =
        DirectoryView(store.ListDirectory()).Members(request.department, span.from, span.to_next);
  }
  return span;
}

Report BuildReport(velqua_store::Store& store, const Request& request) {
  CheckRequest(request);
  if (!request.switch_name.empty() && !store.FindSwitch(request.switch_name)) {
    throw velqua_records::Failure("unknown switch '" + request.switch_name + "' in '" +
                                  store.name() + "'");
  }
  if (!request.department.empty()) {
    const DirectoryView directory(store.ListDirectory());
    if (!directory.HasDepartments()) {
      throw velqua_records::Failure("unknown department '" + request.department + "': '" +
                                    store.name() + "' holds no directory of departments");
    }
    if (!directory.KnowsDepartment(request.department)) {
      throw velqua_records::Failure("unknown department '" + request.department + "' in '" +
                                    store.name() + "'");
    }
  }
  const KindInfo& kind = *FindKind(request.kind);
  Report report;
  report.kind = kind.name;
  report.title = kind.title;
  if (!request.department.empty()) report.notes.push_back("Department " + request.department);
  report.from = request.from;
  report.to = request.to;
  if (request.switch_name.empty()) {
    report.switches = velqua_store::SwitchNames(store);
  } else {
    report.switches = {request.switch_name};
  }
  if (!request.itemised.empty()) {
    report.title = "Itemised calls of extension " + request.itemised;
    BuildItemised(store, request, report);
  } else {
    kind.build(store, request, report);
  }
  return report;
}

}  // namespace velqua_reports
