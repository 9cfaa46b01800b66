// Directory and tariffs: viewers read, admins change, and a plan is checked
// whole before the store keeps it.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "web_test_support.h"

namespace velqua_web_testing {
namespace {

std::string Example(const std::string& name) {
  std::ifstream in(std::string(VELQUA_SOURCE_DIR) + "/examples/rating/" + name);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

class DirectoryTest : public WebTest {};

TEST_P(DirectoryTest, AdminsWriteEntriesAndViewersOnlyRead) {
  Start();
  const std::string entry =
      R"({"entries":[{"kind":"extension","key":"21","person":"Ana","department":"Sales"}]})";
  ApiClient viewer(server_->port());
  ASSERT_EQ(viewer.Login("vic", "secret-password"), 200);
  EXPECT_EQ(viewer.Send("POST", "/api/directory", entry)->status, 403);
  ASSERT_EQ(client_->Login("ann", "secret-password"), 200);
  EXPECT_EQ(client_->Send("POST", "/api/directory", entry)->status, 200);
  const nlohmann::json list = viewer.Json("/api/directory");
  ASSERT_EQ(list.size(), 1u);
  EXPECT_EQ(list[0]["person"], "Ana");
  struct Row {
    const char* body;
    const char* error;
  };
  const Row bad[] = {
      {R"({"entries":[{"kind":"room","key":"1"}]})", "'kind' must be extension or account"},
      {R"({"entries":[{"kind":"extension"}]})", "an entry needs its 'key'"},
      {R"({"entries":[{"kind":"extension","key":"1","from":"03/10/2026"}]})", "'from' must be"},
      {R"({"entries":[{"kind":"extension","key":"1","person":7}]})", "'person' must be a text"},
      {R"({"rows":[]})", "send {"},
  };
  for (const Row& row : bad) {
    SCOPED_TRACE(row.body);
    const httplib::Result r = client_->Send("POST", "/api/directory", row.body);
    EXPECT_EQ(r->status, 400);
    EXPECT_NE(r->body.find(row.error), std::string::npos) << r->body;
  }
  EXPECT_EQ(viewer.Json("/api/directory").size(), 1u);
}

TEST_P(DirectoryTest, APlanIsCheckedWholeBeforeItIsKept) {
  Start();
  const nlohmann::json good = {{"plan", Example("hicom-plan.toml")},
                               {"tariffs", {{"office-de.toml", Example("office-de.toml")}}}};
  ApiClient viewer(server_->port());
  ASSERT_EQ(viewer.Login("vic", "secret-password"), 200);
  EXPECT_EQ(viewer.Send("POST", "/api/tariffs", good.dump())->status, 403);
  ASSERT_EQ(client_->Login("ann", "secret-password"), 200);
  nlohmann::json broken = good;
  broken["tariffs"]["office-de.toml"] = "[broken";
  nlohmann::json missing = good;
  missing["tariffs"] = nlohmann::json::object();
  nlohmann::json climbing = good;
  climbing["tariffs"]["../office-de.toml"] = "x";
  for (const nlohmann::json& body : {broken, missing, climbing}) {
    SCOPED_TRACE(body.dump().substr(0, 200));
    const httplib::Result r = client_->Send("POST", "/api/tariffs", body.dump());
    EXPECT_EQ(r->status, 400);
    EXPECT_EQ(r->body.find("/tmp/"), std::string::npos) << r->body;
    EXPECT_TRUE(viewer.Json("/api/tariffs").empty());
  }
  ASSERT_EQ(client_->Send("POST", "/api/tariffs", good.dump())->status, 200);
  const nlohmann::json files = viewer.Json("/api/tariffs");
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0]["kind"], "plan");
  EXPECT_EQ(files[1]["name"], "office-de.toml");
}

INSTANTIATE_TEST_SUITE_P(Engines, DirectoryTest, BothEngines(), EngineName);

}  // namespace
}  // namespace velqua_web_testing
