// The store's contract, run against both engines: batches are idempotent
// across both tables, the checkpoint goes with its batch, recent records
// come back in order, filters select what they say, and a newer schema is
// refused.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "schema.h"
#include "store_test_support.h"

namespace velqua_store {
namespace {

using velqua_store_testing::At;
using velqua_store_testing::Call;
using velqua_store_testing::Downgrade;
using velqua_store_testing::Engine;
using velqua_store_testing::StoreTest;
using velqua_store_testing::Unrecognised;

TEST_P(StoreTest, ABatchWrittenAgainAddsNothingInEitherTable) {
  const Source source = NewSource("hq", "spool");
  const std::vector<Record> batch = {
      Call(0, "201", "2026-03-09 08:00:00"), Unrecognised(80, std::string("page\0heading", 12)),
      Call(160, "202", "2026-03-09 08:05:00"), Call(160, "203", "2026-03-09 08:06:00")};
  struct Step {
    const char* what;
    std::vector<Record> records;
    int64_t calls, unrecognised, duplicates;
  };
  const Step steps[] = {
      // clang-format off
      {"first write; a position twice in a batch counts once", batch, 2, 1, 1},
      {"the same batch again (a retry after a crash)", batch, 0, 0, 4},
      {"a stored position comes back recognised: still the unrecognised one", {Call(80, "204", "2026-03-09 08:07:00"), Call(240, "205", "2026-03-09 08:09:00")}, 1, 0, 1},
      // clang-format on
  };
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    const WriteResult w = store_->Write(source, step.records, 320);
    EXPECT_EQ(w.calls, step.calls);
    EXPECT_EQ(w.unrecognised, step.unrecognised);
    EXPECT_EQ(w.duplicates, step.duplicates);
  }
  EXPECT_EQ(store_->CountCalls("hq"), 3);
  EXPECT_EQ(store_->CountUnrecognised("hq"), 1);
  const std::vector<RawRecord> recent = store_->RecentRecords(source, 0, "");
  ASSERT_EQ(recent.size(), 4u);
  EXPECT_EQ(recent[1].raw, "page\u2400heading");  // NUL kept as its symbol on both engines
}

TEST_P(StoreTest, CheckpointGoesWithItsBatchAndRecentRecordsComeInOrder) {
  const Source source = NewSource("hq", "spool");
  EXPECT_FALSE(store_->Checkpoint(source));
  store_->Write(source, {At("2026-03-09T07:00:01Z", Call(10, "201", "2026-03-09 08:00:00"))}, 11);
  store_->Write(source,
                {At("2026-03-09T07:00:02Z", Unrecognised(20, "noise")),
                 At("2026-03-09T07:00:03Z", Call(30, "202", "2026-03-09 08:01:00"))},
                std::nullopt);  // no checkpoint: the stored one stays
  EXPECT_EQ(store_->Checkpoint(source), 11);
  EXPECT_EQ(store_->OpenSource("hq", "spool", "capture").checkpoint, 11);
  struct Case {
    int64_t limit;
    std::string since;
    std::vector<int64_t> positions;
  };
  const Case cases[] = {{0, "", {10, 20, 30}},
                        {2, "", {20, 30}},
                        {0, "2026-03-09T07:00:02Z", {20, 30}},
                        {1, "2026-03-09T07:00:02Z", {30}},
                        {0, "2026-03-10T00:00:00Z", {}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.limit) + " since " + c.since);
    std::vector<int64_t> positions;
    for (const RawRecord& r : store_->RecentRecords(source, c.limit, c.since)) {
      positions.push_back(r.position);
    }
    EXPECT_EQ(positions, c.positions);
  }
  const Source other = NewSource("branch", "spool");  // same name, other switch: its own
  EXPECT_FALSE(other.checkpoint);
  EXPECT_TRUE(store_->RecentRecords(other, 0, "").empty());
}

