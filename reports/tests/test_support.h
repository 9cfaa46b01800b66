// What the reports' tests share: a small report of every column type, a
// report's text in one form, and running a program to read a form back.
#pragma once

#include <cstdio>
#include <string>

#include "velqua/reports/report.h"

namespace velqua_reports_testing {

// A report of `rows` rows of every column type (money in EUR, empty cells,
// a total) and a chart.
velqua_reports::Report SampleReport(int rows);

// Runs a shell command; its standard output. Fails the test on a non-zero
// exit status.
std::string RunCommand(const std::string& command);

// What `write` (WriteCsv, WriteJson, WriteTable) makes of `report`.
std::string Text(void (*write)(const velqua_reports::Report&, std::FILE*),
                 const velqua_reports::Report& report);

}  // namespace velqua_reports_testing
