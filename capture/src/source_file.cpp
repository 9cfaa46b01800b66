// The file-follow source: a file another program appends to (a collector
// that writes the switch's records to disk), followed like `tail -F`.
//
// It hands over whole records only, so that a restart, a rotation or a
// truncation never cuts one in two; a last record without its end is handed
// over once the file has been quiet for the switch's idle time. Where it is
// in the file (inode and offset) is kept in a small state file beside the
// spool, so that after a restart it goes on where it was rather than reading
// the file again. A file rotated or truncated while the service was stopped
// is found again where rotation puts it and its unread tail read first; when
// it cannot be found the gap is logged and recorded, never passed over.
#include <fcntl.h>
#include <fnmatch.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "sources.h"
#include "velqua/records/common.h"

namespace velqua_capture {
namespace {

constexpr Millis kPoll{100};
constexpr size_t kReadSize = 1 << 16;

// The last bytes before `offset` of the file open on `fd` (at most 32), in
// hexadecimal.
std::string Tail(int fd, int64_t offset) {
  char bytes[32];
  const int64_t from = std::max<int64_t>(0, offset - static_cast<int64_t>(sizeof bytes));
  const ssize_t n = ::pread(fd, bytes, static_cast<size_t>(offset - from), from);
  std::string hex = "-";  // never empty, so that the state file reads back
  for (ssize_t i = 0; i < n; ++i) {
    static const char kDigits[] = "0123456789abcdef";
    hex += kDigits[static_cast<unsigned char>(bytes[i]) >> 4];
    hex += kDigits[static_cast<unsigned char>(bytes[i]) & 15];
  }
  return hex;
}

// Where a rotated copy of `path` may be: the files beside it whose names
// start with its own (smdr.log.1, smdr.log-20260101), then those matching
// `pattern` ("" for none).
std::vector<std::string> RotatedCandidates(const std::string& path, const std::string& pattern) {
  namespace fs = std::filesystem;
  std::vector<std::string> found;
  auto scan = [&](const fs::path& dir, const std::function<bool(const std::string&)>& keep) {
    std::error_code ec;
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(dir, ec)) {
      const std::string name = e.path().filename().string();
      if (e.path() != fs::path(path) && keep(name)) names.push_back(e.path().string());
    }
    std::sort(names.begin(), names.end());
    found.insert(found.end(), names.begin(), names.end());
  };
  const fs::path file(path);
  const std::string base = file.filename().string();
  scan(file.parent_path(), [&](const std::string& name) {
    return name.size() > base.size() && name.compare(0, base.size(), base) == 0;
  });
  if (!pattern.empty()) {
    const fs::path p(pattern);
    const std::string leaf = p.filename().string();
    scan(p.parent_path(),
         [&](const std::string& name) { return ::fnmatch(leaf.c_str(), name.c_str(), 0) == 0; });
  }
  return found;
}

class FileSource : public Source, public std::enable_shared_from_this<FileSource> {
 public:
  FileSource(asio::io_context& io, const SourceSettings& s, const SwitchSettings& sw,
             const std::string& state_dir, SourceEvents& events)
      : s_(s),
        end_(sw.framing.end),
        idle_(sw.idle_flush),
        events_(events),
        timer_(io),
        state_(state_dir + "/follow-" + s.name),
        buffer_(kReadSize, '\0') {}

  ~FileSource() override {
    if (fd_ >= 0) ::close(fd_);
  }

  void Start() override {
    std::ifstream in(state_);
    in >> saved_inode_ >> saved_offset_ >> saved_tail_;
    if (!in) saved_inode_ = saved_offset_ = 0;
    Poll();
  }

  void Stop(const std::string& reason) override {
    stopped_ = true;
    timer_.cancel();
    Close(reason);
  }

 private:
  void Poll() {
    if (stopped_) return;
    if (!events_.Held()) {
      if (fd_ < 0) Open();
      if (fd_ >= 0) Follow();
    }
    auto self = shared_from_this();
    timer_.expires_after(kPoll);
    timer_.async_wait([this, self](const asio::error_code& ec) {
      if (!ec) Poll();
    });
  }

