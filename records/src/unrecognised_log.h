// The unrecognised-record log of the records road (--errors).
#pragma once

#include <string>
#include <string_view>

#include "velqua/records/call_row.h"
#include "velqua/records/clock.h"

namespace velqua_records {

// Appends one unrecognised or failed record to the log at `path`:
//
//   <CR LF><CR LF>Unrecognised call (2026-01-20 09:00:00; records.txt, record 12): <CR LF>
//   <the record as received><CR LF>
//
// with "; <error>" before the closing parenthesis for a record the library
// failed on. The shape is the library's own log's, in English, so that a
// reader splitting entries at blank lines reads both. The time is the
// translation's clock's, and the entry is appended through its environment;
// the record is written in its input's encoding (UTF-8 or Windows-1252). A
// log that cannot be written loses the entry silently, as the library's
// does: callers check the path before the run.
void LogUnrecognised(ProgramClock& clock, const std::string& path, const std::string& input,
                     const Row& row, std::u16string_view record, bool utf8);

}  // namespace velqua_records
