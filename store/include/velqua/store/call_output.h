// The output forms of stored calls (`velqua calls`): an aligned table, CSV
// with a header row, JSON Lines, and "cdr-csv", the column order of the CSV
// call detail records that telephone tools already read (Asterisk's
// Master.csv; the mapping is in doc/store.md).
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "velqua/store/store.h"

namespace velqua_store {

enum class CallFormat { kTable, kCsv, kJsonl, kCdrCsv };

// The format named "table", "csv", "jsonl" or "cdr-csv"; throws
// velqua_records::Failure for any other name.
CallFormat CallFormatNamed(const std::string& name);

// Writes calls one by one to a stream (not owned), through a buffer of
// 64 KiB. Finish writes what is held back (the table sizes its columns on
// its first 200 rows) and flushes; it throws velqua_records::Failure when
// the stream refuses the bytes.
class CallWriter {
 public:
  virtual ~CallWriter() = default;
  virtual void Write(const StoredCall& call) = 0;
  virtual void Finish() = 0;
};

std::unique_ptr<CallWriter> MakeCallWriter(CallFormat format, std::FILE* out);

// The same for unrecognised records (`velqua calls --unrecognised`): switch,
// source, position, received_utc, reason and raw text, as a table, CSV or
// JSON Lines (cdr-csv has no place for them: it is taken as CSV).
class UnrecognisedWriter {
 public:
  virtual ~UnrecognisedWriter() = default;
  virtual void Write(const StoredUnrecognised& record) = 0;
  virtual void Finish() = 0;
};

std::unique_ptr<UnrecognisedWriter> MakeUnrecognisedWriter(CallFormat format, std::FILE* out);

}  // namespace velqua_store
