// The live feed against a real store of each engine: every page gets every
// event once and in order, wherever it resumes; a page too far behind, or
// naming an event this feed never sent, is told to reload; the feed's
// reading never keeps the store from being checkpointed.
#include "live_feed.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <thread>

#include "store_test_support.h"

namespace velqua_web_testing {
namespace {

using velqua_store_testing::Call;
using velqua_store_testing::Engine;
using velqua_store_testing::EngineName;
using velqua_store_testing::Unrecognised;
using velqua_web::LiveFeed;

// The event numbers in a text of server-sent events, in order.
std::vector<int64_t> Numbers(const std::string& text) {
  std::vector<int64_t> numbers;
  for (size_t at = text.find("id: "); at != std::string::npos; at = text.find("\nid: ", at + 1)) {
    numbers.push_back(std::stoll(text.substr(at + (text[at] == '\n' ? 5 : 4))));
  }
  return numbers;
}

std::vector<int64_t> Range(int64_t first, int64_t last) {
  std::vector<int64_t> all;
  for (int64_t n = first; n <= last; ++n) all.push_back(n);
  return all;
}

class LiveFeedTest : public velqua_store_testing::StoreTest {
 protected:
  LiveFeedTest() : source_(NewSource("hq", "serial")) {}

  // Writes `count` calls; each call of Write is one look's block once
  // Settle has seen it arrive.
  void Write(int count, bool with_unrecognised = false) {
    std::vector<velqua_store::Record> records;
    for (int i = 0; i < count; ++i) {
      ++position_;
      records.push_back(
          Call(position_, "201", "2026-03-10 09:00:00", "01", "030" + std::to_string(position_)));
    }
    if (with_unrecognised) records.push_back(Unrecognised(++position_, "NOISE"));
    store_->Write(source_, records, std::nullopt);
  }

