// Small helpers of the records road and the layers above it: the error a user
// must see, UTF-8 / UTF-16 conversion, the one-line form of a library error,
// and file checks.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

#include "velqua/error.h"

namespace velqua_records {

// A failure the user must see, in one line naming what is wrong (a missing
// file, a bad value in a JSON form, an unwritable output).
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// UTF-8 <-> UTF-16 through the library's helpers (texto.h).
std::u16string U16(std::string_view utf8);
std::string U8(std::u16string_view text);

// Appends the UTF-8 form of `text` to `out` without a temporary string.
void AppendUtf8(std::string& out, std::u16string_view text);

// One line for a velqua::Error: what it means in English, then the library's
// number (decimal and hexadecimal), source and Spanish description, whose line
// breaks become " / ", e.g. "not a configuration file (error -2147220003,
// 0x800405DD, in clsConfigConmut.Abrir: No es posible ...)".
std::string DescribeError(const velqua::Error& error);

// The file name's extension in lower case, with its dot (".json"), or "".
std::string LowerExtension(const std::string& path);

// Throws Failure "<what> 'path': <reason>" unless `path` names a regular
// file that can be opened for reading.
void RequireReadableFile(const std::string& path, const std::string& what);

// As RequireReadableFile, but a FIFO or a character device (a serial port)
// is accepted too: records may come live from them.
void RequireReadableInput(const std::string& path, const std::string& what);

// Throws Failure "<what> 'path': <reason>" unless `path` is a regular file
// that can be opened for appending; creates it (empty) when missing. The
// library's own writes to such files fail silently, so the program checks first.
void RequireAppendableFile(const std::string& path, const std::string& what);

// Opens a file with fopen; throws Failure "cannot open <what> 'path': ..."
// on failure. The caller closes it (see FileCloser).
std::FILE* OpenFile(const std::string& path, const char* mode, const std::string& what);

// Closes a FILE* on scope exit.
struct FileCloser {
  void operator()(std::FILE* f) const {
    if (f != nullptr) std::fclose(f);
  }
};

// Appends `utf8` as a CSV field (RFC 4180): quoted when it holds a comma, a
// quote, CR or LF, its quotes doubled.
void AppendCsvField(std::string& out, std::string_view utf8);

// Appends `utf8` escaped for the inside of a JSON string (a quote, a
// backslash, control characters as \u00XX); the quotes are the caller's.
void AppendJsonEscaped(std::string& out, std::string_view utf8);
// Whether AppendJsonEscaped would change `utf8` (rare in call records).
bool NeedsJsonEscape(std::string_view utf8);

// Appends `utf8` with every control character a terminal would act on made
// visible, so that switch data cannot move the cursor, recolour or retitle a
// terminal: C0 controls, DEL and the C1 controls (U+0080 to U+009F, which
// some terminals take as the start of an escape sequence) become "\x1B",
// "\x7F", "\u009B". With `keep_layout`, LF, CR and tab pass as they are (text
// already laid out in lines); in a table cell they are shown too.
void AppendVisible(std::string& out, std::string_view utf8, bool keep_layout);
// Whether AppendVisible would change `utf8`.
bool NeedsVisible(std::string_view utf8, bool keep_layout);

// Whether `bytes` is well-formed UTF-8 (no stray continuation byte, no
// truncated or overlong sequence, no surrogate, nothing past U+10FFFF).
bool IsValidUtf8(std::string_view bytes);

// Reads a whole (small) file, e.g. a JSON form; throws Failure.
std::string ReadWholeFile(const std::string& path, const std::string& what);

// Replaces the whole of a small file (a state or status file) through
// "<path>.new" and a rename, so that a reader finds the old text or the new,
// never part of either. False when it cannot (a full disk): the old file is
// left as it was, for the next attempt.
bool ReplaceFileText(const std::string& path, std::string_view text);

}  // namespace velqua_records
