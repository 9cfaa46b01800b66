// A price's texts are a cost_labels row found by its ids: a row added in a
// transaction that is rolled back must not be named afterwards (SQLite
// hands its id to the next row), and another writer finds the stored rows
// instead of adding its own.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "call_pricing.h"
#include "engines.h"
#include "schema.h"
#include "store_test_support.h"
#include "velqua/rating/tariff.h"

namespace velqua_store {
namespace {

using velqua_store_testing::Engine;

class CostLabelsTest : public ::testing::TestWithParam<Engine> {
 protected:
  CostLabelsTest() : url_(velqua_store_testing::NewStoreUrl(GetParam())) {
    db_ = GetParam() == Engine::kSqlite ? ConnectSqlite(url_, url_) : ConnectPostgres(url_, url_);
    Migrate(*db_, url_);
  }
  ~CostLabelsTest() override {
    db_.reset();
    if (GetParam() == Engine::kSqlite) {
      std::filesystem::remove_all(std::filesystem::path(url_).parent_path());
    }
  }

  // The destination and band a label row names.
  std::string Texts(int64_t id) {
    std::string texts = "none";
    db_->Run("SELECT destination, band FROM cost_labels WHERE id = $1", {id},
             [&](const ResultRow& r) { texts = r.Text(0) + "/" + r.Text(1); });
    return texts;
  }

  std::string url_;
  std::unique_ptr<Connection> db_;
};

TEST_P(CostLabelsTest, ARolledBackLabelIsNeverNamedAndStoredOnesAreFound) {
  const velqua_rating::Tariff tariff =
      velqua_rating::LoadTariffFile(VELQUA_SOURCE_DIR "/examples/rating/office-de.toml");
  ASSERT_GE(tariff.destinations.size(), 2u);
  ASSERT_GE(tariff.bands.size(), 2u);
  const LabelKey first{&tariff, 0, 0}, second{&tariff, 1, 1};
  const std::string first_texts = tariff.destinations[0].name + "/" + tariff.bands[0];
  const std::string second_texts = tariff.destinations[1].name + "/" + tariff.bands[1];
  CostLabels labels;
  EXPECT_EQ(labels.Id(*db_, LabelKey()), 0) << "no tariff, no label";
  db_->Begin();
  labels.Id(*db_, first);
  db_->Rollback();
  labels.Forget();
  db_->Begin();
  const int64_t second_id = labels.Id(*db_, second);
  const int64_t first_id = labels.Id(*db_, first);
  db_->Commit();
  labels.Commit();
  EXPECT_NE(first_id, second_id);
  EXPECT_EQ(Texts(first_id), first_texts);
  EXPECT_EQ(Texts(second_id), second_texts);
  // Another writer, or this one with a new plan, finds the stored rows.
  labels.NewPlan();
  CostLabels other;
  db_->Begin();
  EXPECT_EQ(other.Id(*db_, second), second_id);
  EXPECT_EQ(labels.Id(*db_, first), first_id);
  db_->Commit();
  int64_t rows = 0;
  db_->Run("SELECT count(*) FROM cost_labels", {}, [&](const ResultRow& r) { rows = r.Int(0); });
  EXPECT_EQ(rows, 2);
}

INSTANTIATE_TEST_SUITE_P(Engines, CostLabelsTest, velqua_store_testing::BothEngines(),
                         velqua_store_testing::EngineName);

}  // namespace
}  // namespace velqua_store