  void Open() {
    fd_ = ::open(s_.path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat st {};
    if (fd_ < 0 || ::fstat(fd_, &st) != 0) {
      if (fd_ >= 0) ::close(fd_);
      fd_ = -1;
      if (!waiting_) events_.Log("source " + s_.name + ": waiting for " + s_.path);
      waiting_ = true;
      return;
    }
    waiting_ = false;
    inode_ = static_cast<unsigned long long>(st.st_ino);
    // Go on where the last run stopped when it is the same file, not shorter;
    // else the last run's file was rotated or truncated meanwhile.
    const bool same = SameFile(st);
    const bool changed = saved_inode_ != 0 && !same;
    if (changed) CatchUp();
    offset_ = same ? saved_offset_ : 0;
    saved_inode_ = 0;
    // Known from now on: a restart after a rotation finds this file again
    // even if nothing of it was handed over yet; and an old file read to its
    // end is not read again.
    SaveState();
    pending_.clear();
    events_.Connected(s_.name, s_.path);
  }

  // Reads what was appended, then looks for a rotation or a truncation.
  void Follow() {
    for (;;) {
      const ssize_t n = ::pread(fd_, buffer_.data(), buffer_.size(), offset_ + Pending());
      if (n <= 0) break;
      pending_.append(buffer_.data(), static_cast<size_t>(n));
      quiet_since_ = std::chrono::steady_clock::now();
      Hand(velqua_records::WholeRecordsSize(pending_, end_));
      if (events_.Held()) return;
    }
    if (!pending_.empty() && std::chrono::steady_clock::now() - quiet_since_ >= idle_) {
      Hand(pending_.size());  // a last record without its end
    }
    struct stat now {};
    const bool gone = ::stat(s_.path.c_str(), &now) != 0;
    if (gone) return;  // between the steps of a rotation: keep the old file
    if (static_cast<unsigned long long>(now.st_ino) != inode_) {
      Hand(pending_.size());
      Close("rotated");
    } else if (now.st_size < offset_ + Pending()) {
      Hand(pending_.size());
      Close("truncated");
      saved_inode_ = inode_;
      saved_offset_ = 0;
    }
  }

  // Whether the file open is the one the last run was reading: the same
  // inode, not shorter, and still holding the bytes last handed over where
  // they were (a file truncated and written again past the old offset is
  // not the same file).
  bool SameFile(const struct stat& st) const {
    return inode_ == saved_inode_ && saved_offset_ <= st.st_size &&
           Tail(fd_, saved_offset_) == saved_tail_;
  }

  // The file the last run was reading is no longer at the path: it was
  // renamed away or truncated after a copy was made, found by the bytes
  // before where the last run stopped (the renamed file itself preferred). Its unread
  // tail is handed over first, as a connection of its own; then every other
  // rotated file written to since the last run saved where it was (the file
  // was rotated more than once meanwhile), oldest first, whole. When the
  // last run's file cannot be found, the gap is reported. A last run that
  // had handed nothing over left no bytes to know its file by (every copy
  // would match): then its file, found by its inode, is read whole with the
  // others, in the order they were written (a copy made before a
  // truncation holds records the file no longer does).
  void CatchUp() {
    const bool truncated = inode_ == saved_inode_;
    struct stat state {};
    const int64_t saved_at = ::stat(state_.c_str(), &state) == 0 ? Nanos(state.st_mtim) : INT64_MAX;
    std::string old;
    int64_t old_size = 0;
    std::vector<std::pair<int64_t, std::string>> later;  // (modified, path)
    for (const std::string& candidate : RotatedCandidates(s_.path, s_.rotated)) {
      const int fd = ::open(candidate.c_str(), O_RDONLY | O_CLOEXEC);
      struct stat st {};
      if (fd < 0) continue;
      const bool regular = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) &&
                           static_cast<unsigned long long>(st.st_ino) != inode_;
      const bool same_inode = static_cast<unsigned long long>(st.st_ino) == saved_inode_;
      const bool nothing_read = saved_offset_ == 0;
      if (regular && !nothing_read && saved_offset_ <= st.st_size &&
          Tail(fd, saved_offset_) == saved_tail_) {
        // The last run's bytes: the file itself, or a copy of it (the
        // renamed file is preferred; the other holds the same bytes).
        if (old.empty() || same_inode) {
          old = candidate;
          old_size = st.st_size;
        }
      } else if (regular && !Compressed(candidate) &&
                 ((nothing_read && same_inode) || Nanos(st.st_mtim) > saved_at)) {
        later.emplace_back(Nanos(st.st_mtim), candidate);
      }
      ::close(fd);
    }
    if (old.empty() && (saved_offset_ > 0 || later.empty())) {
      events_.Gap(s_.name, std::string(truncated ? "truncated" : "rotated away") +
                               " while the service was stopped, and the old file (" +
                               std::to_string(saved_offset_) +
                               " bytes read) was not found: what was written to it after that "
                               "could not be read (bytes unknown)");
    } else {
      ReadRotated(old, saved_offset_, old_size);
    }
    std::sort(later.begin(), later.end());
    for (const auto& [modified, path] : later) ReadRotated(path, 0, -1);
  }

