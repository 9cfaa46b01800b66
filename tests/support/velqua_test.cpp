#include "support/velqua_test.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace velqua_test {

int RecordingListener::Count(const std::string& name) const {
  return static_cast<int>(std::count(events.begin(), events.end(), name));
}

FixedClock::FixedClock(velqua::plataforma::FechaHora now, uint32_t seed) : clock_(now, seed) {
  velqua::plataforma::EstableceReloj(&clock_);
}

FixedClock::~FixedClock() { velqua::plataforma::EstableceReloj(nullptr); }

velqua::plataforma::FechaHora At(int year, int month, int day, int hour, int minute, int second) {
  velqua::plataforma::FechaHora f;
  f.intAnio = year;
  f.intMes = month;
  f.intDia = day;
  f.intHora = hour;
  f.intMinuto = minute;
  f.intSegundo = second;
  return f;
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
  std::error_code ec;
  std::filesystem::permissions(dir_, std::filesystem::perms::owner_all,
                               std::filesystem::perm_options::add, ec);
  std::filesystem::remove_all(dir_, ec);
}

std::u16string TempDir::Path16(const std::string& name) const {
  return velqua::DesdeUtf8(Path(name));
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string DataPath(const std::string& name) { return std::string(VELQUA_TEST_DATA) + "/" + name; }

}  // namespace velqua_test
