// PostgreSQL keeps calls in a table a month. These tests hold the store to
// what the single table gave: a batch written again adds nothing, ids stay
// unique and keep their prices, calls without a date are kept, a corrected
// start moves its call, two writers meeting a new month store each call
// once, and the step from version 8 keeps every row. A month's query reads
// that month's table alone.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "engines.h"
#include "schema.h"
#include "store_test_support.h"
#include "velqua/store/aggregates.h"

namespace velqua_store {
namespace {

using velqua_store_testing::Call;

// A call whose record printed neither date nor time: it has no start.
Record Undated(int64_t position) {
  Record r = Call(position, "23", "2026-01-01 00:00:00");
  r.row.printed = 0;
  return r;
}

class PostgresMonthsTest : public ::testing::Test {
 protected:
  PostgresMonthsTest()
      : url_(velqua_store_testing::PgTestServer::Shared().NewDatabase()),
        db_(ConnectPostgres(url_, url_)) {}

  // The first column of each row, as text.
  std::vector<std::string> Column(const std::string& sql, const std::vector<Value>& params = {}) {
    std::vector<std::string> texts;
    db_->Run(sql, params, [&](const ResultRow& r) { texts.push_back(r.Text(0)); });
    return texts;
  }
  std::string One(const std::string& sql, const std::vector<Value>& params = {}) {
    const std::vector<std::string> texts = Column(sql, params);
    return texts.empty() ? "(none)" : texts[0];
  }

  std::string Partitions() {
    return One(
        "SELECT string_agg(c.relname, ',' ORDER BY c.relname) FROM pg_inherits i "
        "JOIN pg_class c ON c.oid = i.inhrelid WHERE i.inhparent = 'calls'::regclass");
  }
  std::string TableOf(int64_t id) {
    return One("SELECT tableoid::regclass::text FROM calls WHERE id = $1", {id});
  }
  int64_t IdAt(int64_t position) {
    return std::stoll(One("SELECT id FROM calls WHERE position = $1", {position}));
  }

  // Every call has its key row, with its id, source, position, switch and
  // start, no key row is left without its call, and no price without it.
  void ExpectKeysMatchCalls() {
    EXPECT_EQ(One("SELECT count(*) FROM call_costs k WHERE NOT EXISTS "
                  "(SELECT 1 FROM call_keys c WHERE c.call_id = k.call_id)"),
              "0");
    EXPECT_EQ(One("SELECT count(*) FROM calls c FULL JOIN call_keys k ON k.call_id = c.id "
                  "AND k.source_id = c.source_id AND k.position = c.position "
                  "AND k.switch_id = c.switch_id AND k.start IS NOT DISTINCT FROM c.start "
                  "WHERE c.id IS NULL OR k.call_id IS NULL"),
              "0");
  }

  std::string url_;
  std::unique_ptr<Connection> db_;
};

TEST_F(PostgresMonthsTest, WritesKeepTheirGuaranteesAcrossMonths) {
  std::unique_ptr<Store> store = OpenStore(url_);
  store->PutSwitch({"hq", "", "", ""});
  const Source source = store->OpenSource("hq", "calls.txt", "file");
  struct Step {
    const char* what;
    std::vector<Record> records;
    int64_t calls, duplicates;
    const char* partitions;
  };
  const std::vector<Record> two_months = {Call(2, "21", "2026-01-31 23:59:59"),
                                          Call(3, "22", "2026-02-01 00:00:00")};
  const Step steps[] = {
      // clang-format off
      {"a month's first call makes its table", {Call(1, "21", "2026-01-15 09:05:00")}, 1, 0, "calls_2026_01,calls_other"},
      {"a batch over two months", two_months, 2, 0, "calls_2026_01,calls_2026_02,calls_other"},
      {"the same batch again adds nothing", two_months, 0, 2, "calls_2026_01,calls_2026_02,calls_other"},
      {"a repeat within a batch is stored once", {Call(4, "21", "2025-12-24 18:00:00"), Call(4, "21", "2025-12-24 18:00:00")}, 1, 1, "calls_2025_12,calls_2026_01,calls_2026_02,calls_other"},
      {"a call without a start is kept in calls_other", {Undated(5)}, 1, 0, "calls_2025_12,calls_2026_01,calls_2026_02,calls_other"},
      // clang-format on
  };
  int64_t total = 0;
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    const WriteResult written = store->Write(source, step.records, std::nullopt, nullptr);
    EXPECT_EQ(written.calls, step.calls);
    EXPECT_EQ(written.duplicates, step.duplicates);
    EXPECT_EQ(Partitions(), step.partitions);
    total += step.calls;
    EXPECT_EQ(store->CountCalls("hq"), total);
    ExpectKeysMatchCalls();
  }
  EXPECT_EQ(TableOf(IdAt(2)), "calls_2026_01");
  EXPECT_EQ(TableOf(IdAt(3)), "calls_2026_02");
  EXPECT_EQ(TableOf(IdAt(5)), "calls_other");
  EXPECT_EQ(One("SELECT count(DISTINCT id) FROM calls"), "5");