  static int64_t Nanos(const timespec& t) {
    return static_cast<int64_t>(t.tv_sec) * 1000000000 + t.tv_nsec;
  }

  // Rotation that compresses leaves files whose bytes are not records.
  static bool Compressed(const std::string& path) {
    for (const char* suffix : {".gz", ".bz2", ".xz", ".zst", ".Z", ".zip"}) {
      const size_t n = std::strlen(suffix);
      if (path.size() > n && path.compare(path.size() - n, n, suffix) == 0) return true;
    }
    return false;
  }

  // Hands over a rotated file from `from` to `size` (-1: its end), as a
  // connection of its own.
  void ReadRotated(const std::string& old, int64_t from, int64_t size) {
    const int fd = ::open(old.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return;
    struct stat st {};
    if (size < 0) size = ::fstat(fd, &st) == 0 ? static_cast<int64_t>(st.st_size) : 0;
    events_.Log("source " + s_.name + ": " + s_.path +
                " changed while the service was stopped: reading " +
                (from > 0 ? "the rest of " : "") + old + " (" + std::to_string(size - from) +
                " bytes) first");
    events_.Connected(s_.name, old);
    for (int64_t at = from; at < size;) {
      const ssize_t n = ::pread(fd, buffer_.data(), buffer_.size(), at);
      if (n <= 0) break;
      events_.Received(s_.name, std::string_view(buffer_.data(), static_cast<size_t>(n)));
      at += n;
    }
    ::close(fd);
    events_.Disconnected(s_.name, "rotated while the service was stopped: read to its end");
  }

  int64_t Pending() const { return static_cast<int64_t>(pending_.size()); }

  // Hands over the first `size` pending bytes and records how far the file
  // has been handed over.
  void Hand(size_t size) {
    if (size == 0) return;
    events_.Received(s_.name, std::string_view(pending_.data(), size));
    pending_.erase(0, size);
    offset_ += static_cast<int64_t>(size);
    SaveState();
  }

  void SaveState() {
    std::ostringstream text;
    text << inode_ << ' ' << offset_ << ' ' << Tail(fd_, offset_) << '\n';
    velqua_records::ReplaceFileText(state_, text.str());  // else the next hand-over tries again
  }

  void Close(const std::string& reason) {
    if (fd_ < 0) return;
    ::close(fd_);
    fd_ = -1;
    pending_.clear();
    events_.Disconnected(s_.name, reason);
  }

  SourceSettings s_;
  velqua_records::RecordEnd end_;
  Millis idle_;
  SourceEvents& events_;
  asio::steady_timer timer_;
  std::string state_;
  std::string buffer_;
  std::string pending_;  // read from the file, not yet handed over (no record end yet)
  std::chrono::steady_clock::time_point quiet_since_;
  int fd_ = -1;
  unsigned long long inode_ = 0;
  int64_t offset_ = 0;  // of the first byte not yet handed over
  unsigned long long saved_inode_ = 0;
  int64_t saved_offset_ = 0;
  std::string saved_tail_;
  bool waiting_ = false;
  bool stopped_ = false;
};

}  // namespace

std::shared_ptr<Source> MakeFileSource(asio::io_context& io, const SourceSettings& s,
                                       const SwitchSettings& sw, const std::string& state_dir,
                                       SourceEvents& events) {
  return std::make_shared<FileSource>(io, s, sw, state_dir, events);
}

void DrainHeld(int fd, std::string& buffer, const std::function<void(std::string_view)>& got) {
  if (fd < 0) return;
  for (;;) {
    pollfd ready{fd, POLLIN, 0};
    if (::poll(&ready, 1, 0) != 1 || (ready.revents & POLLIN) == 0) return;
    const ssize_t n = ::read(fd, buffer.data(), buffer.size());
    if (n <= 0) return;
    got(std::string_view(buffer.data(), static_cast<size_t>(n)));
  }
}

std::shared_ptr<Source> MakeSource(asio::io_context& io, const SourceSettings& settings,
                                   const SwitchSettings& sw, const std::string& state_dir,
                                   SourceEvents& events) {
  switch (settings.kind) {
    case SourceKind::kSerial:
      return MakeSerialSource(io, settings, events);
    case SourceKind::kTcpConnect:
      return MakeTcpConnectSource(io, settings, events);
    case SourceKind::kTcpListen:
      return MakeTcpListenSource(io, settings, events);
    case SourceKind::kFileFollow:
      break;
  }
  return MakeFileSource(io, settings, sw, state_dir, events);
}

}  // namespace velqua_capture
