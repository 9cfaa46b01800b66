#include "velqua/capture/spool.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>

#include "velqua/capture/spool_format.h"

namespace velqua_capture {
namespace fmt = spool_format;

namespace spool_format {

uint32_t Checksum(const char* length_bytes, std::string_view body) {
  uLong crc = crc32(0L, Z_NULL, 0);
  crc = crc32(crc, reinterpret_cast<const Bytef*>(length_bytes), 4);
  crc = crc32(crc, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
  return static_cast<uint32_t>(crc);
}

std::string SegmentName(int64_t first) {
  std::string digits = std::to_string(first);
  return std::string(20 - std::min<size_t>(20, digits.size()), '0') + digits + kSegmentSuffix;
}

int64_t SegmentFirst(std::string_view name) {
  const std::string_view suffix(kSegmentSuffix);
  if (name.size() != 20 + suffix.size() || name.substr(20) != suffix) return -1;
  int64_t first = 0;
  for (char c : name.substr(0, 20)) {
    if (c < '0' || c > '9' || first > (INT64_MAX - 9) / 10) return -1;
    first = first * 10 + (c - '0');
  }
  return first;
}

}  // namespace spool_format

namespace {

std::string Errno() { return std::strerror(errno); }

int64_t NowNanoseconds() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

int64_t FileSize(int fd) {
  struct stat st {};
  return ::fstat(fd, &st) == 0 ? static_cast<int64_t>(st.st_size) : -1;
}

bool ReadFully(int fd, char* out, size_t n, int64_t offset) {
  while (n > 0) {
    const ssize_t got = ::pread(fd, out, n, offset);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    out += got;
    n -= static_cast<size_t>(got);
    offset += got;
  }
  return true;
}

bool WriteFully(int fd, const char* p, size_t n) {
  while (n > 0) {
    const ssize_t put = ::write(fd, p, n);
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return false;
    p += put;
    n -= static_cast<size_t>(put);
  }
  return true;
}

enum class Parse { kOk, kShort, kBad };

// Reads the record at `offset` of a segment whose file holds `size` bytes.
// kShort: the file ends inside it; kBad: its length, checksum or fields are
// wrong. On kOk, *total is the record's size in the file.
Parse ReadAt(int fd, int64_t first, int64_t offset, int64_t size, std::string* body,
             SpoolEntry* entry, int64_t* total) {
  char prefix[fmt::kRecordPrefixSize];
  if (size - offset < static_cast<int64_t>(sizeof prefix)) return Parse::kShort;
  if (!ReadFully(fd, prefix, sizeof prefix, offset)) return Parse::kShort;
  const uint32_t length = fmt::DecodeFixed32(prefix);
  if (length < fmt::kFixedBodySize + 1 || length > fmt::kMaxLength) return Parse::kBad;
  if (size - offset - static_cast<int64_t>(sizeof prefix) < length) return Parse::kShort;
  body->resize(length);
  if (!ReadFully(fd, body->data(), length, offset + static_cast<int64_t>(sizeof prefix))) {
    return Parse::kShort;
  }
  if (fmt::Checksum(prefix, *body) != fmt::DecodeFixed32(prefix + 4)) return Parse::kBad;
  const auto kind = static_cast<uint8_t>((*body)[0]);
  const auto source_size = static_cast<uint8_t>((*body)[1]);
  if (kind < 1 || kind > 7 || source_size == 0 || 2u + source_size + 8u > length) {
    return Parse::kBad;
  }
  entry->position = first + offset;
  entry->kind = static_cast<SpoolKind>(kind);
  entry->source.assign(*body, 2, source_size);
  entry->received_us = static_cast<int64_t>(fmt::DecodeFixed64(body->data() + 2 + source_size));
  const size_t data = 2u + source_size + 8u;
  entry->bytes.assign(*body, data, std::string::npos);
  entry->data_position = entry->position + static_cast<int64_t>(sizeof prefix + data);
  *total = static_cast<int64_t>(sizeof prefix + length);
  return Parse::kOk;
}

bool HeaderIsGood(int fd, int64_t first) {
  char header[fmt::kSegmentHeaderSize];
  return ReadFully(fd, header, sizeof header, 0) &&
         std::memcmp(header, fmt::kMagic, sizeof fmt::kMagic) == 0 &&
         static_cast<int64_t>(fmt::DecodeFixed64(header + 8)) == first;
}

// The source named by a record torn at `offset`, when enough of it remains.
std::string TornSource(int fd, int64_t offset, int64_t size) {
  char head[fmt::kRecordPrefixSize + 2 + 255];
  const int64_t n = std::min<int64_t>(size - offset, static_cast<int64_t>(sizeof head));
  if (n < static_cast<int64_t>(fmt::kRecordPrefixSize + 2) ||
      !ReadFully(fd, head, static_cast<size_t>(n), offset)) {
    return "";
  }
  const auto source_size = static_cast<unsigned char>(head[fmt::kRecordPrefixSize + 1]);
  if (source_size == 0 || fmt::kRecordPrefixSize + 2 + source_size > static_cast<size_t>(n)) {
    return "";
  }
  return std::string(head + fmt::kRecordPrefixSize + 2, source_size);
}

void SyncFolder(const std::string& dir) {
  const int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd >= 0) {
    ::fsync(fd);
    ::close(fd);
  }
}

}  // namespace

std::vector<std::pair<int64_t, std::string>> ListSegments(const std::string& dir) {
  std::vector<std::pair<int64_t, std::string>> segments;
  std::error_code ec;
  for (const auto& e : std::filesystem::directory_iterator(dir, ec)) {
    const int64_t first = fmt::SegmentFirst(e.path().filename().string());
    if (first >= 0) segments.emplace_back(first, e.path().string());
  }
  std::sort(segments.begin(), segments.end());
  return segments;
}

SpoolWriter::SpoolWriter(std::string dir, FsyncPolicy policy, Log log)
    : dir_(std::move(dir)), policy_(policy), log_(std::move(log)) {
  std::error_code ec;
  std::filesystem::create_directories(dir_, ec);
  if (!std::filesystem::is_directory(dir_)) {
    throw std::runtime_error("cannot make the spool folder '" + dir_ + "': " + ec.message());
  }
  Lock();
  const auto segments = ListSegments(dir_);
  if (!segments.empty()) CutTornTail(segments.back().second, segments.back().first);
}

SpoolWriter::~SpoolWriter() {
  if (fd_ >= 0) {
    if (policy_ != FsyncPolicy::kNever) ::fdatasync(fd_);
    ::close(fd_);
  }
  if (lock_fd_ >= 0) ::close(lock_fd_);  // the lock goes with it
}

void SpoolWriter::Lock() {
  const std::string path = dir_ + "/lock";
  lock_fd_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0640);
  if (lock_fd_ < 0) throw std::runtime_error("cannot open '" + path + "': " + Errno());
  if (::flock(lock_fd_, LOCK_EX | LOCK_NB) != 0) {
    const int why = errno;
    char pid[32] = {};
    const ssize_t n = ::pread(lock_fd_, pid, sizeof pid - 1, 0);
    ::close(lock_fd_);
    lock_fd_ = -1;
    std::string holder(pid, static_cast<size_t>(std::max<ssize_t>(0, n)));
    while (!holder.empty() && (holder.back() == '\n' || holder.back() == ' ')) holder.pop_back();
    if (why != EWOULDBLOCK) {
      throw std::runtime_error("cannot lock '" + path + "': " + std::strerror(why));
    }
    throw SpoolInUse("spool " + dir_ + " in use by pid " + (holder.empty() ? "?" : holder));
  }
  const std::string pid = std::to_string(::getpid()) + "\n";
  if (::ftruncate(lock_fd_, 0) != 0 || ::pwrite(lock_fd_, pid.data(), pid.size(), 0) < 0) {
    // The lock holds all the same; only the message of a second writer lacks the pid.
  }
}

