// `velqua report`: the reports of the call store.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace velqua_cli {

struct ReportOptions {
  std::string kind;
  std::string db;
  std::string from, to;  // days, both included; none: the previous month
  std::string switch_name, department;
  std::string format;  // "": from -o's extension, else table on a terminal, csv otherwise
  std::string output;
  int64_t lines = 0;
  std::string callback_window = "24h";
  std::string itemised, of;
  int64_t top = 20;         // destinations: how many listed
  std::string by = "cost";  // destinations: ranked by cost, minutes or calls
  std::vector<std::string> mail_to;
  std::string smtp, mail_from;
};

void AddReportCommand(CLI::App& app, ReportOptions& options);

// Runs it; returns the exit status. Throws CliError / StoreError.
int RunReport(const ReportOptions& options);

}  // namespace velqua_cli
