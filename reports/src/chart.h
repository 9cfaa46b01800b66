// Drawing a report's chart with Cairo, for the PDF and for the chart alone
// (PNG, SVG): the same drawing at two sizes.
#pragma once

#include <cairo.h>

#include <string>

#include "velqua/reports/report.h"

namespace velqua_reports {

// The fonts every drawing of a report uses: Liberation, installed by setup,
// named so that a report looks the same on every machine.
constexpr const char* kReportFont = "Liberation Sans";

// Draws `chart` in the box (x, y, width, height), texts of `font` units.
void DrawChart(cairo_t* cr, const Chart& chart, double x, double y, double width, double height,
               double font);

// A day "YYYY-MM-DD" as "1 Mar"; other texts as they are.
std::string ShortDay(const std::string& text);

// Sets the report font, bold or not, at `size`.
void UseFont(cairo_t* cr, double size, bool bold);

// Width of `text` in the current font.
double TextWidth(cairo_t* cr, const std::string& text);

}  // namespace velqua_reports
