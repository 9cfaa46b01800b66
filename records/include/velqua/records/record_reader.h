// Streaming input of call records: lines ended by CR LF, LF or CR, read
// through a fixed buffer (memory stays flat whatever the file's size), and
// the gathering of multi-line calls for case 4 (Nortel Norstar).
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

namespace velqua_records {

// Splits a byte stream into lines. CR LF, LF and a lone CR each end a line;
// a CR LF split across two reads still counts once. The last line needs no
// line end. The stream is not owned.
class LineReader {
 public:
  // How a live source is read: a pipe, a terminal, a serial device or a
  // followed file, whose records arrive one at a time and must come out as
  // soon as they are complete.
  struct Live {
    // Called when no byte has come for `idle_ms` (to write a call held
    // back waiting for its next line), then reading goes on.
    std::function<void()> on_idle;
    int idle_ms = 2000;
    // Follow a growing file by this name like `tail -F`: at its end, wait for
    // more; reopen it when it is replaced (rotated) or start again from its
    // beginning when it is truncated.
    std::string follow;
    // Polled while waiting: true ends the input (an interrupt).
    std::function<bool()> stop;
  };

  // `offset` is where the stream stands in its file (a resumed import
  // starts past the records already stored): line offsets count from it.
  explicit LineReader(std::FILE* stream, int64_t offset = 0);
  // Reads a live source: blocks only in poll(), never waits for a full block.
  LineReader(std::FILE* stream, Live live);
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  // The next line without its line end; false at the end of the stream.
  // Throws Failure on a read error.
  bool Next(std::string* line);
  // The same as a view, valid until the next call: into the read buffer,
  // or into a copy only when the line spans two reads (no copy per line).
  bool Next(std::string_view* line);

  // The byte offset of the first byte of the line Next gave last, and of the
  // byte after everything read so far (after the last line's end). A
  // followed file counts from 0 again when it is replaced or truncated.
  int64_t line_offset() const { return line_offset_; }
  int64_t end_offset() const { return buffer_offset_ + static_cast<int64_t>(begin_); }

 private:
  bool Refill();
  bool Wait();
  bool Reopened();

  std::FILE* stream_;
  int fd_ = -1;
  bool live_ = false;
  Live how_;
  unsigned long long inode_ = 0;  // followed file: the one open
  long long offset_ = 0;          // followed file: bytes read from it
  std::string buffer_;
  std::string carry_;  // a line that spans reads
  size_t begin_ = 0;
  size_t end_ = 0;
  int64_t buffer_offset_ = 0;  // the offset of buffer_[0]
  int64_t line_offset_ = 0;
  bool eof_ = false;
  bool skip_lf_ = false;  // the previous line ended with CR: a leading LF belongs to it
};

// Gathers the lines of one multi-line call (case 4): a call starts
// at each header line (one that begins, after blanks, with "--------") and
// ends before the next header or at the end of the input. Lines before the
// first header form a call of their own, so nothing is dropped. The lines of
// a call are joined with `separator` (the configuration's Separador).
// The number of lines (as LineReader cuts them) that start before byte
// `end` of a file read from its start: a resumed reading's first line is
// that number plus one. Leaves the file's position where it was not.
int64_t LinesBefore(std::FILE* file, int64_t end);

class CallGatherer {
 public:
  // BuscaLinea positions are 16-bit: a call never grows past
  // this many characters; the excess starts a new (headless) call.
  static constexpr size_t kMaxCallSize = 32000;

  explicit CallGatherer(std::u16string separator) : separator_(std::move(separator)) {}

  // Adds one line. When it closes the call gathered so far, that call is
  // moved into *call and true is returned.
  bool Add(std::u16string_view line, std::u16string* call);
  // The call still open at the end of the input, if any.
  bool Finish(std::u16string* call);

  static bool IsHeader(std::u16string_view line);

 private:
  std::u16string separator_;
  std::u16string current_;
  bool open_ = false;
};

}  // namespace velqua_records
