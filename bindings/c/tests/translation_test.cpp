// The program's road through the C interface, and drawings onto a surface
// made of C callbacks.
#include <cstdio>
#include <string>
#include <vector>

#include "c_test_support.h"
#include "velqua/velqua.h"

namespace velqua_c_test {
namespace {

Translation NewTranslation(const velqua_cfg* cfg, const velqua_translation_settings* settings) {
  velqua_translation* p = nullptr;
  EXPECT_EQ(velqua_translation_create(cfg, settings, &p), 0);
  return Translation(p);
}

// A row as one line: what a host reads of it.
std::string Line(const velqua_call& c) {
  std::string line = std::to_string(c.record) + " " + c.type_name + " " + c.attribute_name;
  if (!c.has_fields) return line + " | " + c.error;
  line += " " + (c.has_date ? std::to_string(c.year * 10000 + c.month * 100 + c.day) : "-");
  line += " " + (c.has_time ? std::to_string(c.time) + (c.has_seconds ? "s" : "m") : "-");
  line += " " + std::to_string(c.duration) + " " + std::to_string(c.ring);
  for (const char* text : {c.dialled, c.extension, c.trunk, c.receiving_extension,
                           c.receiving_trunk, c.account_code}) {
    line += std::string(" ") + text;
  }
  return line + (c.extension_random ? " random" : "");
}

// Writes the input in pieces of `piece` bytes, taking the rows as they come.
std::vector<std::string> Rows(velqua_translation* t, const std::string& input, size_t piece) {
  std::vector<std::string> rows;
  velqua_call call{};
  bool got = false;
  const auto drain = [&] {
    while (velqua_translation_next(t, &call, &got) == 0 && got) rows.push_back(Line(call));
  };
  for (size_t at = 0; at < input.size(); at += piece) {
    EXPECT_EQ(velqua_translation_write(t, input.data() + at, std::min(piece, input.size() - at)),
              0);
    drain();
  }
  EXPECT_EQ(velqua_translation_finish(t), 0);
  drain();
  velqua_call_clear(&call);
  return rows;
}

TEST(CTranslation, RowsDoNotDependOnWhereTheBytesAreCut) {
  for (const char* example : {"kx-tda", "norstar"}) {  // single-line CR LF; multi-line, mixed
    SCOPED_TRACE(example);
    Cfg cfg = NewCfg(Example(std::string(example) + "/" + example + ".cfg"));
    const std::string input = ReadFile(Example(std::string(example) + "/records.txt"));
    const velqua_translation_settings settings{nullptr, nullptr, false, 2026};
    const std::vector<std::string> whole =
        Rows(NewTranslation(cfg.get(), &settings).get(), input, input.size());
    ASSERT_GT(whole.size(), 10u);
    const size_t pieces[] = {1, 2, 3, 7, 64, 1000};
    for (size_t piece : pieces) {
      SCOPED_TRACE(piece);
      EXPECT_EQ(Rows(NewTranslation(cfg.get(), &settings).get(), input, piece), whole);
    }
  }
}

TEST(CTranslation, KxTdaRowsShowOnlyWhatTheSwitchPrinted) {
  Cfg cfg = NewCfg(Example("kx-tda/kx-tda.json"));
  const std::string list = Example("kx-tda/extensions.txt");
  const velqua_translation_settings settings{list.c_str(), nullptr, false, 0};
  Translation t = NewTranslation(cfg.get(), &settings);
  const std::vector<std::string> rows =
      Rows(t.get(), ReadFile(Example("kx-tda/records.txt")), 4096);
  // The sample's two page-heading lines are skipped, not rows; rows are
  // numbered by the line their record starts on.
  ASSERT_EQ(rows.size(), 30u);
  EXPECT_EQ(rows[0], "3 incoming none 20260119 28800m 83 5 0312345678 201 01   ");
  EXPECT_EQ(rows[3], "6 outgoing none 20260119 29880m 727 -1 00441632960123 201 02   1234");
  EXPECT_EQ(rows[21].substr(0, 45), "24 outgoing none 20260119 48840m 47 -1 031234");
  EXPECT_EQ(rows[21].substr(rows[21].size() - 12), " 9999 random");
  velqua_counts counts{};
  ASSERT_EQ(velqua_translation_counts(t.get(), &counts), 0);
  EXPECT_EQ(counts.read, 30);
  EXPECT_EQ(counts.unrecognised, 0);
  EXPECT_EQ(counts.failed, 0);
  EXPECT_EQ(counts.random_extensions, 1);
}

// Each call carries its true start and its end (the rule is the records
// layer's; here its fields through the interface): past midnight.
TEST(CTranslation, EachCallHasItsEndBesideItsTrueStart) {
  struct Case {
    const char* config;
    std::string record;
    const char* expected;  // "start-date start-time > end-date end-time" ("none": no end)
  } const cases[] = {
      // clang-format off
      {"ip-office/ip-office.json", "2026/03/10 23:59:30,00:01:05,3,0312345678,I,201,201,,0,1000001,0,E201,Ann,T9001,Line " "1.1,0,0\r\n", "20260310 86370 > 20260311 35"},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.record);
    Cfg cfg = NewCfg(Example(c.config));
    Translation t = NewTranslation(cfg.get(), nullptr);
    ASSERT_EQ(velqua_translation_write(t.get(), c.record.data(), c.record.size()), 0);
    ASSERT_EQ(velqua_translation_finish(t.get()), 0);
    velqua_call call{};
    bool got = false;
    ASSERT_EQ(velqua_translation_next(t.get(), &call, &got), 0);
    ASSERT_TRUE(got);
    char text[80];
    std::snprintf(text, sizeof text, "%04d%02d%02d %d > ", call.year, call.month, call.day,
                  call.time);
    std::string shown = text;
    if (call.has_end) {
      std::snprintf(text, sizeof text, "%04d%02d%02d %d", call.end_year, call.end_month,
                    call.end_day, call.end_time);
      shown += text;
    } else {
      shown += "none";
    }
    EXPECT_EQ(shown, c.expected);
    velqua_call_clear(&call);
  }
}

// Abrir reads a binary configuration, which declares no record form: the
// page headings the JSON form skipped are records again.
TEST(CTranslation, AbrirLeavesNoRecordFormOfTheConfigurationBefore) {
  Cfg cfg = NewCfg(Example("kx-tda/kx-tda.json"));
  ASSERT_EQ(velqua_cfg_abrir(cfg.get(), Example("kx-tda/kx-tda.cfg").c_str()), 0);
  const velqua_translation_settings settings{nullptr, nullptr, false, 2026};
  const std::vector<std::string> rows = Rows(NewTranslation(cfg.get(), &settings).get(),
                                             ReadFile(Example("kx-tda/records.txt")), 4096);
  EXPECT_EQ(rows.size(), 32u);
}

TEST(CTranslation, AFailedRecordIsARowWithItsErrorAndTheRunGoesOn) {
  Cfg cfg = NewCfg(Example("norstar/norstar.json"));
  const velqua_translation_settings settings{nullptr, nullptr, false, 2026};
  Translation t = NewTranslation(cfg.get(), &settings);
  const std::string input =
      ReadFile(std::string(VELQUA_SOURCE_DIR) + "/tests/e2e/data/norstar-long-line.txt");
  const std::vector<std::string> rows = Rows(t.get(), input, 4000);
  ASSERT_GE(rows.size(), 4u);
  EXPECT_EQ(rows[2],
            "9 unrecognised none | overflow: a column past 255, or a number too large for the "
            "record");
  EXPECT_EQ(rows[3].substr(0, 36), "11 incoming none 20260203 29523s 391");
  velqua_counts counts{};
  ASSERT_EQ(velqua_translation_counts(t.get(), &counts), 0);
  EXPECT_EQ(counts.failed, 1);
}

TEST(CTranslation, OnlyTheInputsFirstByteOrderMarkIsDropped) {
  Cfg cfg = NewCfg(Example("kx-tda/kx-tda.cfg"));
  const velqua_translation_settings settings{nullptr, nullptr, true, 0};
  Translation t = NewTranslation(cfg.get(), &settings);
  const std::string record =
      "\xEF\xBB\xBF"
      "01/19/26 08:07AM   202 01 0312598877                     00:04'51\n";
  std::vector<std::string> rows;
  velqua_call call{};
  bool got = false;
  for (int i = 0; i < 2; ++i) {  // the second mark starts a later write: a character of its line
    ASSERT_EQ(velqua_translation_write(t.get(), record.data(), record.size()), 0);
    while (velqua_translation_next(t.get(), &call, &got) == 0 && got) rows.push_back(Line(call));
  }
  velqua_call_clear(&call);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0].substr(0, 25), "1 outgoing none 20260119 ");
  // The columns moved by one: the record cannot be a call's, and is kept as
  // unrecognised, as the program keeps it.
  EXPECT_EQ(rows[1].substr(0, 20), "2 unrecognised none ");
}

