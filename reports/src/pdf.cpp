// The PDF form: A4 pages drawn with Cairo. The first page carries the
// title, the period, the switches and the notes, then the charts; tables
// follow, breaking across pages with their name and headings repeated.
// Every page has a footer with the report's title and "page n of N": the
// pages are laid out twice, once to count them and once to draw them. A
// list kept on disk shows its first rows and says how many more there are.
#include <cairo-pdf.h>

#include <algorithm>

#include "chart.h"
#include "velqua/records/common.h"
#include "velqua/reports/output.h"

namespace velqua_reports {
namespace {

constexpr double kWidth = 595.28, kHeight = 841.89;  // A4 in points
constexpr double kMargin = 42, kFooter = 28;
constexpr double kBodyFont = 8.5, kChartHeight = 250;
// The rows of a long list cut in print (one kept on disk, as long as its
// period) a PDF shows: some 40 pages, what a reader reads; the other forms
// list them all.
constexpr int64_t kListed = 2000;

bool IsNumeric(ColumnType type) {
  return type == ColumnType::kInteger || type == ColumnType::kDuration ||
         type == ColumnType::kMoney;
}

std::string Period(const Report& r) {
  return "Period: " + ShortDay(r.from) + " " + r.from.substr(0, 4) + " to " + ShortDay(r.to) + " " +
         r.to.substr(0, 4);
}

class Pages {
 public:
  Pages(cairo_t* cr, const Report& report, int total) : cr_(cr), report_(report), total_(total) {}

  int Draw() {
    Title();
    for (const Chart& c : report_.charts) {
      Need(kChartHeight);
      DrawChart(cr_, c, kMargin, y_, kWidth - 2 * kMargin, kChartHeight - 16, kBodyFont);
      y_ += kChartHeight;
    }
    for (const Table& t : report_.tables) DrawTable(t);
    Footer();
    return page_;
  }

 private:
  void Title() {
    cairo_set_source_rgb(cr_, 0.13, 0.13, 0.13);
    UseFont(cr_, 18, true);
    Line(report_.title, kMargin, y_ + 18);
    y_ += 30;
    UseFont(cr_, 10, false);
    Line(Period(report_), kMargin, y_ + 10);
    y_ += 15;
    std::string switches;
    for (const std::string& s : report_.switches) switches += (switches.empty() ? "" : ", ") + s;
    Line((report_.switches.size() == 1 ? "Switch: " : "Switches: ") +
             (switches.empty() ? "none" : switches),
         kMargin, y_ + 10);
    y_ += 15;
    for (const std::string& note : report_.notes) {
      Line(note, kMargin, y_ + 10);
      y_ += 15;
    }
    cairo_set_line_width(cr_, 0.8);
    cairo_move_to(cr_, kMargin, y_ + 4);
    cairo_line_to(cr_, kWidth - kMargin, y_ + 4);
    cairo_stroke(cr_);
    y_ += 18;
  }

  void Line(const std::string& text, double x, double y) {
    cairo_move_to(cr_, x, y);
    cairo_show_text(cr_, text.c_str());
  }

  // Column widths at `font`, and the font that fits them in the page.
  std::vector<double> Widths(const Table& t, double* font) {
    UseFont(cr_, kBodyFont, true);
    std::vector<double> w(t.columns.size(), 0);
    const auto measure = [&](const std::vector<Cell>& row) {
      for (size_t i = 0; i < w.size(); ++i) {
        w[i] = std::max(w[i], TextWidth(cr_, CellText(t.columns[i], row[i], true)));
      }
    };
    for (size_t i = 0; i < w.size(); ++i) w[i] = TextWidth(cr_, t.columns[i].heading);
    ForEachShown(t, measure);
    if (t.total) measure(*t.total);
    double sum = 0;
    for (double& x : w) sum += (x += 12);
    const double room = kWidth - 2 * kMargin;
    const double scale = sum > room ? room / sum : 1.0;
    *font = kBodyFont * scale;
    for (double& x : w) x *= scale;
    return w;
  }

  void DrawTable(const Table& t) {
    double font = kBodyFont;
    const std::vector<double> w = Widths(t, &font);
    const double row = font * 1.55;
    Need(row * 4 + 20);
    Heading(t, w, font, false);
    size_t r = 0;
    ForEachShown(t, [&](const Row& cells) {
      if (y_ + row > kHeight - kMargin - kFooter) {
        NewPage();
        Heading(t, w, font, true);
      }
      if (r++ % 2 == 1) Band(row, 0.95);
      Cells(t, cells, w, font, false);
    });
    const int64_t hidden = RowCount(t) - static_cast<int64_t>(r);
    if (hidden > 0) {
      Need(row);
      cairo_set_source_rgb(cr_, 0.13, 0.13, 0.13);
      UseFont(cr_, font, true);
      Line(std::to_string(hidden) +
               " more rows not shown here: the CSV, JSON and spreadsheet "
               "forms list them all",
           kMargin + 6, y_ + row * 0.5 + font * 0.35);
      y_ += row;
    }
    if (t.total) {
      Need(row);
      cairo_set_source_rgb(cr_, 0.13, 0.13, 0.13);
      cairo_set_line_width(cr_, 0.8);
      cairo_move_to(cr_, kMargin, y_);
      cairo_line_to(cr_, kMargin + Sum(w), y_);
      cairo_stroke(cr_);
      Cells(t, *t.total, w, font, true);
    }
    y_ += 16;
  }