  // Waits (up to 10 s) until the feed has numbered `number` events.
  static void Settle(LiveFeed& feed, int64_t number) {
    for (int i = 0; i < 1000 && feed.Latest() < number; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_EQ(feed.Latest(), number);
  }

  // Writes a call every 100 ms until the feed has seen one (it starts from
  // what the store holds at its first look); the number of its last event.
  int64_t Started(LiveFeed& feed) {
    for (int i = 0; i < 100 && feed.Latest() == 0; ++i) {
      Write(1);
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_GT(feed.Latest(), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // a look after the last write
    return feed.Latest();
  }

  velqua_store::Source source_;
  int64_t position_ = 0;
};

// Blocks of 3 calls, 4 calls and 2 calls with an unrecognised record:
// wherever a page resumes (inside a block or between two), it gets the rest,
// once each, in order, in one text.
TEST_P(LiveFeedTest, APageGetsEveryEventAfterItsMarkOnceAndInOrder) {
  LiveFeed feed(url_);
  const int64_t base = Started(feed);
  Write(3);
  Settle(feed, base + 3);
  Write(4);
  Settle(feed, base + 7);
  Write(2, true);
  Settle(feed, base + 10);
  for (int64_t after : {base, base + 1, base + 3}) {
    SCOPED_TRACE(after - base);
    const LiveFeed::Pending p = feed.After(after, 0);
    EXPECT_FALSE(p.lost);
    EXPECT_EQ(p.last, base + 10);
    const std::string text = p.Text();
    EXPECT_EQ(Numbers(text), Range(after + 1, base + 10)) << text;
    EXPECT_EQ(text.find("id: " + std::to_string(after + 1)), 0u) << text;
  }
  const std::string all = feed.After(base, 0).Text();
  EXPECT_NE(all.find("\"dialled\":\"030" + std::to_string(position_ - 1) + "\""),
            std::string::npos);
  EXPECT_NE(all.find("\"kind\":\"unrecognised\""), std::string::npos) << all;
  EXPECT_EQ(all.rfind("\n\n"), all.size() - 2);
  // Up to date, it waits and gets nothing.
  const LiveFeed::Pending none = feed.After(base + 10, 50);
  EXPECT_TRUE(none.empty());
  EXPECT_FALSE(none.lost);
  EXPECT_EQ(none.last, base + 10);
}

// With 5 events kept, blocks of 4: a page missing one that is no longer
// kept is told so and gets what is kept; a page naming a number beyond the
// feed's (it saw another server) is told so and goes on from the latest.
TEST_P(LiveFeedTest, APageTooFarBehindOrFromAnotherServerIsToldItLostEvents) {
  LiveFeed feed(url_, 5);
  const int64_t base = Started(feed);
  for (int i = 1; i <= 3; ++i) {
    Write(4);
    Settle(feed, base + 4 * i);
  }
  struct Row {
    int64_t after;  // from base
    bool lost;
    int64_t first;  // first event sent, from base (0: none)
  };
  for (const Row& row :
       std::vector<Row>{{3, true, 5}, {4, false, 5}, {12, false, 0}, {40, true, 0}}) {
    SCOPED_TRACE(row.after);
    const LiveFeed::Pending p = feed.After(base + row.after, 0);
    EXPECT_EQ(p.lost, row.lost);
    EXPECT_EQ(p.last, base + 12);
    const std::vector<int64_t> sent = Numbers(p.Text());
    EXPECT_EQ(sent, row.first == 0 ? std::vector<int64_t>{} : Range(base + row.first, base + 12));
  }
}

// Pages reading while calls arrive in many looks each get all of them.
TEST_P(LiveFeedTest, EveryPageGetsEveryCallWhileTheyArrive) {
  LiveFeed feed(url_);
  const int64_t base = Started(feed);
  constexpr int kPages = 12, kBatches = 25, kCalls = 20;
  constexpr int64_t kLast = kBatches * kCalls;
  std::vector<std::vector<int64_t>> got(kPages);
  std::vector<int> lost(kPages, 0);
  std::vector<std::thread> pages;
  for (int i = 0; i < kPages; ++i) {
    pages.emplace_back([&, i] {
      int64_t last = base;
      for (int waits = 0; last < base + kLast && waits < 200; ++waits) {
        const LiveFeed::Pending p = feed.After(last, 100);
        lost[static_cast<size_t>(i)] += p.lost ? 1 : 0;
        for (int64_t n : Numbers(p.Text())) got[static_cast<size_t>(i)].push_back(n);
        last = p.last;
      }
    });
  }
  for (int b = 0; b < kBatches; ++b) {
    Write(kCalls);
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
  }
  for (std::thread& t : pages) t.join();
  for (int i = 0; i < kPages; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(lost[static_cast<size_t>(i)], 0);
    EXPECT_EQ(got[static_cast<size_t>(i)], Range(base + 1, base + kLast));
  }
}

// The feed reads in short transactions of its own: a checkpoint that must
// wait for every reader to finish (as a writer's would) gets through while
// the feed goes on looking.
TEST_P(LiveFeedTest, TheFeedNeverKeepsAReadOpenOnTheStore) {
  if (GetParam() != Engine::kSqlite) GTEST_SKIP() << "a SQLite file's checkpoint";
  LiveFeed feed(url_);
  const int64_t base = Started(feed);
  Write(50);
  Settle(feed, base + 50);
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(url_.c_str(), &db), SQLITE_OK);
  sqlite3_busy_timeout(db, 2000);
  ASSERT_EQ(sqlite3_exec(db, "SELECT count(*) FROM calls", nullptr, nullptr, nullptr), SQLITE_OK);
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    int log = -1, done = -1;
    EXPECT_EQ(sqlite3_wal_checkpoint_v2(db, nullptr, SQLITE_CHECKPOINT_TRUNCATE, &log, &done),
              SQLITE_OK)
        << sqlite3_errmsg(db);
    EXPECT_EQ(log, 0);  // the log emptied: no reader held on to it
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
  }
  sqlite3_close(db);
}

INSTANTIATE_TEST_SUITE_P(Engines, LiveFeedTest, velqua_store_testing::BothEngines(), EngineName);

}  // namespace
}  // namespace velqua_web_testing
