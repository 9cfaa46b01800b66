// The price's sort key in each call's keys (call_keys): the steps from
// version 9, and from version 10 as the program before kept the key beside
// the call, fill it from the prices stored before, keeping every row, id and
// price and the days' marks as they were; afterwards it follows every way
// the program writes, changes or removes a price, and a call's start and
// removal. On both engines.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "engines.h"
#include "schema.h"
#include "store_test_support.h"

namespace velqua_store {
namespace {

using velqua_store_testing::Call;
using velqua_store_testing::Engine;

class SortKeysTest : public ::testing::TestWithParam<Engine> {
 protected:
  SortKeysTest() : url_(velqua_store_testing::NewStoreUrl(GetParam())) { Connect(); }
  ~SortKeysTest() override {
    db_.reset();
    if (GetParam() == Engine::kSqlite) {
      std::filesystem::remove_all(std::filesystem::path(url_).parent_path());
    }
  }

  void Connect() {
    db_ = GetParam() == Engine::kSqlite ? ConnectSqlite(url_, url_) : ConnectPostgres(url_, url_);
  }

  // The first column of each row, joined by ';'.
  std::string Rows(const std::string& sql) {
    std::string text;
    db_->Run(sql, {}, [&](const ResultRow& r) {
      text += (text.empty() ? "" : ";") + (r.IsNull(0) ? std::string("NULL") : r.Text(0));
    });
    return text;
  }

  // The calls whose keys are missing or are not their start and their price
  // as a number (NULL without one), and the keys of no call.
  std::string OutOfStep() {
    const std::string distinct = GetParam() == Engine::kSqlite ? " IS NOT " : " IS DISTINCT FROM ";
    return Rows(
               "SELECT count(*) FROM calls c LEFT JOIN call_keys s ON s.call_id = c.id LEFT JOIN "
               "call_costs k ON k.call_id = c.id WHERE s.call_id IS NULL OR s.cost" +
               distinct + "CAST(k.cost AS NUMERIC) OR s.start" + distinct + "c.start") +
           "+" +
           Rows(
               "SELECT count(*) FROM call_keys s WHERE NOT EXISTS (SELECT 1 FROM calls c WHERE "
               "c.id = s.call_id)");
  }

  // What the program of version 10 kept: the key beside each call, its
  // index and a trigger keeping it.
  void KeyBesideCall() {
    db_->Script(
        "ALTER TABLE calls ADD COLUMN cost_order NUMERIC;"
        "UPDATE calls SET cost_order = (SELECT CAST(k.cost AS NUMERIC) FROM call_costs k "
        "WHERE k.call_id = calls.id);"
        "CREATE INDEX calls_cost ON calls (cost_order, id)");
    db_->Script(GetParam() == Engine::kSqlite
                    ? "CREATE TRIGGER call_costs_order_delete AFTER DELETE ON call_costs BEGIN "
                      "UPDATE calls SET cost_order = NULL WHERE id = OLD.call_id; END"
                    : "CREATE FUNCTION call_costs_keep_order() RETURNS trigger LANGUAGE plpgsql "
                      "AS $$ BEGIN RETURN NULL; END $$; CREATE TRIGGER call_costs_order_delete "
                      "AFTER DELETE ON call_costs FOR EACH STATEMENT EXECUTE FUNCTION "
                      "call_costs_keep_order()");
  }

  void StepFrom(int from);