void SpoolWriter::CutTornTail(const std::string& path, int64_t first) {
  const int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
  if (fd < 0) throw std::runtime_error("cannot open spool segment '" + path + "': " + Errno());
  const int64_t size = FileSize(fd);
  end_ = std::max(end_, first + size);  // no position of the file is ever given again
  int64_t good = 0;
  if (HeaderIsGood(fd, first)) {
    good = static_cast<int64_t>(fmt::kSegmentHeaderSize);
    SpoolEntry entry;
    int64_t total = 0;
    while (ReadAt(fd, first, good, size, &buffer_, &entry, &total) == Parse::kOk) good += total;
  }
  if (good < size) {
    torn_tail_ = "torn tail cut: " + std::to_string(size - good) + " bytes at the end of " + path +
                 " (from position " + std::to_string(first + good) + ")";
    if (good > 0) torn_stream_ = TornSource(fd, good, size);
    log_("spool: " + torn_tail_);
    if (good == 0) {
      ::unlink(path.c_str());
    } else if (::ftruncate(fd, good) != 0 || ::fsync(fd) != 0) {
      ::close(fd);
      throw std::runtime_error("cannot cut the torn tail of '" + path + "': " + Errno());
    }
  }
  ::close(fd);
}

void SpoolWriter::OpenSegment(int64_t first) {
  // The segment written until now (or lost to a failed write) can be
  // released from its end on.
  next_release_ = std::min(next_release_, end_);
  if (fd_ >= 0) {
    if (policy_ != FsyncPolicy::kNever) ::fdatasync(fd_);
    ::close(fd_);
    fd_ = -1;
  }
  const std::string path = dir_ + "/" + fmt::SegmentName(first);
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, 0640);
  if (fd < 0) throw SpoolFull("cannot create spool segment '" + path + "': " + Errno());
  std::string header(fmt::kMagic, sizeof fmt::kMagic);
  fmt::PutFixed64(&header, static_cast<uint64_t>(first));
  if (!WriteFully(fd, header.data(), header.size())) {
    const std::string why = Errno();
    ::close(fd);
    ::unlink(path.c_str());
    throw SpoolFull("cannot write spool segment '" + path + "': " + why);
  }
  if (policy_ != FsyncPolicy::kNever) SyncFolder(dir_);
  fd_ = fd;
  first_ = first;
  end_ = first + static_cast<int64_t>(header.size());
}

