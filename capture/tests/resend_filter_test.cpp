#include "velqua/capture/resend_filter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velqua_capture {
namespace {

constexpr int64_t kHour = 3600LL * 1000000;

// Stored records "text@hours-before-the-connection", the connection's records,
// and which of them are dropped ("d") or kept ("k").
TEST(ResendFilter, DropsTheReSentRunAndKeepsEverythingAfterIt) {
  const struct {
    const char* name;
    std::vector<std::pair<std::string, int>> stored;  // text, hours before
    std::vector<std::string> received;
    const char* expected;
  } rows[] = {
      // clang-format off
      {"buffer re-sent, then new records", {{"A", 3}, {"B", 2}, {"C", 1}}, {"B", "C", "D", "E"}, "ddkk"},
      {"nothing stored: all kept", {}, {"A", "A"}, "kk"},
      {"a record stored twice drops at most two", {{"A", 2}, {"A", 1}}, {"A", "A", "A"}, "ddk"},
      {"genuine identical calls after the re-send are kept", {{"A", 1}, {"B", 1}}, {"A", "B", "X", "A", "B"}, "ddkkk"},
      {"identical records of one connection are all kept", {{"Z", 1}}, {"A", "A", "A"}, "kkk"},
      {"the first new record ends the re-sent part", {{"A", 1}, {"B", 1}}, {"A", "N", "B"}, "dkk"},
      {"older than the horizon's age: kept", {{"A", 25}, {"B", 23}}, {"A", "B"}, "kk"},
      {"within the age: dropped", {{"A", 23}, {"B", 22}}, {"B", "A"}, "dd"},
      {"only the newest records count", {{"A", 5}, {"B", 4}, {"C", 3}, {"D", 2}}, {"A", "D"}, "kk"},
      {"the newest three", {{"A", 5}, {"B", 4}, {"C", 3}, {"D", 2}}, {"B", "C", "D", "A"}, "dddk"},
      // clang-format on
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    std::vector<ResendFilter::Stored> stored;
    const int64_t connected = 1000 * kHour;
    for (const auto& [text, hours] : row.stored)
      stored.push_back({text, connected - hours * kHour});
    ResendFilter filter;
    filter.Connect(stored, connected, 3, 24 * kHour);
    std::string got;
    for (const std::string& r : row.received) got += filter.Drop(r) ? "d" : "k";
    EXPECT_EQ(got, row.expected);
    EXPECT_FALSE(filter.active() && got.find('k') != std::string::npos);
  }
}

TEST(ResendFilter, ANewConnectionStartsAgainAndAnEndedOneDropsNothing) {
  ResendFilter filter;
  filter.Connect({{"A", 10}}, 20, 1000, kHour);
  EXPECT_TRUE(filter.active());
  filter.End();
  EXPECT_FALSE(filter.Drop("A"));
  filter.Connect({{"A", 10}}, 20, 1000, kHour);
  EXPECT_TRUE(filter.Drop("A"));
  EXPECT_FALSE(filter.active());  // nothing left to match
}

}  // namespace
}  // namespace velqua_capture
