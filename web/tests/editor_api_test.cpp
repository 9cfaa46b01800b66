// The layout editor's API: who may use it, what a bad request gets, and that
// its answers are the program's (the same bytes, the same rows), on both
// engines.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "editor_files.h"
#include "velqua/records/config_editor.h"
#include "web_test_support.h"

namespace velqua_web_testing {
namespace {

using velqua_store_testing::Call;

class EditorApiTest : public WebTest {
 protected:
  EditorApiTest() {
    configs_ = std::filesystem::temp_directory_path() /
               (GetParam() == velqua_store_testing::Engine::kSqlite ? "velqua-editor-api-sqlite"
                                                                    : "velqua-editor-api-postgres");
    ::setenv("VELQUA_CONFIGS", configs_.c_str(), 1);
  }
  ~EditorApiTest() override {
    ::unsetenv("VELQUA_CONFIGS");
    std::filesystem::remove_all(configs_);
  }

  nlohmann::json Post(const std::string& path, const nlohmann::json& body, int status = 200) {
    const httplib::Result r = client_->Send("POST", path, body.dump());
    EXPECT_TRUE(r);
    if (!r) return nullptr;
    EXPECT_EQ(r->status, status) << path << ": " << r->body;
    return nlohmann::json::parse(r->body, nullptr, false);
  }

  static nlohmann::json Hicom() {
    velqua_records::SwitchConfig config = velqua_records::LoadSwitchConfig("hicom");
    return nlohmann::json::parse(
        velqua_records::ConfigBytes(config, velqua_records::ConfigFormat::kJson));
  }

  std::filesystem::path configs_;
};

TEST_P(EditorApiTest, BadRequestsGetTheirStatus) {
  const velqua_store::Source source = NewSource("hq", "serial");
  store_->Write(source, {Call(1, "201", "2026-03-09 10:00:00")}, std::nullopt);
  Start();
  nlohmann::json bad_field = Hicom();
  bad_field["fields"]["emParamFechaDia"]["size"] = 0;
  const struct {
    const char* who;
    const char* method;
    const char* path;
    nlohmann::json body;
    int status;
    const char* says;  // a part of the error
  } rows[] = {
      // clang-format off
      {"vic", "GET", "/api/editor/catalog", nullptr, 403, "admin"},
      {"ann", "GET", "/api/editor/bundled/no-such-switch", nullptr, 404, "no-such-switch"},
      {"ann", "POST", "/api/editor/preview", {{"samples", {"x"}}}, 400, "config"},
      {"ann", "POST", "/api/editor/preview", {{"config", bad_field}, {"samples", {"x"}}}, 400, "fields.emParamFechaDia.size"},
      {"ann", "POST", "/api/editor/preview", {{"config", Hicom()}, {"samples", "x"}}, 400, "samples"},
      {"ann", "POST", "/api/editor/preview", {{"config", Hicom()}, {"samples", {"x"}}, {"format", "xml"}}, 400, "format"},
      {"ann", "POST", "/api/editor/save", {{"config", Hicom()}, {"format", "doc"}}, 400, "format"},
      {"ann", "POST", "/api/editor/open", {{"format", "cfg"}, {"data", "***"}}, 400, "base64"},
      {"ann", "POST", "/api/editor/open", {{"format", "cfg"}, {"data", "AAAA"}}, 400, ""},
      {"ann", "POST", "/api/editor/wiring", {{"config", Hicom()}, {"port", "usb"}}, 400, "port"},
      {"ann", "GET", "/api/editor/switches/nowhere/config", nullptr, 404, "nowhere"},
      {"ann", "GET", "/api/editor/switches/hq/config", nullptr, 404, "no configuration"},
      {"ann", "POST", "/api/editor/switches/hq/retranslate", nlohmann::json::object(), 409, "no configuration"},
      // clang-format on
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.who) + " " + row.method + " " + row.path);
    ApiClient client(server_->port());
    ASSERT_EQ(client.Login(row.who, "secret-password"), 200);
    const httplib::Result r =
        client.Send(row.method, row.path, row.body.is_null() ? "" : row.body.dump());
    ASSERT_TRUE(r);
    EXPECT_EQ(r->status, row.status) << r->body;
    const nlohmann::json answer = nlohmann::json::parse(r->body, nullptr, false);
    ASSERT_TRUE(answer.contains("error")) << r->body;
    EXPECT_NE(answer["error"].get<std::string>().find(row.says), std::string::npos) << r->body;
  }
}