TEST(CTranslation, FilesTheLibraryWouldSkipSilentlyAreRefused) {
  Cfg cfg = NewCfg(Example("kx-tda/kx-tda.cfg"));
  const std::string list = TempPath("none/extensions.txt");
  const std::string log = TempPath("none/errors.log");
  const velqua_translation_settings settings[] = {{list.c_str(), nullptr, false, 0},
                                                  {nullptr, log.c_str(), false, 0}};
  const std::string expected[] = {"extension list '" + list + "': No such file or directory",
                                  "error log '" + log + "': No such file or directory"};
  for (int i = 0; i < 2; ++i) {
    SCOPED_TRACE(expected[i]);
    velqua_translation* t = nullptr;
    EXPECT_EQ(velqua_translation_create(cfg.get(), &settings[i], &t), 5);
    EXPECT_EQ(t, nullptr);
    EXPECT_EQ(ReadLastError(), (LastError{5, "Velqua", expected[i]}));
  }
}

// ---- Drawings: C callbacks that forward to the library's recording surface ----

velqua::SuperficieGrabadora& Rec(void* user) {
  return *static_cast<velqua::SuperficieGrabadora*>(user);
}

velqua_superficie Forwarding(velqua::SuperficieGrabadora* recorder) {
  velqua_superficie s{};
  s.usuario = recorder;
  s.font_name = [](void* u, const char* n) { Rec(u).FontName(velqua::DesdeUtf8(n)); };
  s.font_size = [](void* u, int16_t p) { Rec(u).FontSize(p); };
  s.font_bold = [](void* u, bool b) { Rec(u).FontBold(b); };
  s.fore_color = [](void* u, int32_t c) { Rec(u).ForeColor(c); };
  s.current_x = [](void* u, float x) { Rec(u).CurrentX(x); };
  s.current_y = [](void* u, float y) { Rec(u).CurrentY(y); };
  s.text_height = [](void* u, const char* t) { return Rec(u).TextHeight(velqua::DesdeUtf8(t)); };
  s.line = [](void* u, int16_t f, float x1, float y1, float x2, float y2, int32_t c) {
    Rec(u).Line(f, x1, y1, x2, y2, c);
  };
  s.print = [](void* u, const char* t) { Rec(u).Print(velqua::DesdeUtf8(t)); };
  s.twips_per_pixel_x = [](void* u) { return Rec(u).TwipsPerPixelX(); };
  s.twips_per_pixel_y = [](void* u) { return Rec(u).TwipsPerPixelY(); };
  return s;
}