  // The rows of `t` the PDF shows: every row, or of a list cut in print,
  // its rows and the first kListed of those kept on disk.
  static void ForEachShown(const Table& t, const std::function<void(const Row&)>& visit) {
    int64_t n = 0;
    ForEachRow(t, [&](const Row& row) {
      if (!t.cut_in_print || n++ < static_cast<int64_t>(t.rows.size()) + kListed) visit(row);
    });
  }

  void Heading(const Table& t, const std::vector<double>& w, double font, bool continued) {
    cairo_set_source_rgb(cr_, 0.13, 0.13, 0.13);
    UseFont(cr_, 11, true);
    Line(t.name + (continued ? " (continued)" : ""), kMargin, y_ + 11);
    y_ += 17;
    Band(font * 1.7, 0.85);
    std::vector<Cell> heads;
    for (const Column& c : t.columns) heads.push_back(Cell::Text(c.heading));
    Table plain{"", std::vector<Column>(t.columns.size()), {}, {}};
    for (size_t i = 0; i < t.columns.size(); ++i) {
      plain.columns[i].type = IsNumeric(t.columns[i].type) ? ColumnType::kMoney : ColumnType::kText;
    }
    Cells(plain, heads, w, font, true, font * 1.7);
  }

  void Band(double height, double grey) {
    cairo_set_source_rgb(cr_, grey, grey, grey);
    cairo_rectangle(cr_, kMargin, y_, kWidth - 2 * kMargin, height);
    cairo_fill(cr_);
  }

  void Cells(const Table& t, const std::vector<Cell>& cells, const std::vector<double>& w,
             double font, bool bold, double height = 0) {
    if (height == 0) height = font * 1.55;
    cairo_set_source_rgb(cr_, 0.13, 0.13, 0.13);
    UseFont(cr_, font, bold);
    double x = kMargin;
    for (size_t i = 0; i < cells.size(); ++i) {
      const std::string text = cells[i].empty ? "" : CellText(t.columns[i], cells[i], true);
      const bool right = IsNumeric(t.columns[i].type);
      Line(text, right ? x + w[i] - 6 - TextWidth(cr_, text) : x + 6,
           y_ + height * 0.5 + font * 0.35);
      x += w[i];
    }
    y_ += height;
  }

  static double Sum(const std::vector<double>& w) {
    double s = 0;
    for (double x : w) s += x;
    return s;
  }

  void Need(double height) {
    if (y_ + height > kHeight - kMargin - kFooter) NewPage();
  }

  void NewPage() {
    Footer();
    cairo_show_page(cr_);
    ++page_;
    y_ = kMargin;
  }

  void Footer() {
    cairo_set_source_rgb(cr_, 0.4, 0.4, 0.4);
    UseFont(cr_, 8, false);
    const double y = kHeight - kMargin + 6;
    Line(report_.title + " - " + report_.from + " to " + report_.to, kMargin, y);
    const std::string page =
        "page " + std::to_string(page_) + (total_ > 0 ? " of " + std::to_string(total_) : "");
    Line(page, kWidth - kMargin - TextWidth(cr_, page), y);
  }

  cairo_t* cr_;
  const Report& report_;
  int total_;
  int page_ = 1;
  double y_ = kMargin;
};

cairo_status_t Discard(void*, const unsigned char*, unsigned int) { return CAIRO_STATUS_SUCCESS; }

int Lay(cairo_surface_t* surface, const Report& report, int total) {
  cairo_t* cr = cairo_create(surface);
  const int pages = Pages(cr, report, total).Draw();
  cairo_show_page(cr);
  cairo_destroy(cr);
  cairo_surface_finish(surface);
  const cairo_status_t status = cairo_surface_status(surface);
  cairo_surface_destroy(surface);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw velqua_records::Failure(std::string("cannot draw the PDF: ") +
                                  cairo_status_to_string(status));
  }
  return pages;
}

}  // namespace

void WritePdf(const Report& report, const std::string& path) {
  const int pages =
      Lay(cairo_pdf_surface_create_for_stream(Discard, nullptr, kWidth, kHeight), report, 0);
  cairo_surface_t* surface = cairo_pdf_surface_create(path.c_str(), kWidth, kHeight);
  cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_TITLE, report.title.c_str());
  cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATOR, "velqua report");
  Lay(surface, report, pages);
}

}  // namespace velqua_reports