TEST_P(StoreTest, FiltersSelectWhatTheySay) {
  const Source hq = NewSource("hq", "spool");
  const Source branch = NewSource("branch", "spool");
  // position, extension, start, trunk, dialled, account, type
  store_->Write(hq,
                {Call(1, "201", "2026-01-31 23:59:59", "05", "0891234", "", 2),
                 Call(2, "201", "2026-02-01 00:00:00", "05", "0301234", "7", 2),
                 Call(3, "202", "2026-02-28 12:00:00", "06", "0891999", "", 1),
                 Call(4, "201", "2026-03-01 00:00:00", "06", "089", "7", 2)},
                std::nullopt);
  store_->Write(branch, {Call(5, "201", "2026-02-10 10:00:00", "01", "0892", "", 3)}, std::nullopt);
  struct Case {
    const char* what;
    CallFilter filter;
    std::vector<int64_t> positions;
  };
  const auto by = [](auto set) {
    CallFilter f;
    set(f);
    return f;
  };
  const Case cases[] = {
      {"all, by start", {}, {1, 2, 5, 3, 4}},
      {"one month, both days included",
       by([](CallFilter& f) { f.from = "2026-02-01", f.to = "2026-02-28"; }),
       {2, 5, 3}},
      {"an extension over a month",
       by([](CallFilter& f) { f.extension = "201", f.from = "2026-02-01", f.to = "2026-02-28"; }),
       {2, 5}},
      {"one switch", by([](CallFilter& f) { f.switch_name = "branch"; }), {5}},
      {"a trunk", by([](CallFilter& f) { f.trunk = "06"; }), {3, 4}},
      {"a type", by([](CallFilter& f) { f.type = 1; }), {3}},
      {"a number prefix", by([](CallFilter& f) { f.number_prefix = "089"; }), {1, 5, 3, 4}},
      {"an account code", by([](CallFilter& f) { f.account_code = "7"; }), {2, 4}},
      {"a limit", by([](CallFilter& f) { f.limit = 2; }), {1, 2}},
      {"an unknown switch", by([](CallFilter& f) { f.switch_name = "none"; }), {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::vector<int64_t> positions;
    store_->ListCalls(c.filter,
                      [&](const StoredCall& call) { positions.push_back(call.position); });
    EXPECT_EQ(positions, c.positions);
  }
  for (const char* bad : {"2026-02-30", "2026-2-01", "yesterday"}) {
    SCOPED_TRACE(bad);
    CallFilter f;
    f.from = bad;
    EXPECT_THROW(store_->ListCalls(f, [](const StoredCall&) {}), velqua_records::Failure);
  }
}

TEST_P(StoreTest, ASchemaNewerThanTheProgramIsRefused) {
  store_.reset();
  const std::string later = std::to_string(kSchemaVersion + 1);
  Downgrade(GetParam(), url_,
            GetParam() == Engine::kSqlite
                ? ""
                : "INSERT INTO schema_migrations VALUES (" + later + ", 'later');",
            kSchemaVersion + 1);
  try {
    OpenStore(url_);
    FAIL() << "opened";
  } catch (const StoreError& e) {
    EXPECT_EQ(std::string(e.what()), "database '" + url_ + "' has schema version " + later +
                                         ", newer than this program's (" +
                                         std::to_string(kSchemaVersion) + "): use a newer velqua");
  }
}

TEST_P(StoreTest, AVersionOneStoreKeepsItsCallsWhenLaterTablesAndColumnsAreAdded) {
  const Source source = NewSource("hq", "v24");
  store_->Write(source, {Call(1, "21", "2026-03-09 08:10:47")}, std::nullopt, nullptr);
  store_.reset();
  // The store as version 1 left it: no rating tables, no call ends, no
  // users, no extra fields.
  const std::string down = velqua_store_testing::WithoutDaySummaries(GetParam()) +
                           velqua_store_testing::OlderSql("version-1");
  Downgrade(GetParam(), url_, down, 1);
  store_ = OpenStore(url_);
  EXPECT_EQ(store_->CountCalls("hq"), 1);
  velqua_store::RatePeriod all;
  EXPECT_THROW(store_->Rate(all), StoreError);  // the tables are back, and hold no plan
}

// A version 5 store: its switches gain an empty extension list (none kept),
// its records an unknown line; what was stored stays, and both can be
// written from then on.
TEST_P(StoreTest, AVersionFiveStoreGainsExtensionListsAndLines) {
  const Source source = NewSource("hq", "calls.txt");
  store_->PutSwitch({"hq", "", "", "Europe/Madrid"});
  store_->Write(source, {Call(1, "21", "2026-03-09 08:10:47"), Unrecognised(80, "noise")},
                std::nullopt, nullptr);
  store_.reset();
  Downgrade(GetParam(), url_,
            velqua_store_testing::WithoutDaySummaries(GetParam()) +
                velqua_store_testing::OlderSql("prices-as-version-6") +
                "DROP VIEW calls_named; ALTER TABLE calls DROP COLUMN line; "
                "ALTER TABLE unrecognised DROP COLUMN line; "
                "ALTER TABLE switches DROP COLUMN extension_list;",
            5);
  store_ = OpenStore(url_);
  EXPECT_EQ(store_->CountCalls("hq"), 1);
  EXPECT_EQ(store_->FindSwitch("hq")->time_zone, "Europe/Madrid");
  EXPECT_EQ(store_->FindSwitch("hq")->extension_list, "");
  struct Step {
    const char* what;
    std::string given, kept;
  };
  const Step steps[] = {{"a list given is kept", "1234;201\n", "1234;201\n"},
                        {"none given keeps it", "", "1234;201\n"},
                        {"another replaces it", "5678;206\n", "5678;206\n"}};
  for (const Step& step : steps) {
    SCOPED_TRACE(step.what);
    store_->PutSwitch({"hq", "", "", "", step.given});
    EXPECT_EQ(store_->FindSwitch("hq")->extension_list, step.kept);
    EXPECT_EQ(store_->FindSwitch("hq")->time_zone, "Europe/Madrid");
  }
}

TEST_P(StoreTest, ListedCallsNameWhoTheDirectoryGaveOnTheirDate) {
  using Kind = velqua_rating::DirectoryEntry::Kind;
  EXPECT_EQ(
      store_->PutDirectory({{Kind::kExtension, "21", "", "Ana", "Sales", "CC1", "", ""},
                            {Kind::kExtension, "21", "2026-03-10", "Ana", "Support", "CC2", "", ""},
                            {Kind::kAccount, "77", "2026-03-10", "", "", "", "Acme", "Audit"}}),
      3);
  // Written again: replaced, not added.
  store_->PutDirectory({{Kind::kExtension, "21", "", "Ana Ruiz", "Sales", "CC1", "", ""}});
  EXPECT_EQ(store_->ListDirectory().size(), 3u);
  const Source source = NewSource("hq", "v24");
  store_->Write(source,
                {Call(1, "21", "2026-03-09 23:59:59", "01", "555", "77"),
                 Call(2, "21", "2026-03-10 00:00:00", "01", "555", "77"),
                 Call(3, "22", "2026-03-10 08:00:00")},
                std::nullopt, nullptr);
  std::vector<std::string> names;
  store_->ListCalls({}, [&](const StoredCall& c) {
    names.push_back(c.person.value_or("-") + "/" + c.department.value_or("-") + "/" +
                    c.client.value_or("-") + "/" + c.project.value_or("-"));
  });
  EXPECT_EQ(names,
            (std::vector<std::string>{"Ana Ruiz/Sales/-/-", "Ana/Support/Acme/Audit", "-/-/-/-"}));
}

TEST_P(StoreTest, AnUnknownTimeZoneIsRefused) {
  EXPECT_THROW(store_->PutSwitch({"hq", "", "", "Mars/Olympus"}), StoreError);
  EXPECT_FALSE(store_->FindSwitch("hq"));
}

// A bulk load's lock file is there only while a load holds it: opening a
// store, a load and its end leave nothing beside the database; a second
// load while one runs adds its rows (one by one) all the same.
TEST(SqliteBulkLoad, LeavesNoLockFileBehind) {
  const std::string dir = velqua_store_testing::TempDir("bulk-lock");
  const std::string db = dir + "/calls.db";
  const auto lock_file = [&] { return std::filesystem::exists(db + "-bulk"); };
  auto first = OpenStore(db);
  EXPECT_FALSE(lock_file()) << "after opening";
  first->PutSwitch({"hq", "", "", ""});
  const Source source = first->OpenSource("hq", "a.txt", "file");
  first->BeginBulk(1000);
  EXPECT_TRUE(lock_file()) << "while loading";
  auto second = OpenStore(db);  // its repair must not take the load's lock
  second->BeginBulk(1000);
  second->Write(second->OpenSource("hq", "b.txt", "file"), {Call(1, "21", "2026-03-09 08:10:47")},
                std::nullopt, nullptr);
  second->EndBulk();
  EXPECT_TRUE(lock_file()) << "the first load still holds it";
  first->Write(source, {Call(1, "22", "2026-03-09 08:11:47")}, std::nullopt, nullptr);
  first->EndBulk();
  EXPECT_FALSE(lock_file()) << "after the load";
  EXPECT_EQ(first->CountCalls("hq"), 2);
  second.reset();
  first.reset();
  EXPECT_FALSE(lock_file()) << "after closing";
  std::filesystem::remove_all(dir);
}

// A server that goes away: the write fails as ConnectionLost (the capture
// service keeps spooling), nothing of it is stored, and once the server is
// back the same store object writes the same batch.
TEST(PostgresConnection, ALostServerIsReportedAndTheStoreReconnects) {
  velqua_store_testing::PgTestServer server;
  const std::string url = server.NewDatabase();
  std::unique_ptr<Store> store = OpenStore(url);
  store->PutSwitch({"hq", "", "", ""});
  const Source source = store->OpenSource("hq", "spool", "capture");
  store->Write(source, {Call(0, "201", "2026-03-09 08:00:00")}, 1);
  server.Stop();
  const std::vector<Record> batch = {Call(1, "202", "2026-03-09 08:01:00"),
                                     Call(2, "203", "2026-03-09 08:02:00")};
  for (int attempt = 0; attempt < 2; ++attempt) {
    SCOPED_TRACE(attempt);
    try {
      store->Write(source, batch, 3);
      FAIL() << "written with the server stopped";
    } catch (const ConnectionLost& e) {
      EXPECT_EQ(std::string(e.what()).rfind("database '" + url + "': ", 0), 0u) << e.what();
    }
  }
  server.Start();
  const WriteResult w = store->Write(source, batch, 3);
  EXPECT_EQ(w.calls, 2);
  EXPECT_EQ(store->CountCalls("hq"), 3);
  EXPECT_EQ(store->Checkpoint(source), 3);
}

INSTANTIATE_TEST_SUITE_P(Engines, StoreTest, velqua_store_testing::BothEngines(),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_store
