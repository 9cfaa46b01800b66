// The rows of `velqua translate` and their three output forms: CSV (RFC
// 4180), JSON Lines, and an aligned table. Output goes through one buffer
// flushed in large blocks.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "velqua/records/call_row.h"

namespace velqua_records {

// Buffered writer of bytes to a FILE* (not owned). Throws Failure when the
// stream refuses the bytes. On a terminal, control characters other than line
// ends and tabs are written as visible escapes (\x1B), so that records
// cannot send escape sequences to it.
class Output {
 public:
  explicit Output(std::FILE* stream);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output();

  std::string& buffer() { return buffer_; }
  // Flushes when the buffer has grown past the block size.
  void MaybeFlush() {
    if (buffer_.size() >= kFlushSize) Flush();
  }
  void Flush();

 private:
  bool Write();

  static constexpr size_t kFlushSize = 1 << 16;
  std::FILE* stream_;
  bool terminal_;
  std::string buffer_;
};

enum class RowFormat { kTable, kCsv, kJsonl };

// Writes rows in one of the output forms. Flush (the sink's) writes what is
// still held back, the table's first rows included, and flushes the output.
class RowWriter : public velqua_records::RowSink {
 public:
  void Flush() override { Finish(); }
  virtual void Finish() = 0;
};

// `live`: the rows come from a live source (a pipe, a device, a followed
// file) and must come out as they complete; a table then sizes its columns
// for what they usually hold rather than for the few rows seen so far.
std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, Output& out, bool live = false);

// The English word of a call type or attribute ("outgoing", "in-transfer"),
// or "" for a value without one (velqua/records/names.h).
std::string ShortTypeName(int32_t type);
std::string ShortAttributeName(int32_t attribute);

// "2026-01-15", and "09:05:00" or "09:05" when the switch printed no seconds
// (hours may exceed 23 if the record says so).
void AppendDate(std::string& out, const Row& row);
void AppendTime(std::string& out, const Row& row);

}  // namespace velqua_records
