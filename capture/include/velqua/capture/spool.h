// The spool: every byte a source receives is written here before it is framed,
// translated or stored, so that a crash, a full disk or a store that is down
// loses nothing. It is a folder of segment files of checksummed records
// (spool_format.h, doc/formats/spool.md); each record has a position, unique
// for the life of the spool folder and never given twice, which the store
// keeps with every call so that replaying the spool stores nothing twice.
#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velqua_capture {

// What a spool record holds.
enum class SpoolKind : uint8_t {
  kData = 1,        // bytes received from a source
  kConnect = 2,     // a source connected (bytes: the peer); a new connection's records follow
  kDisconnect = 3,  // a source's connection ended (bytes: the reason)
  kFlush = 4,       // a source was quiet: the record it left open is complete
  kStart = 5,       // the service started: every connection before it has ended
  kGap = 6,         // a source knows it missed bytes it can never read (bytes: what)
  kTornTail = 7,    // a torn spool tail held a record of this source (bytes: what was cut)
};

enum class FsyncPolicy {
  kAlways,    // each append reaches the disk before its bytes are framed (default)
  kInterval,  // the spool is synced every interval
  kNever,     // the operating system decides
};

struct SpoolEntry {
  int64_t position = 0;  // of the record
  SpoolKind kind = SpoolKind::kData;
  std::string source;
  int64_t received_us = 0;  // microseconds since 1970 UTC
  std::string bytes;
  // The position of bytes[0]: bytes[i] stands at data_position + i.
  int64_t data_position = 0;
};

// An append the disk refused (full, or a file-size limit): the segment is
// left ending with its last whole record, and the same append may be retried.
class SpoolFull : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Another writer holds the spool folder (another service on the same configuration).
class SpoolInUse : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Appends to a spool folder. One writer per folder: it holds the folder's
// `lock` file (an exclusive lock, released by the system when the process
// ends however it ends) and keeps its process id in it.
class SpoolWriter {
 public:
  // Called with one line for each event worth logging (a torn tail cut).
  using Log = std::function<void(const std::string&)>;

  // Opens the folder `dir`, creating it when missing. A last segment whose
  // tail is torn (a record cut short or with a bad checksum: the machine
  // stopped mid-write) is cut at its first bad record, and `log` names the
  // bytes cut. The next append starts a new segment whose first position is
  // the current time in nanoseconds since 1970, or the end of the spool if
  // that is later: a position once given, even to bytes lost with a machine's
  // unwritten cache, is never given again. Throws SpoolInUse ("spool DIR in
  // use by pid N") when another writer holds the folder, std::runtime_error
  // when the folder cannot be made or read.
  SpoolWriter(std::string dir, FsyncPolicy policy, Log log);
  ~SpoolWriter();
  SpoolWriter(const SpoolWriter&) = delete;
  SpoolWriter& operator=(const SpoolWriter&) = delete;

  // Appends one record and returns its position; with kAlways it is on the
  // disk when this returns. Starts a new segment past `segment_bytes`. Throws
  // SpoolFull when the disk refuses the write.
  int64_t Append(SpoolKind kind, std::string_view source, int64_t received_us,
                 std::string_view bytes);
  // Forces what was appended to the disk (kInterval's timer); SpoolFull.
  void Sync();
  // The position after the last record appended.
  int64_t End() const { return end_; }
  // The torn tail cut on opening: "" when there was none; else a line
  // saying what was cut, and the stream whose record it was ("" when the
  // tail is too short to name it).
  const std::string& torn_tail() const { return torn_tail_; }
  const std::string& torn_stream() const { return torn_stream_; }
  // Deletes the segments that end at or before `position`, never the one
  // being written.
  void Release(int64_t position);

  // With kAlways, leaves the sync of each append to the caller's Sync(), so
  // that appends made together reach the disk in one sync. Default: off.
  void set_deferred_sync(bool deferred) { deferred_sync_ = deferred; }
  // Segments grow to about this size. Default: 64 MiB.
  void set_segment_bytes(int64_t bytes) { segment_bytes_ = bytes; }

 private:
  void Lock();
  void OpenSegment(int64_t first);
  void CutTornTail(const std::string& path, int64_t first);

  std::string dir_;
  FsyncPolicy policy_;
  Log log_;
  int lock_fd_ = -1;
  int fd_ = -1;
  int64_t first_ = 0;  // of the segment being written
  int64_t end_ = 0;
  // No segment can be released before this position: Release lists the
  // folder only from there (it is called after every commit).
  int64_t next_release_ = INT64_MIN;
  int64_t segment_bytes_ = 64ll << 20;
  bool deferred_sync_ = false;
  std::string buffer_;
  std::string torn_tail_, torn_stream_;
};

// Reads a spool folder's records in position order, from a position on,
// while a writer may be appending to it.
class SpoolReader {
 public:
  // Damage found inside a segment (not at the writer's tail) is reported
  // here; the rest of that segment is skipped.
  using Log = std::function<void(const std::string&)>;

  // Starts at `from`: the first record at or after it, or, when `from` falls
  // inside a data record's bytes, that record's bytes from `from` on.
  SpoolReader(std::string dir, int64_t from, Log log);
  ~SpoolReader();
  SpoolReader(const SpoolReader&) = delete;
  SpoolReader& operator=(const SpoolReader&) = delete;

  // The next record that ends at or before `limit` (what the writer has
  // completed); false when there is none yet.
  bool Next(int64_t limit, SpoolEntry* entry);

 private:
  bool OpenNextSegment();
  bool ReadRecord(int64_t limit, SpoolEntry* entry);

  std::string dir_;
  Log log_;
  int64_t from_;
  int fd_ = -1;
  int64_t first_ = -1;  // of the segment open
  int64_t offset_ = 0;  // in it
  std::string body_;
};

// The segment files of a spool folder, oldest first: (first position, path).
std::vector<std::pair<int64_t, std::string>> ListSegments(const std::string& dir);

}  // namespace velqua_capture
