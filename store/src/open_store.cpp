// Opening a store by its URL, and the small helpers of the store's callers.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>

#include "engines.h"
#include "sql_store.h"
#include "values.h"
#include "velqua/records/common.h"
#include "velqua/store/store.h"

namespace velqua_store {
namespace {

bool StartsWith(const std::string& text, const char* prefix) { return text.rfind(prefix, 0) == 0; }

// A PostgreSQL URL as shown in messages: any password left out.
std::string WithoutPassword(const std::string& url) {
  const size_t scheme = url.find("://");
  const size_t at = url.find('@', scheme + 3);
  const size_t colon = url.find(':', scheme + 3);
  if (at == std::string::npos || colon == std::string::npos || colon > at) return url;
  return url.substr(0, colon) + url.substr(at);
}

// A new SQLite file is made here, readable and writable by its owner and
// readable by its group only: it holds who called whom. SQLite gives its
// journal and write-ahead log the database file's mode.
void CreateSqliteFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0640);
  if (fd >= 0) {
    ::close(fd);
  } else if (errno != EEXIST) {
    throw StoreError("database '" + path + "': cannot create: " + std::strerror(errno));
  }
}

}  // namespace

bool IsPostgresUrl(const std::string& url) {
  return StartsWith(url, "postgresql://") || StartsWith(url, "postgres://");
}

std::vector<std::unique_ptr<Store>> OpenMoreWriters(const std::string& url) {
  std::vector<std::unique_ptr<Store>> more;
  if (IsPostgresUrl(url)) more.push_back(OpenStore(url));
  return more;
}

std::unique_ptr<Store> OpenStore(const std::string& url, bool create) {
  if (IsPostgresUrl(url)) {
    const std::string name = WithoutPassword(url);
    return std::make_unique<SqlStore>(ConnectPostgres(url, name), name);
  }
  const std::string path = StartsWith(url, "sqlite:") ? url.substr(7) : url;
  if (path.empty()) throw StoreError("database '" + url + "': no file name");
  if (!std::filesystem::exists(path)) {
    if (!create) throw StoreError("database '" + path + "' does not exist");
    CreateSqliteFile(path);
  }
  return std::make_unique<SqlStore>(ConnectSqlite(path, path), path);
}

std::string ConfigHash(const std::string& path) {
  const std::string content = velqua_records::ReadWholeFile(path, "configuration");
  return Fnv1aHex(content);
}

std::string UtcText(std::time_t moment) {
  std::tm utc{};
  gmtime_r(&moment, &utc);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc);
  return text;
}

std::string UtcNow() { return UtcText(std::time(nullptr)); }

}  // namespace velqua_store