  std::string url_;
  std::unique_ptr<Connection> db_;
};

// A store of version `from` with five calls and their prices, opened by
// this program: the step keeps every row and fills the keys.
void SortKeysTest::StepFrom(int from) {
  Migrate(*db_, url_, from);
  db_->Script(velqua_store_testing::OlderSql("five-priced-calls"));
  if (from == 10) KeyBesideCall();
  const std::string kCalls =
      "SELECT CAST(id AS TEXT) || '|' || CAST(position AS TEXT) || '|' || coalesce(start, '-') "
      "|| '|' || raw || '|' || CAST(duration AS TEXT) || '|' || extension FROM calls ORDER BY id";
  const std::string kCosts =
      "SELECT CAST(call_id AS TEXT) || '=' || coalesce(cost, '-') || '/' || reason "
      "FROM call_costs ORDER BY call_id";
  const std::string kMarks =
      "SELECT CAST(switch_id AS TEXT) || ' ' || day FROM call_days_stale ORDER BY day";
  const std::string calls = Rows(kCalls), costs = Rows(kCosts), marks = Rows(kMarks);
  ASSERT_EQ(std::count(calls.begin(), calls.end(), ';'), 4);
  db_.reset();

  std::unique_ptr<Store> store = OpenStore(url_);  // the step, as a user meets it
  Connect();
  EXPECT_EQ(Rows(GetParam() == Engine::kSqlite ? "PRAGMA user_version"
                                               : "SELECT max(version) FROM schema_migrations"),
            std::to_string(kSchemaVersion));
  EXPECT_EQ(Rows(kCalls), calls);
  EXPECT_EQ(Rows(kCosts), costs);
  EXPECT_EQ(Rows(kMarks), marks);
  EXPECT_EQ(OutOfStep(), "0+0");
  // The calls in the key's order, unpriced first, ties by id: as numbers.
  EXPECT_EQ(Rows("SELECT c.position FROM calls c JOIN call_keys s ON s.call_id = c.id ORDER BY "
                 "s.cost NULLS FIRST, c.id"),
            "4;5;1;3;2");
  // Nothing of the key beside the call is left.
  EXPECT_EQ(Rows(GetParam() == Engine::kSqlite
                     ? "SELECT count(*) FROM pragma_table_info('calls') WHERE name = 'cost_order'"
                     : "SELECT count(*) FROM information_schema.columns WHERE column_name = "
                       "'cost_order' AND table_schema = current_schema()"),
            "0");
  EXPECT_EQ(Rows(GetParam() == Engine::kSqlite
                     ? "SELECT count(*) FROM sqlite_master WHERE name IN ('calls_cost', "
                       "'call_costs_order_delete')"
                     : "SELECT count(*) FROM pg_proc WHERE proname = 'call_costs_keep_order'"),
            "0");
}

TEST_P(SortKeysTest, TheStepFromVersionNineFillsTheKeys) { StepFrom(9); }

TEST_P(SortKeysTest, TheStepFromVersionTenMovesTheKeyBesideEachCall) { StepFrom(10); }

// Every road the program takes a price into the store, and out of it, moves
// the key; a call's keys follow its start and go with it. PostgreSQL's
// triggers follow a price written by hand too.
TEST_P(SortKeysTest, TheKeysFollowEveryWriteOfAPriceAndOfACall) {
  Migrate(*db_, url_);
  std::unique_ptr<Store> store = OpenStore(url_);
  store->PutSwitch({"hicom", "", "", ""});
  const Source source = store->OpenSource("hicom", "calls.txt", "capture");
  store->Write(source, {Call(1, "21", "2026-03-09 09:00:00", "01", "0301111")}, std::nullopt);
  store->PutRatingPlan(VELQUA_SOURCE_DIR "/examples/rating/hicom-plan.toml");
  const bool pg = GetParam() == Engine::kPostgres;
  struct Step {
    const char* what;
    std::function<void()> write;
    int keyed;  // calls with a price key
  };
  const Step steps[] = {
      {"a call stored before any plan has no key", [] {}, 0},
      {"calls priced as they are stored (one to a number no tariff has)",
       [&] {
         store->Write(source,
                      {Call(2, "22", "2026-03-09 09:10:00", "01", "0301111"),
                       Call(3, "23", "2026-03-09 09:20:00", "01", "00999123"),
                       Call(4, "24", "2026-03-09 09:30:00", "01", "0049891111")},
                      std::nullopt);
       },
       2},
      {"pricing the stored calls again", [&] { store->Rate({}); }, 3},
      {"a pricing of the whole store that died with the price's index down and the keys "
       "not yet set (SQLite sets them at its end): the next program to open the store",
       [&] {
         if (pg) return;
         db_->Script(
             "DROP INDEX call_keys_cost; UPDATE call_keys SET cost = 999 WHERE call_id IN "
             "(SELECT call_id FROM call_costs)");
         store = OpenStore(url_);
       },
       3},
      {"a price changed by hand",
       [&] {
         if (pg) db_->Run("UPDATE call_costs SET cost = '0.001'");
       },
       pg ? 4 : 3},
      {"a price taken away",
       [&] {
         db_->Run(
             "DELETE FROM call_costs WHERE call_id = (SELECT id FROM calls WHERE position "
             "= 2)");
       },
       pg ? 3 : 2},
      {"a call's start changed",
       [&] { db_->Run("UPDATE calls SET start = '2026-03-09T11:00:00' WHERE position = 1"); },
       pg ? 3 : 2},
      {"a call removed", [&] { db_->Run("DELETE FROM calls WHERE position = 4"); }, pg ? 2 : 1},
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    step.write();
    EXPECT_EQ(OutOfStep(), "0+0");
    EXPECT_EQ(Rows("SELECT count(cost) FROM call_keys"), std::to_string(step.keyed));
    // Pricing every call builds the price's index again at its end.
    EXPECT_EQ(Rows(pg ? "SELECT count(*) FROM pg_indexes WHERE indexname = 'call_keys_cost'"
                      : "SELECT count(*) FROM sqlite_master WHERE name = 'call_keys_cost'"),
              "1");
  }
  // A call without a start (kept apart from the months' tables on
  // PostgreSQL) takes its keys as well.
  Record undated = Call(5, "25", "2026-03-09 10:00:00", "01", "0301111");
  undated.row.printed = 0;
  store->Write(source, {undated}, std::nullopt);
  EXPECT_EQ(OutOfStep(), "0+0");
  EXPECT_EQ(Rows("SELECT count(*) FROM call_keys WHERE start IS NULL"), "1");
  if (!pg) return;
  db_->Run(
      "INSERT INTO call_costs (call_id, cost) SELECT id, '0.5' FROM calls WHERE start IS NULL "
      "ON CONFLICT (call_id) DO UPDATE SET cost = excluded.cost");
  EXPECT_EQ(OutOfStep(), "0+0");
  EXPECT_EQ(Rows("SELECT CAST(cost AS TEXT) FROM call_keys WHERE start IS NULL"), "0.5");
}

INSTANTIATE_TEST_SUITE_P(Engines, SortKeysTest, velqua_store_testing::BothEngines(),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_store