int64_t SpoolWriter::Append(SpoolKind kind, std::string_view source, int64_t received_us,
                            std::string_view bytes) {
  if (fd_ < 0) {
    OpenSegment(std::max(end_, NowNanoseconds()));
  } else if (end_ - first_ >= segment_bytes_) {
    OpenSegment(end_);
  }
  source = source.substr(0, 255);
  buffer_.clear();
  const auto length = static_cast<uint32_t>(fmt::kFixedBodySize + source.size() + bytes.size());
  fmt::PutFixed32(&buffer_, length);
  fmt::PutFixed32(&buffer_, 0);  // the checksum, once the body is in place
  buffer_.push_back(static_cast<char>(kind));
  buffer_.push_back(static_cast<char>(source.size()));
  buffer_.append(source);
  fmt::PutFixed64(&buffer_, static_cast<uint64_t>(received_us));
  buffer_.append(bytes);
  const uint32_t crc =
      fmt::Checksum(buffer_.data(), std::string_view(buffer_).substr(fmt::kRecordPrefixSize));
  for (int i = 0; i < 4; ++i)
    buffer_[4 + static_cast<size_t>(i)] = static_cast<char>(crc >> (8 * i));
  if (!WriteFully(fd_, buffer_.data(), buffer_.size()) ||
      (policy_ == FsyncPolicy::kAlways && !deferred_sync_ && ::fdatasync(fd_) != 0)) {
    const std::string why = Errno();
    // Leave the segment ending with its last whole record, so that the
    // retried append follows it.
    if (::ftruncate(fd_, end_ - first_) != 0) {
      ::close(fd_);
      fd_ = -1;  // the next append starts a new segment past this one
      end_ += static_cast<int64_t>(buffer_.size());
    }
    throw SpoolFull("cannot write the spool in '" + dir_ + "': " + why);
  }
  const int64_t position = end_;
  end_ += static_cast<int64_t>(buffer_.size());
  return position;
}

