// What the reports' tests share: a small report of every column type, and
// running a program to read a form back.
#pragma once

#include <string>

#include "velqua/reports/report.h"

namespace velqua_reports_testing {

// A report of `rows` rows of every column type (money in EUR, empty cells,
// a total) and a chart.
velqua_reports::Report SampleReport(int rows);

// Runs a shell command; its standard output. Fails the test on a non-zero
// exit status.
std::string RunCommand(const std::string& command);

}  // namespace velqua_reports_testing
