#include "support/velqua_test.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace velqua_test {

::testing::AssertionResult IsError(const std::optional<velqua::Error>& thrown, int32_t number,
                                   const std::u16string& source,
                                   const std::optional<std::u16string>& description) {
  if (!thrown) return ::testing::AssertionFailure() << "threw no velqua::Error";
  const velqua::Error& e = *thrown;
  if (e.Number() == number && e.Source() == source &&
      description.value_or(e.Description()) == e.Description()) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure()
         << "threw " << e.Number() << " " << velqua::AUtf8(e.Source()) << ": "
         << velqua::AUtf8(e.Description()) << "\n expected " << number << " "
         << velqua::AUtf8(source) << ": " << velqua::AUtf8(description.value_or(u"(any)"));
}

TempDir::TempDir() {
  const char* base = std::getenv("VELQUA_TEST_TMP");
  std::filesystem::path root = base != nullptr ? base : std::filesystem::temp_directory_path();
  std::filesystem::create_directories(root);
  std::string templ = (root / "velqua-XXXXXX").string();
  if (mkdtemp(templ.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  dir_ = templ;
}

TempDir::~TempDir() {
  std::error_code ec;  // a test may leave its folder read-only
  std::filesystem::permissions(dir_, std::filesystem::perms::owner_all,
                               std::filesystem::perm_options::add, ec);
  std::filesystem::remove_all(dir_, ec);
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  if (in) out << in.rdbuf();
  return out.str();
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

namespace {

// The bytes of a case line: \r, \n, \t, \0, \\ and \xHH stand for one byte.
std::string Unescape(const std::string& text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c != '\\' || i + 1 == text.size()) {
      out += c;
      continue;
    }
    const char e = text[++i];
    if (e == 'x') {
      out += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      out += e == 'r' ? '\r' : e == 'n' ? '\n' : e == 't' ? '\t' : e == '0' ? '\0' : e;
    }
  }
  return out;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> ReadCases(const std::string& name) {
  std::ifstream in(DataPath(name), std::ios::binary);
  EXPECT_TRUE(in.good()) << DataPath(name);
  std::vector<std::pair<std::string, std::string>> cases;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("< ", 0) == 0) cases.emplace_back(Unescape(line.substr(2)), "");
    if (line.rfind("> ", 0) == 0 && !cases.empty()) cases.back().second = Unescape(line.substr(2));
  }
  return cases;
}

}  // namespace velqua_test