// The files and rows the API gives are the record road's own.
TEST_P(EditorApiTest, FilesAndRowsAreTheProgramsOwn) {
  Start();
  ASSERT_EQ(client_->Login("ann", "secret-password"), 200);
  const nlohmann::json bundled = client_->Json("/api/editor/bundled/hicom");
  EXPECT_EQ(bundled["config"], Hicom());
  ASSERT_FALSE(bundled["samples"].empty());
  velqua_records::SwitchConfig hicom = velqua_records::LoadSwitchConfig("hicom");
  for (const char* format : {"json", "cfg", "ini"}) {
    SCOPED_TRACE(format);
    const nlohmann::json saved =
        Post("/api/editor/save", {{"config", Hicom()}, {"format", format}});
    const std::string bytes = velqua_web::DecodeBase64(saved["data"]);
    EXPECT_EQ(bytes, velqua_records::ConfigBytes(
                         hicom, velqua_records::ConfigFormatOf(std::string("x.") + format)));
    // A .cfg and a .ini hold neither the delivery nor the record form.
    nlohmann::json expected = Hicom();
    if (std::string(format) != "json") {
      expected.erase("delivery");
      expected.erase("records");
    }
    EXPECT_EQ(Post("/api/editor/open", {{"format", format}, {"data", saved["data"]}})["config"],
              expected);
  }
  const nlohmann::json preview = Post(
      "/api/editor/preview",
      {{"config", Hicom()}, {"samples", bundled["samples"]}, {"format", "csv"}, {"year", 2026}});
  const velqua_records::Preview expected =
      velqua_records::PreviewSamples(hicom, bundled["samples"].get<std::vector<std::string>>(),
                                     velqua_records::RowFormat::kCsv, 2026);
  ASSERT_EQ(preview["rows"].size(), expected.rows.size());
  for (size_t i = 0; i < expected.rows.size(); ++i) {
    EXPECT_EQ(preview["rows"][i]["line"], expected.rows[i].line);
  }
  const httplib::Result svg = client_->Send(
      "POST", "/api/editor/wiring", nlohmann::json{{"config", Hicom()}, {"port", "db9"}}.dump());
  ASSERT_TRUE(svg);
  EXPECT_EQ(svg->get_header_value("Content-Type"), "image/svg+xml; charset=utf-8");
  EXPECT_NE(svg->body.find("<svg"), std::string::npos);
}

// Storing a configuration for a switch and translating its records again
// says how many rows changed; the same configuration again changes none.
TEST_P(EditorApiTest, StoreThenRetranslateCountsTheChangedRows) {
  const velqua_store::Source source = NewSource("hq", "serial");
  store_->Write(source,
                {Call(1, "201", "2026-03-09 10:00:00"), Call(2, "202", "2026-03-10 11:00:00")},
                std::nullopt);
  Start();
  ASSERT_EQ(client_->Login("ann", "secret-password"), 200);
  const nlohmann::json records = client_->Json("/api/editor/switches/hq/records?last=1");
  ASSERT_EQ(records["records"].size(), 1u);
  EXPECT_EQ(records["records"][0], "2026-03-10 11:00:00 202 01 5551234");
  const httplib::Result put = client_->Send("PUT", "/api/editor/switches/hq/config",
                                            nlohmann::json{{"config", Hicom()}}.dump());
  ASSERT_TRUE(put);
  ASSERT_EQ(put->status, 200) << put->body;
  EXPECT_EQ(nlohmann::json::parse(put->body)["path"], (configs_ / "hq.json").string());
  EXPECT_EQ(client_->Json("/api/editor/switches/hq/config")["config"], Hicom());
  // The stored raw texts are no Hicom records: both calls become unrecognised.
  const nlohmann::json first =
      Post("/api/editor/switches/hq/retranslate", nlohmann::json::object());
  EXPECT_EQ(first["total"], 2);
  EXPECT_EQ(first["changed"], 2);
  EXPECT_EQ(first["unrecognised"], 2);
  EXPECT_EQ(store_->CountCalls("hq"), 0);
  // Samples are the newest records the configuration does not read.
  const nlohmann::json unread = client_->Json("/api/editor/switches/hq/records?last=1");
  ASSERT_EQ(unread["records"].size(), 1u);
  EXPECT_EQ(unread["records"][0], "2026-03-10 11:00:00 202 01 5551234");
  const nlohmann::json again =
      Post("/api/editor/switches/hq/retranslate", nlohmann::json::object());
  EXPECT_EQ(again["changed"], 0);
  EXPECT_EQ(again["unchanged"], 2);
}

INSTANTIATE_TEST_SUITE_P(Engines, EditorApiTest, BothEngines(), EngineName);

}  // namespace
}  // namespace velqua_web_testing
