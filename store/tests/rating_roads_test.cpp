// A month of calls priced by the three roads into the store: imported with
// a rating plan in place, written batch by batch as the capture service
// writes them, and imported unpriced then priced by Rate. On SQLite and on
// PostgreSQL, all six stores must hold the same cost for every call.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "pg_test_server.h"
#include "sql_store.h"
#include "store_test_support.h"
#include "velqua/records/config_io.h"
#include "velqua/records/translation.h"
#include "velqua/store/aggregates.h"
#include "velqua/store/browse.h"
#include "velqua/store/import.h"
#include "velqua/store/store.h"

namespace velqua_store {
namespace {

const std::string kExamples = VELQUA_SOURCE_DIR "/examples/";

// The Berlin office of examples/rating/office-de.toml on a Hicom, with trunks
// 3-4 on another carrier from 15 March. Numbers as the Hicom prints them.

const char* const kPlan = R"([[tariff]]
switch = "berlin"
file = "a.toml"
rewrite = { "00" = "+", "0" = "+49" }
[[tariff]]
switch = "berlin"
trunks = ["3-4"]
from = 2026-03-15
file = "b.toml"
rewrite = { "00" = "+", "0" = "+49" }
)";

std::string Put(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
  return path;
}

// One Hicom line (the example's outgoing layout) with its fields replaced.
std::string HicomLine(int day, int seconds, int trunk, int duration, const std::string& number,
                      bool outgoing) {
  std::string line =
      "09.03.26 08:10:47   2     23       00:00:52 0301234567                  0.12  2";
  char text[32];
  std::snprintf(text, sizeof text, "%02d", day);
  line.replace(0, 2, text);
  std::snprintf(text, sizeof text, "%02d:%02d:%02d", seconds / 3600, seconds / 60 % 60,
                seconds % 60);
  line.replace(9, 8, text);
  line[20] = static_cast<char>('0' + trunk);
  std::snprintf(text, sizeof text, "%02d:%02d:%02d", duration / 3600, duration / 60 % 60,
                duration % 60);
  line.replace(35, 8, text);
  std::string padded = number;
  padded.resize(20, ' ');
  line.replace(44, 20, padded);
  line[78] = outgoing ? '2' : '1';
  return line + "\r\n";
}

// March 2026: 12 calls a day over every kind of number, trunk and hour.
std::string MonthOfRecords() {
  const char* const numbers[] = {"0301234567", "089123456",   "017612345678", "004312345678",
                                 "0800123456", "112",         "009912345",    "03012 34 56",
                                 "0221987654", "015112345678"};
  const int durations[] = {0, 1, 29, 30, 31, 59, 61, 125, 600, 3599, 7200, 45};
  std::string text;
  for (int day = 1; day <= 31; ++day) {
    for (int k = 0; k < 12; ++k) {
      const int seconds = (k * 7919 + day * 3253) % 86400;
      text += HicomLine(day, seconds, 1 + (k + day) % 4, durations[(k + day) % 12],
                        numbers[(k * 3 + day) % 10], k % 5 != 4);
    }
  }
  return text;
}

// Every call's price in listing order: cost (or "-"), destination, reason.
std::vector<std::string> Prices(Store& store) {
  std::vector<std::string> prices;
  store.ListCalls({}, [&](const StoredCall& c) {
    prices.push_back(c.start.value_or("") + " " + c.dialled.value_or("") + " " +
                     c.cost.value_or("-") + " " + c.destination.value_or("") + " " +
                     c.cost_reason.value_or(""));
  });
  return prices;
}

// Rows written as the capture service writes them: a batch at a time on a
// "capture" source.
class CaptureLikeSink : public velqua_records::RowSink {
 public:
  CaptureLikeSink(Store& store, Source source) : store_(store), source_(std::move(source)) {}
  void Write(const velqua_records::Row& row) override {
    Record r;
    r.position = row.offset;
    r.raw = velqua_records::U8(row.text);
    r.received_utc = "2026-04-01T00:00:00Z";
    r.row = row;
    r.row.text = {};
    batch_.push_back(std::move(r));
    if (batch_.size() == 7) Flush();
  }
  void Flush() override {
    if (!batch_.empty()) store_.Write(source_, batch_, std::nullopt, nullptr);
    batch_.clear();
  }

