// What a record holds beyond the call data reaches the store and every
// listing: the switch's own charge beside Velqua's price, and the calls of a
// switch that prints no date dated, and priced, by the day they were
// received, marked as such.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "store_test_support.h"
#include "velqua/store/call_output.h"
#include "velqua/store/import.h"

namespace velqua_store {
namespace {

using velqua_store_testing::Engine;
using velqua_store_testing::StoreTest;
using velqua_store_testing::WriteFile;

const std::string kExamples = VELQUA_SOURCE_DIR "/examples/";

// The calls of the store in one output form.
std::string Listed(Store& store, const char* format) {
  char* text = nullptr;
  size_t size = 0;
  std::FILE* out = open_memstream(&text, &size);
  auto writer = MakeCallWriter(CallFormatNamed(format), out);
  store.ListCalls({}, [&](const StoredCall& c) { writer->Write(c); });
  writer->Finish();
  std::fclose(out);
  std::string listed(text, size);
  std::free(text);
  return listed;
}

class RecordExtrasTest : public StoreTest {};

TEST_P(RecordExtrasTest, TheSwitchChargeIsKeptBesideThePrice) {
  ImportSettings s;
  s.switch_name = "hicom";
  s.config = kExamples + "hicom/hicom.json";
  s.year = 2026;
  Importer(*store_, s).Import({kExamples + "hicom/records.txt"});
  std::vector<std::string> charged;
  store_->ListCalls({}, [&](const StoredCall& c) {
    if (!c.switch_charge) {
      EXPECT_FALSE(c.extras) << c.raw;
      return;
    }
    charged.push_back(c.dialled.value_or("") + " " + *c.switch_charge + " " +
                      c.extras.value_or(""));
  });
  ASSERT_GE(charged.size(), 3u);
  EXPECT_EQ(charged[0], "0301234567 0.12 {\"charge\":\"0.12\"}");
  const std::string csv = Listed(*store_, "csv");
  EXPECT_NE(csv.find(",switch_charge,date_received,extras\r\n"), std::string::npos);
  EXPECT_NE(csv.find(",0.12,0,\"{\"\"charge\"\":\"\"0.12\"\"}\"\r\n"), std::string::npos);
  const std::string jsonl = Listed(*store_, "jsonl");
  EXPECT_NE(jsonl.find("\"switch_charge\":\"0.12\""), std::string::npos);
  EXPECT_NE(jsonl.find("\"extras\":{\"charge\":\"0.12\"}}"), std::string::npos);
  EXPECT_NE(Listed(*store_, "table").find("switch charge"), std::string::npos);
}

TEST_P(RecordExtrasTest, CallsWithoutADateArePricedOnTheDayReceived) {
  const std::string dir = velqua_store_testing::TempDir(velqua_store_testing::Name() + "-files");
  WriteFile(dir + "/us.toml",
            velqua_store_testing::ReadFile(VELQUA_SOURCE_DIR "/store/tests/data/us-carrier.toml"));
  store_->PutRatingPlan(
      WriteFile(dir + "/plan.toml", "[[tariff]]\nswitch = \"definity\"\nfile = \"us.toml\"\n"));
  ImportSettings s;
  s.switch_name = "definity";
  s.config = kExamples + "definity/definity.json";
  s.time_zone = "UTC";
  s.year = 2026;  // received 31 December 2026 23:59:59, local time
  s.source = "definity.txt";
  Importer(*store_, s).Import({kExamples + "definity/records.txt"});
  std::vector<std::string> priced;
  int64_t calls = 0;
  store_->ListCalls({}, [&](const StoredCall& c) {
    ++calls;
    EXPECT_TRUE(c.date_received) << c.raw;
    EXPECT_EQ(c.start.value_or("").substr(0, 11), "2026-12-31T") << c.raw;
    if (c.cost && c.destination) {
      priced.push_back(c.start.value_or("") + " " + c.dialled.value_or("") + " " + *c.cost);
    }
  });
  EXPECT_GT(calls, 3);
  // 11.7 minutes (0117: tenths of a minute) ending 08:06: 12 minutes x 0.10.
  ASSERT_FALSE(priced.empty());
  EXPECT_EQ(priced[0], "2026-12-31T07:54 5551234 1.20");
  EXPECT_NE(Listed(*store_, "table").find("date received"), std::string::npos);
  EXPECT_NE(Listed(*store_, "jsonl").find("\"date_received\":true"), std::string::npos);
  EXPECT_NE(Listed(*store_, "cdr-csv").find("date received\"\n"), std::string::npos);
  std::filesystem::remove_all(dir);
}

INSTANTIATE_TEST_SUITE_P(Engines, RecordExtrasTest, velqua_store_testing::BothEngines(),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_store
