// Line, area, bar and heat-map charts. A chart's vertical axis starts at 0
// and ends at a round number; horizontal labels are thinned so that none
// overlaps its neighbour.
#include "chart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace velqua_reports {
namespace {

struct Box {
  double x, y, w, h;
};

void Colour(cairo_t* cr, unsigned rgb) {
  cairo_set_source_rgb(cr, ((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0,
                       (rgb & 0xFF) / 255.0);
}

constexpr unsigned kInk = 0x222222, kGrid = 0xDDDDDD, kSeries = 0x2F5F9F, kFill = 0xA9C4E6,
                   kLimit = 0xC0392B;

void Text(cairo_t* cr, const std::string& text, double x, double y, double align) {
  cairo_move_to(cr, x - TextWidth(cr, text) * align, y);
  cairo_show_text(cr, text.c_str());
}

// A round top for the axis (1, 2 or 5 times a power of ten, in about 5
// steps) and its step.
std::pair<int64_t, int64_t> Scale(int64_t max) {
  if (max <= 0) return {1, 1};
  int64_t step = 1;
  for (;;) {
    for (int64_t m : {1, 2, 5}) {
      if (max <= step * m * 5) return {((max + step * m - 1) / (step * m)) * step * m, step * m};
    }
    step *= 10;
  }
}

// Every how many labels one is shown, so that labels of `width` keep apart.
size_t Stride(const Chart& c, double slot, double width) {
  size_t stride = std::max<size_t>(1, static_cast<size_t>(std::ceil((width * 1.4) / slot)));
  if (!c.labels.empty() && c.labels[0].size() == 16) stride = (stride + 47) / 48 * 48;  // days
  return stride;
}

std::string AxisLabel(const std::string& label) {
  return label.size() == 16 ? ShortDay(label.substr(0, 10)) : ShortDay(label);
}

// The axes and grid of a value chart; returns the plot box.
Box Axes(cairo_t* cr, const Chart& c, Box b, double font, int64_t top, int64_t step) {
  UseFont(cr, font, false);
  const double left = TextWidth(cr, std::to_string(top)) + font * 2.2;
  Box p{b.x + left, b.y, b.w - left - font, b.h - font * 2.2};
  cairo_set_line_width(cr, std::max(0.5, font / 14));
  for (int64_t v = 0; v <= top; v += step) {
    const double y = p.y + p.h - p.h * static_cast<double>(v) / static_cast<double>(top);
    Colour(cr, kGrid);
    cairo_move_to(cr, p.x, y);
    cairo_line_to(cr, p.x + p.w, y);
    cairo_stroke(cr);
    Colour(cr, kInk);
    Text(cr, std::to_string(v), p.x - font * 0.4, y + font * 0.35, 1.0);
  }
  cairo_save(cr);
  cairo_move_to(cr, b.x + font, p.y + p.h / 2 + TextWidth(cr, c.value_label) / 2);
  cairo_rotate(cr, -M_PI / 2);
  cairo_show_text(cr, c.value_label.c_str());
  cairo_restore(cr);
  const size_t n = c.labels.size();
  if (n == 0) return p;
  double widest = 0;
  for (const std::string& l : c.labels) widest = std::max(widest, TextWidth(cr, AxisLabel(l)));
  const double slot = p.w / static_cast<double>(n);
  const size_t stride = Stride(c, slot, widest);
  const bool bars = c.kind == Chart::Kind::kBars;
  for (size_t i = 0; i < n; i += stride) {
    const double x = p.x + slot * (static_cast<double>(i) + (bars ? 0.5 : 0.0));
    Text(cr, AxisLabel(c.labels[i]), x, p.y + p.h + font * 1.3, bars ? 0.5 : 0.0);
  }
  return p;
}

double Y(const Box& p, int64_t v, int64_t top) {
  return p.y + p.h - p.h * static_cast<double>(v) / static_cast<double>(top);
}

void Series(cairo_t* cr, const Chart& c, const Box& p, int64_t top, double font) {
  const size_t n = c.values.size();
  const double slot = p.w / static_cast<double>(std::max<size_t>(n, 1));
  if (c.kind == Chart::Kind::kBars) {
    Colour(cr, kSeries);
    for (size_t i = 0; i < n; ++i) {
      const double x = p.x + slot * static_cast<double>(i) + slot * 0.15;
      cairo_rectangle(cr, x, Y(p, c.values[i], top), slot * 0.7,
                      p.y + p.h - Y(p, c.values[i], top));
    }
    cairo_fill(cr);
    return;
  }
  if (c.kind == Chart::Kind::kArea) {
    cairo_move_to(cr, p.x, p.y + p.h);
    for (size_t i = 0; i < n; ++i) {
      cairo_line_to(cr, p.x + slot * static_cast<double>(i), Y(p, c.values[i], top));
      cairo_line_to(cr, p.x + slot * static_cast<double>(i + 1), Y(p, c.values[i], top));
    }
    cairo_line_to(cr, p.x + p.w, p.y + p.h);
    cairo_close_path(cr);
    Colour(cr, kFill);
    cairo_fill_preserve(cr);
    Colour(cr, kSeries);
    cairo_set_line_width(cr, std::max(0.6, font / 12));
    cairo_stroke(cr);
    return;
  }
  Colour(cr, kSeries);
  cairo_set_line_width(cr, std::max(1.0, font / 7));
  for (size_t i = 0; i < n; ++i) {
    const double x = p.x + slot * (static_cast<double>(i) + 0.5);
    i == 0 ? cairo_move_to(cr, x, Y(p, c.values[i], top))
           : cairo_line_to(cr, x, Y(p, c.values[i], top));
  }
  cairo_stroke(cr);
  for (size_t i = 0; i < n && n <= 62; ++i) {
    cairo_arc(cr, p.x + slot * (static_cast<double>(i) + 0.5), Y(p, c.values[i], top), font / 4, 0,
              2 * M_PI);
    cairo_fill(cr);
  }
}

void Limit(cairo_t* cr, const Chart& c, const Box& p, int64_t top, double font) {
  if (!c.limit) return;
  const double y = Y(p, *c.limit, top);
  Colour(cr, kLimit);
  const double dash[] = {font / 2, font / 4};
  cairo_set_dash(cr, dash, 2, 0);
  cairo_set_line_width(cr, std::max(1.0, font / 8));
  cairo_move_to(cr, p.x, y);
  cairo_line_to(cr, p.x + p.w, y);
  cairo_stroke(cr);
  cairo_set_dash(cr, nullptr, 0, 0);
  UseFont(cr, font, true);
  Text(cr, c.limit_label, p.x + p.w, y - font * 0.4, 1.0);
}

void Heatmap(cairo_t* cr, const Chart& c, Box b, double font) {
  UseFont(cr, font, false);
  double left = 0;
  for (const std::string& l : c.row_labels) left = std::max(left, TextWidth(cr, l));
  left += font;
  const double rows = static_cast<double>(std::max<size_t>(c.grid.size(), 1));
  const double cols = static_cast<double>(std::max<size_t>(c.labels.size(), 1));
  const Box p{b.x + left, b.y + font * 1.5, b.w - left, b.h - font * 1.5};
  const double cw = p.w / cols, ch = p.h / rows;
  int64_t max = 1;
  for (const auto& row : c.grid) {
    for (int64_t v : row) max = std::max(max, v);
  }
  const double cell_font = std::min(font, ch * 0.7);
  for (size_t j = 0; j < c.labels.size(); ++j) {
    Colour(cr, kInk);
    UseFont(cr, font, true);
    Text(cr, c.labels[j], p.x + cw * (static_cast<double>(j) + 0.5), b.y + font, 0.5);
  }
  for (size_t i = 0; i < c.grid.size(); ++i) {
    const double y = p.y + ch * static_cast<double>(i);
    UseFont(cr, cell_font, false);
    Colour(cr, kInk);
    Text(cr, i < c.row_labels.size() ? c.row_labels[i] : "", b.x, y + ch * 0.5 + cell_font * 0.35,
         0.0);
    for (size_t j = 0; j < c.grid[i].size(); ++j) {
      const double share = static_cast<double>(c.grid[i][j]) / static_cast<double>(max);
      cairo_set_source_rgb(cr, 1 - share * 0.82, 1 - share * 0.63, 1 - share * 0.38);
      const double x = p.x + cw * static_cast<double>(j);
      cairo_rectangle(cr, x + 0.5, y + 0.5, cw - 1, ch - 1);
      cairo_fill(cr);
      Colour(cr, share > 0.55 ? 0xFFFFFF : kInk);
      Text(cr, std::to_string(c.grid[i][j]), x + cw / 2, y + ch * 0.5 + cell_font * 0.35, 0.5);
    }
  }
}

}  // namespace

void UseFont(cairo_t* cr, double size, bool bold) {
  cairo_select_font_face(cr, kReportFont, CAIRO_FONT_SLANT_NORMAL,
                         bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cr, size);
}

double TextWidth(cairo_t* cr, const std::string& text) {
  cairo_text_extents_t e;
  cairo_text_extents(cr, text.c_str(), &e);
  return e.x_advance;
}

std::string ShortDay(const std::string& text) {
  static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  int y = 0, m = 0, d = 0;
  char extra = 0;
  if (text.size() != 10 || std::sscanf(text.c_str(), "%d-%d-%d%c", &y, &m, &d, &extra) != 3 ||
      m < 1 || m > 12) {
    return text;
  }
  return std::to_string(d) + " " + kMonths[m - 1];
}

void DrawChart(cairo_t* cr, const Chart& chart, double x, double y, double width, double height,
               double font) {
  cairo_save(cr);
  Colour(cr, kInk);
  UseFont(cr, font * 1.25, true);
  Text(cr, chart.title, x, y + font * 1.25, 0.0);
  const Box b{x, y + font * 2.4, width, height - font * 2.4};
  if (chart.kind == Chart::Kind::kHeatmap) {
    Heatmap(cr, chart, b, font);
  } else {
    int64_t max = chart.limit.value_or(0);
    for (int64_t v : chart.values) max = std::max(max, v);
    const auto [top, step] = Scale(max);
    const Box p = Axes(cr, chart, b, font, top, step);
    Series(cr, chart, p, top, font);
    Limit(cr, chart, p, top, font);
  }
  cairo_restore(cr);
}

}  // namespace velqua_reports
