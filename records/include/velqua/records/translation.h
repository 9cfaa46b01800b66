// The road from a record's bytes to its row: lines framed and decoded, the
// lines of a multi-line call gathered, each record translated by the core
// library and turned into a Row that shows only what the switch printed.
// `velqua translate`, the store's import and the capture service share it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "velqua/cfg_conmut.h"
#include "velqua/records/call_row.h"
#include "velqua/records/clock.h"
#include "velqua/records/record_form.h"
#include "velqua/records/record_reader.h"
#include "velqua/records/row_check.h"
#include "velqua/traductor.h"

namespace velqua_records {

struct Counts {
  int64_t read = 0;
  int64_t unrecognised = 0;  // failed records included
  int64_t failed = 0;
  int64_t damaged = 0;            // recognised, but failing the row check (row_check.h)
  int64_t random_extensions = 0;  // unlisted account codes (extension drawn or left blank)
  std::vector<int64_t> listed;    // the first unrecognised record numbers
  static constexpr size_t kListed = 20;
  int64_t headings = 0;      // page-heading lines skipped (not records)
  int64_t more_fields = 0;   // delimited records with fields beyond those declared
  int64_t fewer_fields = 0;  // delimited records with fewer fields than declared
  int64_t invalid_utf8 = 0;  // UTF-8 lines that were not well-formed
};

// Translates records with one configuration into rows written to a sink.
class Translation {
 public:
  struct Settings {
    // The unrecognised-record log ("" = none): each unrecognised or failed
    // record is appended to it in English, with the time, the input, the
    // record's number and, for a failure, the error (doc/cli.md).
    std::string errors_log;
    std::string extensions;  // the KX-TDA account code to extension list
    bool utf8 = false;       // records in UTF-8 rather than Windows-1252
    RecordForm form;         // delimited shaping, page headings, record ends
    // An outgoing call whose account code is missing from the extension
    // list gets an extension drawn at random by the library (cases 10 and
    // 11): true leaves it blank instead (the row still marks it), so that
    // no call is charged to an extension that does not exist. The program,
    // the store and the capture service set it unless told otherwise.
    bool blank_random_extensions = false;
    // The files and clock the translation works with (nullptr: the real
    // ones), and the instant it reads as now (none: the program's fixed
    // instant, else the environment's clock).
    std::shared_ptr<velqua::Entorno> environment = nullptr;
    std::optional<FechaHora> now = std::nullopt;
  };

  // Binds a translator to `cfg`; rows go to `sink`.
  Translation(std::shared_ptr<velqua::clsCfgConmut> cfg, RowSink& sink, const Settings& settings);

  // Called for each record the library fails on, and for each damaged one
  // (a recognised record failing the row check): it is kept as an
  // unrecognised row carrying the error or the reason. Input name and the
  // row, whose `number` and `error` members say which record and why (and
  // for a library error, `error_number` and the library's own texts).
  std::function<void(const std::string&, const Row&)> on_failure;

  // Called for the first line of the run that is not well-formed UTF-8
  // (with utf8 set): input name, and its line number.
  std::function<void(const std::string&, int64_t)> on_invalid_utf8;

  // Asked while a live input waits for bytes: true ends it cleanly (its open
  // call translated, the counts reported), as the program does on SIGINT
  // and SIGTERM. Unset: a live input ends only with its source.
  std::function<bool()> stop;

  // Called for each page-heading line skipped (input name, the line as
  // decoded, its byte offset), so that a caller keeping raw input keeps
  // headings too.
  std::function<void(const std::string&, std::u16string_view, int64_t)> on_heading;

  // The input the next records come from, and when they were received (the
  // year of a record whose switch prints none). `offset` is where the next
  // stream stands in that input: rows carry their byte offsets from it; and
  // `lines` the number of lines before it: rows are numbered by the line of
  // the input they start on (the first line is 1), as `config check` counts
  // lines (every line, empty ones and page headings included; CR, LF and
  // CR LF each end one).
  void Input(const std::string& name, const FechaHora& received, int64_t offset = 0,
             int64_t lines = 0);

  // Translates one record as received (a multi-line call already joined; a
  // delimited record is shaped here) and writes its row, which carries
  // `offset` and the record's text as received, so that a stored record can
  // be translated again the same way. A record the library fails on is kept
  // as an unrecognised row carrying the error; the run goes on. The record
  // counts as the next line of the input.
  void Record(const std::u16string& record, int64_t offset = -1);

