// The charts alone, as a PNG or SVG image: each chart 1200 by 560 pixels,
// one above the other, texts at 15 pixels: legible at the image's size.
#include <cairo-svg.h>

#include "chart.h"
#include "velqua/records/common.h"
#include "velqua/reports/output.h"

namespace velqua_reports {
namespace {

constexpr int kChartWidth = 1200, kChartHeight = 560, kMargin = 24;
constexpr double kFont = 15;

}  // namespace

void WriteChartImage(const Report& report, Form form, const std::string& path) {
  if (report.charts.empty()) {
    throw velqua_records::Failure("the " + report.kind + " report has no chart to write as " +
                                  FormName(form) + ": use pdf, xlsx, csv, json or table");
  }
  const int height = static_cast<int>(report.charts.size()) * kChartHeight;
  cairo_surface_t* surface =
      form == Form::kSvg ? cairo_svg_surface_create(path.c_str(), kChartWidth, height)
                         : cairo_image_surface_create(CAIRO_FORMAT_RGB24, kChartWidth, height);
  cairo_t* cr = cairo_create(surface);
  cairo_set_source_rgb(cr, 1, 1, 1);
  cairo_paint(cr);
  for (size_t i = 0; i < report.charts.size(); ++i) {
    DrawChart(cr, report.charts[i], kMargin, kMargin + static_cast<double>(i) * kChartHeight,
              kChartWidth - 2 * kMargin, kChartHeight - 2 * kMargin, kFont);
  }
  cairo_destroy(cr);
  cairo_status_t status =
      form == Form::kPng ? cairo_surface_write_to_png(surface, path.c_str()) : CAIRO_STATUS_SUCCESS;
  cairo_surface_finish(surface);
  if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(surface);
  cairo_surface_destroy(surface);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw velqua_records::Failure("cannot write '" + path + "': " + cairo_status_to_string(status));
  }
}

}  // namespace velqua_reports
