// serve.toml: what each key sets, and a mistake refused with the file and key.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "velqua/web/server.h"

namespace {

std::string WriteConfig(const std::string& text) {
  const std::string dir = std::filesystem::temp_directory_path().string() + "/velqua-serve-config";
  std::filesystem::create_directories(dir);
  const std::string path = dir + "/serve.toml";
  std::ofstream(path) << text;
  return path;
}

TEST(ServeConfig, KeysSetTheirOptionsAndCaptureNamesAreTakenFromTheFilesFolder) {
  const std::string path = WriteConfig(
      "listen = \"0.0.0.0:9000\"\nthreads = 8\n"
      "capture = [\"capture.toml\", \"/etc/velqua/other.toml\"]\n");
  velqua_web::ServeOptions o;
  velqua_web::LoadServeConfig(path, o);
  EXPECT_EQ(o.listen, "0.0.0.0:9000");
  EXPECT_EQ(o.threads, 8);
  const std::string folder = std::filesystem::path(path).parent_path().string();
  ASSERT_EQ(o.capture.size(), 2u);
  EXPECT_EQ(o.capture[0], folder + "/capture.toml");
  EXPECT_EQ(o.capture[1], "/etc/velqua/other.toml");
  EXPECT_EQ(o.connections, 4);  // not in the file: kept
}

TEST(ServeConfig, AMistakeIsRefusedNamingTheKey) {
  struct Row {
    std::string text, says;
  };
  const Row rows[] = {
      {"capture = \"capture.toml\"\n", "'capture' must be a list of file names"},
      {"capture = [\"\"]\n", "'capture' must be a list of file names"},
      {"threads = 2\n", "'threads' must be an integer from 4 to 1024"},
      {"listen = 8080\n", "'listen' must be a text"},
      {"colour = \"blue\"\n", "unknown key 'colour'"},
      {"listen = \n", "serve.toml:1:"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    velqua_web::ServeOptions o;
    try {
      velqua_web::LoadServeConfig(WriteConfig(row.text), o);
      ADD_FAILURE() << "accepted";
    } catch (const velqua_web::ServeError& e) {
      EXPECT_NE(std::string(e.what()).find(row.says), std::string::npos) << e.what();
    }
  }
}

}  // namespace