  // One line as read, decoded, without its line end (the input's next line),
  // and the byte offset of its first byte in the input (-1: unknown): a page
  // heading is skipped and
  // counted, a delimited record shaped, the lines of a multi-line call
  // gathered; each record completed is translated with the offset where it
  // starts. True when a row was written.
  bool Line(std::u16string_view line, int64_t offset = -1);

  // One line as read, in bytes, without its line end: cleared of bit 7 when
  // the record form says so, decoded, then taken as Line takes it (a plain
  // configuration's line straight as a record). An empty line carries no
  // record. For callers that cut the lines themselves (the bindings, which
  // are given bytes in pieces); a byte-order mark is theirs to drop.
  bool LineBytes(std::string_view line, int64_t offset = -1);

  // Reads records from a stream to its end: a file in large blocks; a live
  // source (pipe, device, or `follow`ed file) with each row written and the
  // sink flushed as soon as its record is complete, a multi-line call being
  // closed by the next call or after 2 s of quiet.
  void Stream(std::FILE* stream, const std::string& follow = "");

  // Ends the input: a multi-line call or a record waiting for continuation
  // lines is translated.
  void Finish();

  // Marks a block of input handed over at once (the bindings' writes):
  // until EndBlock the extension list is looked at once, at its first
  // lookup, and kept for the block's other records; an edit of the list
  // counts from the next block. A block begun must be ended.
  void BeginBlock() { clock_->HoldFiles(); }
  void EndBlock() { clock_->ReleaseFiles(); }

  // The byte offset just past what the last Stream call read: where reading
  // would resume for a record after the last one written.
  int64_t end_offset() const { return end_offset_; }

  // The offset of the first line of what Line holds back untranslated (a
  // multi-line call still open, a record waiting for continuation lines), or
  // -1 when it holds nothing: a reader that must be able to start again
  // (the capture service's replay) starts there.
  int64_t held_offset() const {
    const int64_t held = holding_ ? held_offset_ : -1;
    if (call_offset_ < 0) return held;
    return held < 0 ? call_offset_ : std::min(held, call_offset_);
  }

  const Counts& counts() const { return counts_; }

  // The number of the input's line read last (0 before the first): in
  // on_heading, the heading's.
  int64_t line() const { return line_; }

 private:
  Row ReadRow(int64_t number);
  void RecordAt(const std::u16string& record, int64_t offset, int64_t line);
  bool Text(std::u16string_view line, int64_t offset);
  void Lines(LineReader& reader, bool live);
  bool Piece(std::u16string_view piece, int64_t offset);
  bool Emit(std::u16string_view record, int64_t offset, int64_t line);
  bool FlushHeld();
  bool FinishCall();

  std::shared_ptr<velqua::clsCfgConmut> cfg_;
  std::shared_ptr<ProgramClock> clock_;
  velqua::clsTraductor traductor_;
  std::unique_ptr<CallGatherer> gatherer_;
  RowSink& sink_;
  bool utf8_;
  bool blank_random_;
  RecordForm form_;
  std::string errors_log_;
  RowCheck check_;
  bool plain_ = false;     // no record form and no multi-line calls: lines are records
  std::u16string shaped_;  // the shaped text of a delimited record
  std::u16string record_;  // the record being translated
  std::u16string held_;    // a record waiting for its continuation lines
  int64_t held_offset_ = -1;
  int64_t held_line_ = 0;
  bool holding_ = false;
  std::string bytes_;    // a line with bit 7 cleared
  std::u16string text_;  // a line decoded
  Counts counts_;
  std::string input_ = "standard input";
  FechaHora received_;
  int64_t start_offset_ = 0;
  int64_t end_offset_ = 0;
  int64_t line_ = 0;          // the input's lines read so far
  int64_t call_offset_ = -1;  // of the multi-line call still open, -1 when none
  int64_t call_line_ = 0;     // and its first line
  bool call_open_ = false;    // a multi-line call has lines not yet translated
  std::u16string call_;       // the multi-line call closed last
};

// When the records of a file were received: 31 December of `year` when it is
// above 0, else the file's modification time ("-": the clock's now).
FechaHora ReceivedAt(const std::string& path, int32_t year);

}  // namespace velqua_records
