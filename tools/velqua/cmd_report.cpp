#include "cmd_report.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <ctime>
#include <memory>

#include "cli_common.h"
#include "velqua/reports/kinds.h"
#include "velqua/reports/mail.h"
#include "velqua/reports/output.h"
#include "velqua/store/store.h"

namespace velqua_cli {
namespace {

// The form of a report: --format, else -o's extension, else a table on a
// terminal and CSV otherwise; a mailed report without either is a PDF.
velqua_reports::Form FormOf(const ReportOptions& o) {
  if (!o.format.empty()) return velqua_reports::FormNamed(o.format);
  const size_t dot = o.output.rfind('.');
  if (dot != std::string::npos && o.output.find('/', dot) == std::string::npos) {
    return velqua_reports::FormNamed(o.output.substr(dot + 1));
  }
  if (!o.mail_to.empty()) return velqua_reports::Form::kPdf;
  return ::isatty(::fileno(stdout)) ? velqua_reports::Form::kTable : velqua_reports::Form::kCsv;
}

std::string Today() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  ::localtime_r(&now, &local);
  char text[16];
  std::strftime(text, sizeof text, "%Y-%m-%d", &local);
  return text;
}

}  // namespace

void AddReportCommand(CLI::App& app, ReportOptions& options) {
  CLI::App* cmd = app.add_subcommand("report",
                                     "Reports of the call store: tables, PDF, spreadsheet, "
                                     "charts");
  cmd->add_option("kind", options.kind,
                  "extensions, departments, accounts, trunks, destinations, missed, traffic or "
                  "compare")
      ->required();
  cmd->add_option("--db", options.db, "Store: a SQLite file or postgresql://user@host:port/dbname")
      ->required();
  cmd->add_option("--from", options.from, "First day, YYYY-MM-DD (default: last month's first)");
  cmd->add_option("--to", options.to,
                  "Last day, YYYY-MM-DD, included (default: last month's last)");
  cmd->add_option("--switch", options.switch_name, "Only the calls of this switch");
  cmd->add_option("--department", options.department, "Only the calls of this department");
  cmd->add_option("-f,--format", options.format,
                  "table, csv, json, pdf, xlsx, png or svg (default: from -o's extension)");
  cmd->add_option("-o,--output", options.output, "Write to this file (default: stdout)");
  cmd->add_option("--lines", options.lines, "trunks: the trunk lines you have");
  cmd->add_option("--callback-window", options.callback_window,
                  "missed: a call back within this time counts (24h, 90m, 2d)")
      ->capture_default_str();
  cmd->add_option("--itemised", options.itemised, "extensions: every call of this extension");
  cmd->add_option("--of", options.of, "compare: the report compared (default: extensions)");
  cmd->add_option("--top", options.top, "destinations: how many to list")->capture_default_str();
  cmd->add_option("--by", options.by, "destinations: ranked by cost, minutes or calls")
      ->capture_default_str();
  cmd->add_option("--mail-to", options.mail_to, "Mail the report to this address (repeatable)");
  cmd->add_option("--smtp", options.smtp, "The SMTP server: smtp://host:port or smtps://host");
  cmd->add_option("--mail-from", options.mail_from, "The sender's address");
}

int RunReport(const ReportOptions& options) {
  velqua_reports::Request request;
  request.kind = options.kind;
  if (options.from.empty() != options.to.empty()) {
    throw CliError("give both --from and --to, or neither for last month");
  }
  if (options.from.empty()) {
    std::tie(request.from, request.to) = velqua_reports::PreviousMonth(Today());
  } else {
    request.from = options.from;
    request.to = options.to;
  }
  request.switch_name = options.switch_name;
  request.lines = options.lines;
  request.callback_seconds =
      velqua_reports::SecondsOf(options.callback_window, "--callback-window");
  request.itemised = options.itemised;
  request.of = options.of;
  request.department = options.department;
  request.top = options.top;
  request.by = options.by;
  velqua_reports::CheckRequest(request);
  const velqua_reports::Form form = FormOf(options);
  if (!options.mail_to.empty() && options.smtp.empty()) {
    throw CliError("--mail-to needs --smtp URL (smtp://host:port)");
  }
  if (!options.output.empty()) velqua_reports::CheckWritable(options.output);
  std::unique_ptr<velqua_store::Store> store = velqua_store::OpenStore(options.db, false);
  const velqua_reports::Report report = velqua_reports::BuildReport(*store, request);
  if (!options.output.empty() || options.mail_to.empty()) {
    velqua_reports::WriteReport(report, form, options.output);
  }
  if (!options.mail_to.empty()) {
    velqua_reports::Mail mail;
    mail.to = options.mail_to;
    mail.from = options.mail_from;
    mail.smtp = options.smtp;
    velqua_reports::MailReport(report, form, options.output, mail);
  }
  return 0;
}

}  // namespace velqua_cli
