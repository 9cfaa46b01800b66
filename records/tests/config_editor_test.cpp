#include "velqua/records/config_editor.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "velqua/records/bundled.h"
#include "velqua/records/common.h"
#include "velqua/records/config_json.h"

namespace velqua_records {
namespace {

std::vector<std::string> SampleLines(const std::string& name) {
  const std::string text = ReadWholeFile(
      std::string(VELQUA_SOURCE_DIR) + "/examples/" + name + "/records.txt", "records");
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
    start = end + 1;
  }
  return lines;
}

// What translate prints for the same lines: the rows the road writes with the
// same writer, without the editor's bookkeeping.
std::string Translated(const SwitchConfig& config, const std::vector<std::string>& lines,
                       RowFormat format) {
  std::unique_ptr<std::FILE, FileCloser> f(std::tmpfile());
  {
    Output out(f.get());
    std::unique_ptr<RowWriter> writer = MakeRowWriter(format, out);
    Translation translation(config.cfg, *writer, {"", "", true, config.form, true});
    translation.Input("samples", ReceivedAt("-", 2026));
    for (const std::string& line : lines) translation.LineBytes(line);
    translation.Finish();
    writer->Finish();
  }
  std::rewind(f.get());
  std::string text;
  char buffer[4096];
  size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, f.get())) > 0) text.append(buffer, n);
  return text;
}

std::string Joined(const Preview& preview) {
  std::string text;
  for (const std::string& line : preview.header) text += line + "\n";
  for (const PreviewRow& row : preview.rows) text += row.line + "\n";
  return text;
}

TEST(ConfigEditorTest, PreviewPrintsEveryRowAsTranslateDoes) {
  const struct {
    const char* name;
    RowFormat format;
  } cases[] = {{"kx-tda", RowFormat::kTable},    {"hicom", RowFormat::kCsv},
               {"norstar", RowFormat::kJsonl},   {"samsung-officeserv", RowFormat::kCsv},
               {"ip-office", RowFormat::kTable}, {"mitel-5000", RowFormat::kJsonl}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const SwitchConfig config = LoadSwitchConfig(c.name);
    const std::vector<std::string> lines = SampleLines(c.name);
    const Preview preview = PreviewSamples(config, lines, c.format, 2026);
    ASSERT_FALSE(preview.rows.empty());
    EXPECT_EQ(Joined(preview), Translated(config, lines, c.format));
    // The table's heading and rule, the CSV heading, no JSON Lines heading.
    const size_t heading = c.format == RowFormat::kTable ? 2 : c.format == RowFormat::kCsv ? 1 : 0;
    EXPECT_EQ(preview.header.size(), heading);
    // Each row points at the line its record starts on, in order.
    int64_t last = -1;
    for (const PreviewRow& row : preview.rows) {
      ASSERT_GE(row.sample, last);  // NUL-ended records share a line
      ASSERT_LT(row.sample, static_cast<int64_t>(lines.size()));
      last = row.sample;
    }
  }
}

TEST(ConfigEditorTest, RowsNotTranslatedCarryTheirReason) {
  const SwitchConfig config = LoadSwitchConfig("hicom");
  std::vector<std::string> lines = SampleLines("hicom");
  const std::string good = lines.front();
  std::string hour27 = good;
  const Preview first = PreviewSamples(config, {good}, RowFormat::kCsv, 2026);
  ASSERT_EQ(first.rows.size(), 1u);
  ASSERT_EQ(first.rows[0].status, RowStatus::kTranslated);
  EXPECT_TRUE(first.rows[0].reasons.empty());
  // The hour of a Hicom long record stands at columns 10-11.
  hour27.replace(9, 2, "27");
  const struct {
    std::string line;
    RowStatus status;
    std::string reason;  // a part of the first reason
  } cases[] = {
      {"no digits at all here", RowStatus::kUnrecognised, "holds no digit"},
      {std::string(good.size(), '7'), RowStatus::kUnrecognised, "mark"},
      {hour27, RowStatus::kDamaged, "27"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    const Preview preview = PreviewSamples(config, {good, c.line}, RowFormat::kCsv, 2026);
    ASSERT_EQ(preview.rows.size(), 2u);
    const PreviewRow& row = preview.rows[1];
    EXPECT_EQ(row.sample, 1);
    EXPECT_EQ(row.status, c.status);
    ASSERT_FALSE(row.reasons.empty());
    EXPECT_NE(row.reasons[0].find(c.reason), std::string::npos) << row.reasons[0];
    EXPECT_EQ(row.record, c.line);
  }
}

// Saving a bundled configuration unchanged in each form and opening what was
// saved gives the same configuration; a form that cannot hold it is refused.
TEST(ConfigEditorTest, EveryBundledSwitchSurvivesItsFiles) {
  const std::vector<BundledSwitch> bundled = ListBundledSwitches();
  ASSERT_GE(bundled.size(), 16u);
  for (const BundledSwitch& entry : bundled) {
    SCOPED_TRACE(entry.name);
    SwitchConfig config = LoadSwitchConfig(entry.config);
    const std::string json = ConfigBytes(config, ConfigFormat::kJson);
    EXPECT_FALSE(config.cfg->Modificado());
    SwitchConfig reopened = ConfigFromBytes(json, ConfigFormat::kJson);
    EXPECT_EQ(ConfigBytes(reopened, ConfigFormat::kJson), json);
    for (ConfigFormat format : {ConfigFormat::kCfg, ConfigFormat::kIni}) {
      const bool holds = !config.form.delimited && (format == ConfigFormat::kCfg ||
                                                    config.cfg->Caso() == velqua::emCasoEstandar);
      if (!holds) {
        EXPECT_THROW(ConfigBytes(config, format), Failure);
        continue;
      }
      const std::string bytes = ConfigBytes(config, format);
      SwitchConfig back = ConfigFromBytes(bytes, format);
      EXPECT_EQ(ConfigBytes(back, format), bytes);
      EXPECT_EQ(ConfigToJson(*back.cfg), ConfigToJson(*config.cfg));
    }
  }
}

TEST(ConfigEditorTest, BadUploadsAreRefused) {
  EXPECT_THROW(ConfigFromBytes("{\"brand\": 3}", ConfigFormat::kJson), Failure);
  EXPECT_THROW(ConfigFromBytes("not json", ConfigFormat::kJson), Failure);
  EXPECT_ANY_THROW(ConfigFromBytes("short", ConfigFormat::kCfg));
}

}  // namespace
}  // namespace velqua_records
