// Reports: every kind `velqua report` writes, for a period, shown in the
// page (the report's JSON form) and downloaded as CSV, PDF or a
// spreadsheet, drawn by the reports layer from one built report so that
// every form holds the same numbers; and the Calls view's spreadsheet
// export, written by the same spreadsheet writer.
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "api.h"
#include "call_query.h"
#include "routes.h"
#include "velqua/records/names.h"
#include "velqua/reports/kinds.h"
#include "velqua/reports/output.h"
#include "velqua/store/browse.h"

namespace velqua_web {
namespace {

struct Download {
  const char* format;
  velqua_reports::Form form;
  const char* mime;
};

constexpr Download kDownloads[] = {
    {"json", velqua_reports::Form::kJson, "application/json"},
    {"csv", velqua_reports::Form::kCsv, "text/csv; charset=utf-8"},
    {"pdf", velqua_reports::Form::kPdf, "application/pdf"},
    {"xlsx", velqua_reports::Form::kXlsx,
     "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"},
    {"svg", velqua_reports::Form::kSvg, "image/svg+xml"},
};

const Download& DownloadOf(const std::string& format) {
  for (const Download& d : kDownloads) {
    if (format == d.format) return d;
  }
  throw ApiError(400, "parameter 'format': use json, csv, pdf, xlsx or svg");
}

// A message of the reports layer, which names its command-line options, in
// the Reports page's own words: the labels of its fields.
std::string InPageTerms(std::string text) {
  static const std::pair<std::string, std::string> kFields[] = {
      {"--callback-window", "Called back within"},
      {"--itemised", "One extension, call by call"},
      {"--department", "Department"},
      {"--lines", "Lines you have"},
      {"--from", "From"},
      {"--top", "How many"},
      {"--to", "To"},
      {"--of", "Compared"},
      {"--by", "Ranked by"}};
  for (const auto& [option, label] : kFields) {
    for (size_t at = text.find(option); at != std::string::npos; at = text.find(option, at)) {
      text.replace(at, option.size(), label);
    }
  }
  return text;
}

velqua_reports::Request RequestOf(const ApiRequest& r, const std::string& kind) {
  velqua_reports::Request q;
  q.kind = kind;
  q.from = r.Param("from");
  q.to = r.Param("to");
  if (q.from.empty() != q.to.empty()) {
    throw ApiError(400, "parameters 'from' and 'to': give both or neither");
  }
  if (q.from.empty()) std::tie(q.from, q.to) = velqua_reports::PreviousMonth(Today());
  q.switch_name = r.Param("switch");
  q.department = r.Param("department");
  q.itemised = r.Param("itemised");
  q.of = r.Param("of");
  q.by = r.Param("by", q.by);
  q.lines = r.IntParam("lines", 0, 0, 100000);
  q.top = r.IntParam("top", q.top, 1, 1000);
  try {
    if (r.http.has_param("callback")) {
      q.callback_seconds = velqua_reports::SecondsOf(r.Param("callback"), "Called back within");
    }
    velqua_reports::CheckRequest(q);
  } catch (const velqua_records::Failure& e) {
    throw ApiError(400, InPageTerms(e.what()));
  }
  return q;
}

// The report in `form` as bytes, written by the reports layer into a
// temporary file that is removed again.
std::string Bytes(const velqua_reports::Report& report, velqua_reports::Form form) {
  char path[] = "/tmp/velqua-report-XXXXXX";
  const int fd = ::mkstemp(path);
  if (fd < 0) throw ApiError(500, "no temporary file for the report");
  ::close(fd);
  struct Remove {
    const char* path;
    ~Remove() { std::remove(path); }
  } remove{path};
  velqua_reports::WriteReport(report, form, path);
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

// The calls as a one-table report, for the spreadsheet: starts as dates and
// times, durations as durations, costs as numbers in their currency (as
// text when the calls are priced in more than one).
velqua_reports::Report CallSheet(const std::vector<velqua_store::StoredCall>& calls) {
  using velqua_reports::Cell;
  using velqua_reports::ColumnType;
  std::string currency;
  bool one_currency = true;
  for (const auto& c : calls) {
    if (!c.currency || c.currency->empty()) continue;
    if (!currency.empty() && currency != *c.currency) one_currency = false;
    currency = *c.currency;
  }
  velqua_reports::Table t;
  t.name = "Calls";
  t.columns = {{"start", ColumnType::kDateTime, ""},   {"switch", ColumnType::kText, ""},
               {"type", ColumnType::kText, ""},        {"attribute", ColumnType::kText, ""},
               {"extension", ColumnType::kText, ""},   {"person", ColumnType::kText, ""},
               {"department", ColumnType::kText, ""},  {"dialled", ColumnType::kText, ""},
               {"trunk", ColumnType::kText, ""},       {"duration", ColumnType::kDuration, ""},
               {"ring", ColumnType::kInteger, ""},     {"account_code", ColumnType::kText, ""},
               {"cost", ColumnType::kText, ""},        {"currency", ColumnType::kText, ""},
               {"destination", ColumnType::kText, ""}, {"why", ColumnType::kText, ""}};
  if (one_currency && !currency.empty()) t.columns[12] = {"cost", ColumnType::kMoney, currency};
  const auto text = [](const std::optional<std::string>& v) {
    return v ? Cell::Text(*v) : Cell::Empty();
  };
  const auto number = [](const std::optional<int64_t>& v) {
    return v ? Cell::Number(*v) : Cell::Empty();
  };
  for (const auto& c : calls) {
    t.rows.push_back({text(c.start), Cell::Text(c.switch_name),
                      Cell::Text(velqua_records::CallTypeWord(c.type)),
                      Cell::Text(velqua_records::AttributeWord(c.attribute)), text(c.extension),
                      text(c.person), text(c.department), text(c.dialled), text(c.trunk),
                      number(c.duration), number(c.ring), text(c.account_code), text(c.cost),
                      text(c.currency), text(c.destination), text(c.cost_reason)});
  }
  velqua_reports::Report report;
  report.kind = "calls";
  report.title = "Calls";
  report.tables.push_back(std::move(t));
  return report;
}

}  // namespace

void RegisterReportRoutes(Api& api) {
  api.Get("/api/reports", Access::kViewer, [](ApiRequest& r) {
    const auto [from, to] = velqua_reports::PreviousMonth(Today());
    r.Reply({{"kinds", velqua_reports::KindNames()}, {"from", from}, {"to", to}});
  });
  api.Get("/api/reports/([a-z-]{1,40})", Access::kViewer, [](ApiRequest& r) {
    const Download& download = DownloadOf(r.Param("format", "json"));
    const velqua_reports::Request request = RequestOf(r, r.http.matches[1]);
    const velqua_reports::Report report = velqua_reports::BuildReport(r.store, request);
    if (download.form == velqua_reports::Form::kJson) {
      nlohmann::json j = nlohmann::json::parse(Bytes(report, download.form));
      j["charts"] = report.charts.size();
      r.Reply(j);
      return;
    }
    if (download.form == velqua_reports::Form::kSvg && report.charts.empty()) {
      throw ApiError(404, "the " + request.kind + " report has no chart");
    }
    const std::string name = request.kind + "-" + request.from + "-" + request.to;
    if (download.form != velqua_reports::Form::kSvg) {
      r.response.set_header("Content-Disposition",
                            "attachment; filename=\"" + name + "." + download.format + "\"");
    }
    r.response.set_content(Bytes(report, download.form), download.mime);
  });
  // What /api/calls selects (at most kExportLimit), as a spreadsheet.
  api.Get("/api/calls/export.xlsx", Access::kViewer, [](ApiRequest& r) {
    velqua_store::CallQuery q = CallQueryOf(r.http);
    q.offset = 0;
    q.limit = kExportLimit;
    const velqua_store::CallPage page = velqua_store::SearchCalls(r.store, q);
    r.response.set_header("Content-Disposition", "attachment; filename=\"calls.xlsx\"");
    r.response.set_content(Bytes(CallSheet(page.calls), velqua_reports::Form::kXlsx),
                           kDownloads[3].mime);
  });
}

}  // namespace velqua_web