  // A call's key is what it is stored under: changing it is refused.
  EXPECT_THROW(db_->Run("UPDATE calls SET position = 99 WHERE position = 1"), StoreError);
  // Removing calls removes their keys.
  EXPECT_EQ(store->Purge({"2026-01-01", ""}, false).calls, 1);
  ExpectKeysMatchCalls();
}

// A month's query (a report's, a listing's) reads that month's table: not
// the other months', nor calls_other.
TEST_F(PostgresMonthsTest, AMonthsQueryReadsThatMonthsTableAlone) {
  std::unique_ptr<Store> store = OpenStore(url_);
  store->PutSwitch({"hq", "", "", ""});
  const Source source = store->OpenSource("hq", "calls.txt", "file");
  store->Write(source,
               {Call(1, "21", "2026-01-15 09:05:00"), Call(2, "21", "2026-02-10 10:00:00"),
                Call(3, "21", "2026-03-03 11:00:00"), Undated(4)},
               std::nullopt, nullptr);
  std::string plan;
  db_->Run(
      "EXPLAIN SELECT extension, count(*), sum(duration) FROM calls "
      "WHERE start >= $1 AND start < $2 GROUP BY extension",
      {std::string("2026-02-01"), std::string("2026-03-01")},
      [&](const ResultRow& r) { plan += r.Text(0) + "\n"; });
  EXPECT_NE(plan.find("calls_2026_02"), std::string::npos) << plan;
  for (const char* other : {"calls_2026_01", "calls_2026_03", "calls_other"}) {
    EXPECT_EQ(plan.find(other), std::string::npos) << other << " in\n" << plan;
  }
}

// A missed call's call back is looked for in the months it can reach: the
// next month's table included, past the window nothing.
TEST_F(PostgresMonthsTest, ACallBackIsFoundInTheNextMonthsTable) {
  std::unique_ptr<Store> store = OpenStore(url_);
  store->PutSwitch({"hq", "", "", ""});
  const Source source = store->OpenSource("hq", "calls.txt", "file");
  Record answered_later = Call(1, "21", "2026-01-31 23:00:00", "01", "5550001", "", 1);
  Record never = Call(2, "21", "2026-01-31 22:00:00", "01", "5550002", "", 1);
  answered_later.row.attribute = never.row.attribute = 4;  // unanswered
  store->Write(source,
               {answered_later, never, Call(3, "22", "2026-02-01 09:00:00", "01", "5550001"),
                Call(4, "22", "2026-02-01 23:00:01", "01", "5550002")},
               std::nullopt, nullptr);
  Span january;
  january.from = "2026-01-01";
  january.to_next = "2026-02-01";
  const std::vector<MissedCall> missed = MissedNotCalledBack(*store, january, 86400);
  ASSERT_EQ(missed.size(), 1u);
  EXPECT_EQ(missed[0].number, "5550002");  // called back 25 h later: past the day
}

// Two writers (two imports, or an import and a capture) meet new months at
// the same moment with the same records: each month's table is made once,
// each record stored once, and neither writer fails.
TEST_F(PostgresMonthsTest, TwoWritersMeetingNewMonthsStoreEachCallOnce) {
  std::unique_ptr<Store> setup = OpenStore(url_);
  setup->PutSwitch({"hq", "", "", ""});
  setup->OpenSource("hq", "calls.txt", "file");
  constexpr int kBatches = 12, kCalls = 40;
  const auto write = [&] {
    std::unique_ptr<Store> store = OpenStore(url_);
    const Source source = store->OpenSource("hq", "calls.txt", "file");
    for (int b = 0; b < kBatches; ++b) {
      std::vector<Record> records;
      for (int i = 0; i < kCalls; ++i) {
        char start[32];
        std::snprintf(start, sizeof start, "2025-%02d-%02d 10:00:00", b + 1, i % 28 + 1);
        records.push_back(Call(b * kCalls + i, "21", start));
      }
      store->Write(source, records, std::nullopt, nullptr);
    }
  };
  std::thread first(write), second(write);
  first.join();
  second.join();
  EXPECT_EQ(setup->CountCalls("hq"), kBatches * kCalls);
  EXPECT_EQ(One("SELECT count(*) FROM pg_inherits WHERE inhparent = 'calls'::regclass"),
            std::to_string(kBatches + 1));
  EXPECT_EQ(One("SELECT count(*) FROM calls_other"), "0");
  ExpectKeysMatchCalls();
}

// A corrected start moves its call to its new month's table (made as it is
// needed): same id, same price, and the days it left and joined summed again.
TEST_F(PostgresMonthsTest, ACorrectedStartMovesItsCallWithItsPrice) {
  std::unique_ptr<Store> store = OpenStore(url_);
  store->PutSwitch({"hq", "", "", ""});
  const Source source = store->OpenSource("hq", "calls.txt", "file");
  // The third call, priced, is no longer recognised by the corrected
  // configuration: it leaves calls with its key and its price.
  store->Write(source,
               {Call(1, "21", "2026-01-15 09:05:00"), Call(2, "22", "2026-01-15 10:00:00"),
                Call(3, "23", "2026-01-16 11:00:00")},
               std::nullopt, nullptr);
  const int64_t moved = IdAt(1);
  db_->Script(
      "INSERT INTO cost_labels (tariff, tariff_version, currency, destination, "
      "destination_class, band) VALUES ('t', '1', 'EUR', 'Madrid', 'national', 'day');"
      "INSERT INTO call_costs (call_id, cost, label) SELECT " +
      std::to_string(moved) + ", '0.42', max(id) FROM cost_labels;" +
      "INSERT INTO call_costs (call_id, cost) VALUES (" + std::to_string(IdAt(3)) + ", '0.10')");
  std::vector<Retranslated> batch;
  for (StoredRecord& record : store->ReadStored("hq", true, 0, 10)) {
    const Record again = record.position == 1   ? Call(1, "21", "2026-02-02 08:00:00")
                         : record.position == 2 ? Call(2, "22", "2026-01-15 10:00:00")
                                                : velqua_store_testing::Unrecognised(3, "noise");
    batch.push_back({std::move(record), again.row});
  }
  const RewriteResult result = store->Rewrite("hq", batch, false);
  EXPECT_EQ(result.updated, 1);
  EXPECT_EQ(result.unrecognised, 1);
  EXPECT_EQ(One("SELECT count(*) FROM call_keys WHERE position = 3"), "0");
  EXPECT_EQ(IdAt(1), moved);
  EXPECT_EQ(TableOf(moved), "calls_2026_02");
  EXPECT_EQ(One("SELECT cost FROM call_costs WHERE call_id = $1", {moved}), "0.42");
  ExpectKeysMatchCalls();
  // The day summaries, refreshed by the rewrite: one call left each day.
  EXPECT_EQ(One("SELECT string_agg(day || '=' || calls || '/' || cost, ',' ORDER BY day) "
                "FROM call_days WHERE kind = 'e'"),
            "2026-01-15=1/0,2026-02-02=1/42");
}

// A month whose table cannot be made at once (a long report holds
// calls_other) leaves its calls in calls_other; the table made later takes
// them, with their ids.
TEST_F(PostgresMonthsTest, AMonthMadeLaterTakesTheCallsThatWaitedForIt) {
  std::unique_ptr<Store> store = OpenStore(url_);
  store->PutSwitch({"hq", "", "", ""});
  const Source source = store->OpenSource("hq", "calls.txt", "file");
  std::unique_ptr<Connection> reader = ConnectPostgres(url_, url_);
  reader->Begin();
  reader->Run("LOCK TABLE calls_other IN ACCESS SHARE MODE");
  store->Write(source, {Call(1, "21", "2026-05-05 09:00:00")}, std::nullopt, nullptr);
  const int64_t waited = IdAt(1);
  EXPECT_EQ(TableOf(waited), "calls_other");
  reader->Rollback();
  store->Write(source, {Call(2, "21", "2026-05-06 09:00:00")}, std::nullopt, nullptr);
  EXPECT_EQ(TableOf(waited), "calls_2026_05");
  EXPECT_EQ(TableOf(IdAt(2)), "calls_2026_05");
  EXPECT_EQ(One("SELECT count(*) FROM calls_other"), "0");
  ExpectKeysMatchCalls();
}

// The step from version 8: every row with its id, every price, the view of
// named calls; the ids go on after the last one given (rolled-back ones
// included), and a record stored before is still known.
TEST_F(PostgresMonthsTest, TheStepFromVersionEightKeepsEveryRowItsIdAndItsPrice) {
  Migrate(*db_, url_, 8);
  db_->Script(velqua_store_testing::OlderSql("version-8-calls"));
  const std::string kCalls =
      "SELECT string_agg(concat_ws('|', id, switch_id, source_id, position, coalesce(start, "
      "'-'), raw, type, duration, extension), ';' ORDER BY id) FROM calls";
  const std::string kCosts =
      "SELECT string_agg(call_id || '=' || cost || '/' || label, ';' ORDER BY call_id) "
      "FROM call_costs";
  const std::string calls = One(kCalls), costs = One(kCosts);
  const int64_t last = std::stoll(One("SELECT max(id) FROM calls")) + 3;
  db_.reset();

  std::unique_ptr<Store> store = OpenStore(url_);
  db_ = ConnectPostgres(url_, url_);
  EXPECT_EQ(One("SELECT max(version) FROM schema_migrations"), std::to_string(kSchemaVersion));
  EXPECT_EQ(One("SELECT relkind::text FROM pg_class WHERE relname = 'calls'"), "p");
  EXPECT_EQ(One(kCalls), calls);
  EXPECT_EQ(One(kCosts), costs);
  EXPECT_EQ(Partitions(), "calls_2025_12,calls_2026_01,calls_other");
  EXPECT_EQ(One("SELECT string_agg(position::text, ',' ORDER BY position) FROM calls_other"),
            "40,50");
  EXPECT_EQ(One("SELECT count(*) FROM calls_named"), "5");
  ExpectKeysMatchCalls();

  const Source source = store->OpenSource("hq", "calls.txt", "file");
  const WriteResult written = store->Write(
      source, {Call(20, "21", "2026-01-15 09:05:00"), Call(60, "26", "2026-01-20 08:00:00")},
      std::nullopt, nullptr);
  EXPECT_EQ(written.duplicates, 1);
  EXPECT_EQ(written.calls, 1);
  EXPECT_GT(IdAt(60), last);
  // The days' marks still follow the calls.
  EXPECT_EQ(One("SELECT count(*) FROM call_days_stale WHERE day = '2026-01-20'"), "1");
  ExpectKeysMatchCalls();
}

}  // namespace
}  // namespace velqua_store