void SpoolWriter::Sync() {
  if (fd_ >= 0 && ::fdatasync(fd_) != 0) {
    throw SpoolFull("cannot sync the spool in '" + dir_ + "': " + Errno());
  }
}

void SpoolWriter::Release(int64_t position) {
  if (position < next_release_) return;
  next_release_ = INT64_MAX;  // until a segment other than the current one remains
  for (const auto& [first, path] : ListSegments(dir_)) {
    if (fd_ >= 0 && first >= first_) break;
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) continue;
    const int64_t end = first + static_cast<int64_t>(st.st_size);
    if (end > position) {
      next_release_ = end;
      break;
    }
    ::unlink(path.c_str());
  }
}

SpoolReader::SpoolReader(std::string dir, int64_t from, Log log)
    : dir_(std::move(dir)), log_(std::move(log)), from_(from) {}

SpoolReader::~SpoolReader() {
  if (fd_ >= 0) ::close(fd_);
}

// Opens the segment after the one open (at first, the one holding `from_`);
// false when there is none yet.
bool SpoolReader::OpenNextSegment() {
  const auto segments = ListSegments(dir_);
  const std::pair<int64_t, std::string>* next = nullptr;
  for (const auto& segment : segments) {
    if (segment.first <= first_) continue;
    if (next != nullptr && segment.first > from_) break;
    next = &segment;  // the last one starting at or before from_, else the first after
  }
  if (next == nullptr) return false;
  const int fd = ::open(next->second.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  if (fd_ >= 0) ::close(fd_);
  fd_ = fd;
  first_ = next->first;
  offset_ = static_cast<int64_t>(fmt::kSegmentHeaderSize);
  if (!HeaderIsGood(fd_, first_)) {
    log_("spool: segment " + next->second + " has no valid header: skipped");
    offset_ = INT64_MAX / 2;  // read as finished
  }
  return true;
}

bool SpoolReader::Next(int64_t limit, SpoolEntry* entry) {
  for (;;) {
    if (fd_ < 0 && !OpenNextSegment()) return false;
    if (ReadRecord(limit, entry)) {
      if (entry->position >= from_) return true;
      // The data record holding `from` (a record the framer had open when
      // the replay position was written): its bytes from there on.
      const int64_t end = entry->data_position + static_cast<int64_t>(entry->bytes.size());
      if (entry->kind != SpoolKind::kData || from_ < entry->data_position || from_ >= end) {
        continue;
      }
      entry->bytes.erase(0, static_cast<size_t>(from_ - entry->data_position));
      entry->data_position = from_;
      return true;
    }
    // At the end of what may be read: a later segment can hold a record only
    // when the writer has completed one past this segment's end (checked
    // before the folder is listed, which the pipeline would otherwise do
    // each time it catches up).
    if (limit <= first_ + FileSize(fd_)) return false;
    const int64_t first = first_;
    if (!OpenNextSegment() || first_ == first) return false;
  }
}

bool SpoolReader::ReadRecord(int64_t limit, SpoolEntry* entry) {
  // A record that starts before `limit` was completed by the writer.
  const int64_t size = FileSize(fd_);
  if (offset_ >= size || first_ + offset_ >= limit) return false;
  int64_t total = 0;
  if (ReadAt(fd_, first_, offset_, size, &body_, entry, &total) == Parse::kOk) {
    offset_ += total;
    return true;
  }
  // Damage the writer did not cut (it cuts only its own torn tail on start):
  // nothing after it in this segment can be found again.
  log_("spool: damaged record at position " + std::to_string(first_ + offset_) + ": " +
       std::to_string(size - offset_) + " bytes of the segment skipped");
  offset_ = size;
  return false;
}

}  // namespace velqua_capture