TEST(CSurface, DrawingsReachTheCallbacksCallForCall) {
  const std::string path = Example("kx-tda/kx-tda.cfg");
  Cfg cfg = NewCfg(path);
  velqua::clsCfgConmut direct;
  direct.Abrir(velqua::DesdeUtf8(path));
  velqua::SuperficieGrabadora through_c(12, 14), expected(12, 14);
  through_c.AltoTextoPredeterminado(210);
  expected.AltoTextoPredeterminado(210);
  const velqua_superficie surface = Forwarding(&through_c);
  ASSERT_EQ(velqua_cfg_dibuja_configuracion_smdr(cfg.get(), velqua::emPuertoDB9, &surface, 30, 45),
            0);
  ASSERT_EQ(velqua_cfg_dibuja_tabla_conversion_db9_db25(cfg.get(), &surface, 5000, 0), 0);
  direct.DibujaConfiguracionSMDR(velqua::emPuertoDB9, expected, 30, 45);
  direct.DibujaTablaConversionDB9DB25(expected, 5000, 0);
  EXPECT_GT(expected.Llamadas().size(), 50u);
  EXPECT_EQ(through_c.Texto(), expected.Texto());

  velqua_superficie incomplete = surface;
  incomplete.print = nullptr;
  EXPECT_EQ(velqua_cfg_dibuja_tabla_conversion_db9_db25(cfg.get(), &incomplete, 0, 0), 5);
  EXPECT_EQ(velqua_cfg_dibuja_tabla_conversion_db9_db25(cfg.get(), nullptr, 0, 0), 5);
}

}  // namespace
}  // namespace velqua_c_test