 private:
  Store& store_;
  Source source_;
  std::vector<Record> batch_;
};

// The Berlin office in `dir`: its tariffs (carrier B's national minute
// dearer when `dearer`), its plan and a month of its records, and how to
// import them.
struct Berlin {
  Berlin(const std::string& dir, bool dearer) {
    std::ifstream in(kExamples + "rating/office-de.toml", std::ios::binary);
    const std::string a((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::string b = a;
    if (dearer) {
      b.replace(b.find("per_minute = \"0.0290\""), 21, "per_minute = \"0.0310\"");
      b.replace(b.find("name = \"Carrier A\""), 18, "name = \"Carrier B\"");
    }
    Put(dir + "/a.toml", a);
    Put(dir + "/b.toml", b);
    plan = Put(dir + "/plan.toml", kPlan);
    records = Put(dir + "/month.txt", MonthOfRecords());
    settings.switch_name = "berlin";
    settings.config = kExamples + "hicom/hicom.json";
    settings.year = 2026;
  }
  std::string plan, records;
  ImportSettings settings;
};

std::vector<std::vector<std::string>> ThreeRoads(const std::string& dir,
                                                 const std::vector<std::string>& urls) {
  Berlin berlin(dir, true);
  const std::string& records = berlin.records;
  const std::string& plan = berlin.plan;
  ImportSettings& settings = berlin.settings;
  settings.batch = 50;
  std::vector<std::vector<std::string>> prices;
  // Import with the plan in place.
  auto imported = OpenStore(urls[0]);
  imported->PutRatingPlan(plan);
  Importer(*imported, settings).Import({records});
  prices.push_back(Prices(*imported));
  // As the capture service writes.
  auto captured = OpenStore(urls[1]);
  captured->PutRatingPlan(plan);
  captured->PutSwitch({"berlin", settings.config, "", ""});
  CaptureLikeSink sink(*captured, captured->OpenSource("berlin", "v24", "capture"));
  // With its record form, as the service loads a switch: Hicom prints when
  // a call ended, and the form says so.
  const velqua_records::SwitchConfig loaded = velqua_records::LoadSwitchConfig(settings.config);
  velqua_records::Translation::Settings translating;
  translating.form = loaded.form;
  velqua_records::Translation translation(loaded.cfg, sink, translating);
  std::FILE* in = std::fopen(records.c_str(), "rb");
  translation.Input("month.txt", velqua_records::ReceivedAt(records, 2026));
  translation.Stream(in);
  translation.Finish();
  sink.Flush();
  std::fclose(in);
  prices.push_back(Prices(*captured));
  // Imported unpriced, then priced by Rate in small batches.
  auto rated = OpenStore(urls[2]);
  Importer(*rated, settings).Import({records});
  int64_t costs = 0;
  rated->ListCalls({}, [&](const StoredCall& c) { costs += c.cost || c.cost_reason ? 1 : 0; });
  EXPECT_EQ(costs, 0) << "priced without a plan";
  rated->PutRatingPlan(plan);
  RatePeriod period;
  period.batch = 33;
  const RateResult result = rated->Rate(period);
  EXPECT_GT(result.priced, 200);
  EXPECT_GT(result.unpriced, 0);  // +99... and the 0 s calls on no tariff
  prices.push_back(Prices(*rated));
  // Pricing again changes nothing.
  rated->Rate(period);
  prices.push_back(Prices(*rated));
  return prices;
}

TEST(RatingRoadsPostgres, ImportCaptureAndRateGiveTheSameCostsOnBothEngines) {
  const std::string dir = velqua_store_testing::TempDir("rating-roads");
  std::vector<std::string> urls;
  for (const char* road : {"import", "capture", "rate"}) urls.push_back(dir + "/" + road + ".db");
  for (int i = 0; i < 3; ++i) {
    urls.push_back(velqua_store_testing::PgTestServer::Shared().NewDatabase());
  }
  const auto sqlite = ThreeRoads(dir, {urls[0], urls[1], urls[2]});
  const auto postgres = ThreeRoads(dir, {urls[3], urls[4], urls[5]});
  ASSERT_EQ(sqlite[0].size(), 31u * 12u);
  for (const auto& roads : {sqlite, postgres}) {
    for (size_t road = 1; road < roads.size(); ++road) {
      SCOPED_TRACE("road " + std::to_string(road));
      EXPECT_EQ(roads[road], roads[0]);
    }
  }
  EXPECT_EQ(sqlite[0], postgres[0]);
  int priced = 0, unmatched = 0;
  for (const auto& p : sqlite[0]) {
    priced += p.find(" Berlin ") != std::string::npos ? 1 : 0;
    unmatched += p.find("no tariff for +9912345") != std::string::npos ? 1 : 0;
  }
  EXPECT_GT(priced, 20);
  EXPECT_GT(unmatched, 10);
}

// What a month's prices read as: every call's price, the costs by
// destination (as reports sum them) and by department (as the web page
// does), and the unpriced calls.
std::vector<std::string> Readings(Store& store) {
  std::vector<std::string> out = Prices(store);
  const Span march{"2026-03-01", "2026-04-01", ""};
  for (const CostCounts& c : CostsBy(store, march, CostGroup::kDestination)) {
    out.push_back(c.key + "|" + c.day + "|" + c.cost.currency + "|" + std::to_string(c.calls) +
                  "|" + std::to_string(c.cost.units) + "|" + std::to_string(c.unpriced));
  }
  for (const CostTotal& t : SumCostBy(store, march, CostKey::kDestination)) {
    out.push_back(t.key + "|" + t.currency + "|" + std::to_string(t.calls));
  }
  CallFilter unpriced;
  unpriced.unpriced = true;
  store.ListCalls(unpriced, [&](const StoredCall& c) { out.push_back(*c.cost_reason); });
  return out;
}

int64_t Count(Store& store, const std::string& sql) {
  int64_t n = -1;
  dynamic_cast<SqlStore&>(store).connection().Run(sql, {},
                                                  [&](const ResultRow& r) { n = r.Int(0); });
  return n;
}

// PostgreSQL imports through two connections at once, batches committed in
// order: both meet each new label, neither waits for the other's
// transaction, and every call costs what one writer makes it cost.
TEST(RatingRoadsPostgres, TwoWritersPriceAMonthAsOneDoes) {
  const std::string dir = velqua_store_testing::TempDir("rating-two-writers");
  Berlin berlin(dir, false);
  berlin.settings.batch = 5;  // many batches, each of few calls: labels met at once
  std::vector<std::vector<std::string>> prices;
  for (const bool two : {false, true}) {
    const std::string url = velqua_store_testing::PgTestServer::Shared().NewDatabase();
    auto store = OpenStore(url);
    store->PutRatingPlan(berlin.plan);
    const auto more = two ? OpenMoreWriters(url) : std::vector<std::unique_ptr<Store>>();
    ASSERT_EQ(more.size(), two ? 1u : 0u);
    std::vector<Store*> writers;
    for (const auto& writer : more) writers.push_back(writer.get());
    Importer(*store, berlin.settings, writers).Import({berlin.records});
    prices.push_back(Prices(*store));
  }
  ASSERT_EQ(prices[0].size(), 31u * 12u);
  EXPECT_EQ(prices[1], prices[0]);
  std::filesystem::remove_all(dir);
}

class CostsByCallTest : public ::testing::TestWithParam<velqua_store_testing::Engine> {};

// A store whose prices were keyed by their call's source and position (and
// carried their texts) reads the same once they are keyed by the call's id,
// and pricing it again adds no label: the stored ones are found.
TEST_P(CostsByCallTest, PricesKeyedByPositionReadTheSameOnceKeyedByTheirCall) {
  const std::string dir = velqua_store_testing::TempDir(velqua_store_testing::Name());
  const std::string url = velqua_store_testing::NewStoreUrl(GetParam());
  const Berlin berlin(dir, false);
  std::vector<std::string> before;
  int64_t labels = 0;
  {
    auto store = OpenStore(url);
    store->PutRatingPlan(berlin.plan);
    Importer(*store, berlin.settings).Import({berlin.records});
    before = Readings(*store);
    labels = Count(*store, "SELECT count(*) FROM cost_labels");
  }
  ASSERT_GT(labels, 5);
  velqua_store_testing::Downgrade(GetParam(), url,
                                  velqua_store_testing::WithoutDaySummaries(GetParam()) +
                                      velqua_store_testing::OlderSql("prices-as-version-6"),
                                  6);
  auto store = OpenStore(url);
  EXPECT_EQ(Readings(*store), before);
  EXPECT_EQ(Count(*store, "SELECT count(*) FROM cost_labels"), labels);
  EXPECT_EQ(Count(*store, "SELECT count(*) FROM call_costs"), 31 * 12);
  store->Rate(RatePeriod());
  EXPECT_EQ(Readings(*store), before);
  EXPECT_EQ(Count(*store, "SELECT count(*) FROM cost_labels"), labels);
  if (GetParam() == velqua_store_testing::Engine::kSqlite) std::filesystem::remove_all(dir);
}

INSTANTIATE_TEST_SUITE_P(Engines, CostsByCallTest, velqua_store_testing::BothEngines(),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_store
