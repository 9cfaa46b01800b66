// Each page's data against what the store holds, on both engines.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

#include "velqua/store/users.h"
#include "web_test_support.h"

namespace velqua_web_testing {
namespace {

using velqua_store_testing::Call;
using velqua_store_testing::Unrecognised;

class PagesTest : public WebTest {
 protected:
  // Five calls over two days of March 2026 on switch "hq", one unanswered;
  // the server started and a viewer logged in.
  void Fill() {
    const velqua_store::Source source = NewSource("hq", "serial");
    std::vector<velqua_store::Record> records = {
        Call(1, "201", "2026-03-09 09:10:00", "01", "0301111"),
        Call(2, "202", "2026-03-09 09:40:00", "02", "0302222"),
        Call(3, "201", "2026-03-10 10:00:00", "01", "0049301"),
        Call(4, "203", "2026-03-10 10:30:00", "03", "0303333"),
        Call(5, "201", "2026-03-10 17:00:00", "01", "0304444"),
        Unrecognised(6, "GARBAGE LINE")};
    records[3].row.duration = 300;
    records[4].row.attribute = 4;  // unanswered
    store_->Write(source, records, std::nullopt);
    Start();
    ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  }
};

TEST_P(PagesTest, ACallOpensWithItsRawRecordAndAnUnknownOneIs404) {
  Fill();
  const nlohmann::json first = client_->Json("/api/calls?extension=203");
  const int64_t id = first["calls"][0]["id"];
  const nlohmann::json call = client_->Json("/api/calls/" + std::to_string(id));
  EXPECT_EQ(call["raw"], "2026-03-10 10:30:00 203 03 0303333");
  EXPECT_EQ(call["duration"], 300);
  EXPECT_EQ(call["switch"], "hq");
  EXPECT_EQ(client_->Json("/api/switches")[0]["calls"], 5);
  EXPECT_EQ(client_->Send("GET", "/api/calls/999999")->status, 404);
}

TEST_P(PagesTest, ExportHoldsWhatIsShownAsCsv) {
  Fill();
  const httplib::Result r =
      client_->Send("GET", "/api/calls/export.csv?from=2026-03-10&sort=start&order=asc");
  ASSERT_TRUE(r);
  ASSERT_EQ(r->status, 200);
  EXPECT_EQ(r->get_header_value("Content-Disposition"), "attachment; filename=\"calls.csv\"");
  const std::string& csv = r->body;
  EXPECT_EQ(csv.substr(0, csv.find("\r\n")),
            "start,switch,type,attribute,extension,dialled,trunk,duration,ring,account_code,cost,"
            "currency,destination,person,department");
  size_t lines = 0;
  for (char c : csv) lines += c == '\n';
  EXPECT_EQ(lines, 4u);  // header and three calls
  EXPECT_NE(csv.find("2026-03-10T10:00:00,hq,outgoing,none,201,0049301,01,42,"), std::string::npos)
      << csv;
}

TEST_P(PagesTest, DashboardCountsTheDayAndTheMonth) {
  Fill();
  const nlohmann::json d = client_->Json("/api/dashboard?day=2026-03-10");
  EXPECT_EQ(d["latest_day"], "2026-03-10");
  EXPECT_EQ(d["today"]["calls"], 3);
  EXPECT_EQ(d["today"]["unanswered"], 1);
  EXPECT_EQ(d["today"]["minutes"], (42 + 300 + 42 + 59) / 60);
  EXPECT_EQ(d["month"]["calls"], 5);
  EXPECT_EQ(d["top_extensions"][0]["extension"], "201");
  EXPECT_EQ(d["top_extensions"][0]["calls"], 3);
  ASSERT_EQ(d["hours"].size(), 2u);
  EXPECT_EQ(d["hours"][0]["hour"], "10");
  EXPECT_EQ(d["hours"][0]["calls"], 2);
  const nlohmann::json unanswered = client_->Json("/api/calls?unanswered=1");
  ASSERT_EQ(unanswered["calls"].size(), 1u);
  EXPECT_EQ(unanswered["calls"][0]["dialled"], "0304444");
  EXPECT_EQ(client_->Send("GET", "/api/dashboard?day=2026-02-30")->status, 400);
}

// A call written while a page listens reaches it, as does an unrecognised
// record, with its reason.
TEST_P(PagesTest, LivePagesGetWhatIsStored) {
  Start();
  ASSERT_EQ(client_->Login("vic", "secret-password"), 200);
  const velqua_store::Source source = NewSource("hq", "serial");
  std::string received;
  std::atomic<bool> done{false};
  std::thread listener([&] {
    httplib::Client http("127.0.0.1", server_->port());
    http.set_read_timeout(20, 0);
    httplib::Headers headers = client_->Headers();
    headers.emplace("Last-Event-ID", "0");
    http.Get("/api/live", headers, [&](const char* data, size_t length) {
      received.append(data, length);
      const bool all = received.find("\"dialled\":\"0307777\"") != std::string::npos &&
                       received.find("\"kind\":\"unrecognised\"") != std::string::npos;
      return !all;
    });
    done = true;
  });
  store_->Write(source,
                {Call(1, "204", "2026-03-11 08:00:00", "01", "0307777"), Unrecognised(2, "NOISE")},
                std::nullopt);
  listener.join();
  EXPECT_TRUE(done);
  EXPECT_NE(received.find("\"kind\":\"call\""), std::string::npos) << received;
  EXPECT_NE(received.find("\"raw\":\"NOISE\""), std::string::npos) << received;
}

INSTANTIATE_TEST_SUITE_P(Engines, PagesTest, BothEngines(), EngineName);

}  // namespace
}  // namespace velqua_web_testing
