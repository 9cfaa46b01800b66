// The Reports view's API: every kind for a period, shown as JSON and
// downloaded as CSV, PDF and a spreadsheet whose bytes are those forms, on
// both engines.
#include <gtest/gtest.h>

#include "velqua/reports/kinds.h"
#include "web_test_support.h"

namespace velqua_web_testing {
namespace {

using velqua_store_testing::Call;

class ReportsTest : public WebTest {
 protected:
  // Four calls of March 2026 (three of extension 201) and one of April.
  void Fill() {
    const velqua_store::Source source = NewSource("hq", "serial");
    store_->Write(source,
                  {Call(1, "201", "2026-03-09 09:10:00", "01", "0301111"),
                   Call(2, "202", "2026-03-09 09:40:00", "02", "0302222"),
                   Call(3, "201", "2026-03-10 10:00:00", "01", "0049301"),
                   Call(4, "201", "2026-03-31 23:59:00", "01", "0303333"),
                   Call(5, "201", "2026-04-01 00:00:10", "01", "0304444")},
                  std::nullopt);
    Start();
    ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  }
};

constexpr const char* kMarch = "from=2026-03-01&to=2026-03-31";

TEST_P(ReportsTest, EveryKindIsShownAndItsPeriodDefaultsToThePreviousMonth) {
  Fill();
  const nlohmann::json list = client_->Json("/api/reports");
  EXPECT_EQ(list["kinds"].get<std::vector<std::string>>(), velqua_reports::KindNames());
  EXPECT_EQ(list["from"].get<std::string>().substr(8), "01");
  for (const std::string& kind : velqua_reports::KindNames()) {
    SCOPED_TRACE(kind);
    const nlohmann::json r = client_->Json("/api/reports/" + kind + "?" + kMarch);
    EXPECT_EQ(r["kind"], kind);
    EXPECT_FALSE(r["tables"].empty());
    if (kind == "extensions") {
      EXPECT_GE(r["charts"].get<int>(), 1);
    }
    EXPECT_EQ(client_->Json("/api/reports/" + kind)["from"], list["from"]);
  }
}

TEST_P(ReportsTest, DownloadsAreTheFormsBytes) {
  Fill();
  struct Row {
    std::string format, type, starts;
  };
  const Row rows[] = {
      {"csv", "text/csv; charset=utf-8", "Extensions\r\n"},
      {"pdf", "application/pdf", "%PDF-"},
      {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet",
       std::string("PK\x03\x04", 4)},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.format);
    const auto r = client_->Send(
        "GET", std::string("/api/reports/extensions?") + kMarch + "&format=" + row.format);
    ASSERT_TRUE(r);
    ASSERT_EQ(r->status, 200) << r->body;
    EXPECT_EQ(r->get_header_value("Content-Type"), row.type);
    EXPECT_EQ(r->get_header_value("Content-Disposition"),
              "attachment; filename=\"extensions-2026-03-01-2026-03-31." + row.format + "\"");
    EXPECT_EQ(r->body.rfind(row.starts, 0), 0u) << r->body.substr(0, 40);
  }
  const auto csv =
      client_->Send("GET", std::string("/api/reports/extensions?") + kMarch + "&format=csv");
  EXPECT_NE(csv->body.find("201,3,"), std::string::npos) << csv->body;
  const auto svg =
      client_->Send("GET", std::string("/api/reports/traffic?") + kMarch + "&format=svg");
  EXPECT_EQ(svg->status, 200);
  EXPECT_NE(svg->body.find("<svg"), std::string::npos);
}

TEST_P(ReportsTest, AWrongRequestIsRefusedNamingWhatIsWrong) {
  Fill();
  struct Row {
    std::string query, says;
  };
  const Row rows[] = {
      {"/api/reports/bills", "unknown report 'bills'"},
      {"/api/reports/extensions?from=2026-02-30&to=2026-03-01", "From: "},
      {"/api/reports/trunks?lines=-1", "parameter 'lines'"},
      {"/api/reports/extensions?from=2026-03-01", "give both or neither"},
      {"/api/reports/extensions?format=doc", "parameter 'format'"},
      {"/api/reports/extensions?switch=branch", "branch"},
      {"/api/reports/missed?callback=soon", "Called back within: "},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.query);
    const auto r = client_->Send("GET", row.query);
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, 400);
    EXPECT_NE(r->body.find(row.says), std::string::npos) << r->body;
    EXPECT_EQ(r->body.find("--"), std::string::npos) << r->body;
  }
  ApiClient stranger(server_->port());
  EXPECT_EQ(stranger.Send("GET", "/api/reports/extensions")->status, 401);
}

INSTANTIATE_TEST_SUITE_P(Engines, ReportsTest, BothEngines(), EngineName);

}  // namespace
}  // namespace velqua_web_testing
