#include "velqua/store/extension_list.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "velqua/records/bundled.h"
#include "velqua/records/common.h"
#include "velqua/records/config_io.h"

namespace velqua_store {
namespace {

using velqua_records::Failure;

// A list's text as the store keeps it (a text column on both engines).
std::string ListText(const std::string& path) {
  velqua_records::RequireReadableFile(path, "extension list");
  std::string text = velqua_records::ReadWholeFile(path, "extension list");
  if (text.find('\0') != std::string::npos || !velqua_records::IsValidUtf8(text)) {
    throw Failure("extension list '" + path +
                  "' is not text (account codes and extensions, UTF-8 without NUL bytes)");
  }
  return text;
}

bool WriteAll(int fd, const std::string& text) {
  for (size_t done = 0; done < text.size();) {
    const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<size_t>(n);
  }
  return true;
}

}  // namespace

SwitchExtensionList::SwitchExtensionList(const std::string& given, const std::string& stored,
                                         const std::string& config) {
  if (!given.empty()) {
    to_keep_ = ListText(given);
    path_ = given;  // read afresh at every lookup: an edit to it counts at once
    return;
  }
  if (stored.empty()) {
    path_ = velqua_records::BundledExtensionList(config);
    if (!path_.empty()) to_keep_ = ListText(path_);
    return;
  }
  // A file only this process sees: in memory where the system allows, else
  // a private temporary file.
  fd_ = ::memfd_create("velqua-extensions", MFD_CLOEXEC);
  if (fd_ >= 0) {
    path_ = "/proc/self/fd/" + std::to_string(fd_);
  } else {
    temp_ = (std::filesystem::temp_directory_path() / "velqua-extensions-XXXXXX").string();
    fd_ = ::mkstemp(&temp_[0]);
    if (fd_ < 0) {
      const std::string why = std::strerror(errno);
      temp_.clear();
      throw Failure("cannot make a copy of the stored extension list: " + why);
    }
    path_ = temp_;
  }
  if (!WriteAll(fd_, stored)) {
    const std::string why = std::strerror(errno);
    ::close(fd_);
    if (!temp_.empty()) ::unlink(temp_.c_str());
    throw Failure("cannot make a copy of the stored extension list: " + why);
  }
}

SwitchExtensionList::~SwitchExtensionList() {
  if (fd_ >= 0) ::close(fd_);
  if (!temp_.empty()) ::unlink(temp_.c_str());
}

}  // namespace velqua_store
