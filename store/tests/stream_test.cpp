// A query's rows handed over as the engine sends them: every row in order,
// and after a failure of the engine or of the reader, a connection ready
// for the next statement.
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "engines.h"
#include "schema.h"
#include "store_test_support.h"

namespace velqua_store {
namespace {

using velqua_store_testing::Engine;

class StreamTest : public ::testing::TestWithParam<Engine> {
 protected:
  StreamTest() : url_(velqua_store_testing::NewStoreUrl(GetParam())) {
    db_ = GetParam() == Engine::kSqlite ? ConnectSqlite(url_, url_) : ConnectPostgres(url_, url_);
    Migrate(*db_, url_);
    db_->Script("CREATE TABLE numbers (n BIGINT NOT NULL, t TEXT)");
    db_->Run(
        "WITH RECURSIVE s(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM s WHERE n < 5000) "
        "INSERT INTO numbers SELECT n, CASE WHEN n % 7 = 0 THEN NULL ELSE 'row ' || n END "
        "FROM s");
  }
  ~StreamTest() override {
    db_.reset();
    if (GetParam() == Engine::kSqlite) {
      std::filesystem::remove_all(std::filesystem::path(url_).parent_path());
    }
  }

  // The connection still answers.
  int64_t Count() {
    int64_t n = -1;
    db_->Run("SELECT count(*) FROM numbers", {}, [&](const ResultRow& r) { n = r.Int(0); });
    return n;
  }

  std::string url_;
  std::unique_ptr<Connection> db_;
};

TEST_P(StreamTest, EveryRowInOrderWithItsNulls) {
  int64_t next = 1, nulls = 0;
  db_->Stream("SELECT n, t FROM numbers WHERE n >= $1 ORDER BY n", {int64_t{1}},
              [&](const ResultRow& r) {
                ASSERT_EQ(r.Int(0), next);
                if (r.IsNull(1)) {
                  ++nulls;
                } else {
                  EXPECT_EQ(r.Text(1), "row " + std::to_string(next));
                }
                ++next;
              });
  EXPECT_EQ(next, 5001);
  EXPECT_EQ(nulls, 5000 / 7);
}

TEST_P(StreamTest, AFailureLeavesTheConnectionReady) {
  const struct {
    const char* what;
    const char* sql;
    bool reader_throws;
  } cases[] = {
      {"a statement the engine refuses", "SELECT n FROM no_such_table", false},
      {"the reader gives up half way", "SELECT n FROM numbers ORDER BY n", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    int64_t seen = 0;
    EXPECT_ANY_THROW(db_->Stream(c.sql, {}, [&](const ResultRow&) {
      if (c.reader_throws && ++seen == 100) throw std::runtime_error("enough");
    }));
    EXPECT_EQ(Count(), 5000);
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, StreamTest, velqua_store_testing::BothEngines(),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_store
