#include "velqua/records/common.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <memory>

#include "velqua/records/error_text.h"
#include "velqua/texto.h"

namespace velqua_records {

std::u16string U16(std::string_view utf8) { return velqua::DesdeUtf8(utf8); }

std::string U8(std::u16string_view text) { return velqua::AUtf8(text); }

void AppendUtf8(std::string& out, std::u16string_view text) {
  // Plain ASCII, by far the common case in call records, is copied directly.
  size_t i = 0;
  for (; i < text.size(); ++i) {
    if (text[i] >= 0x80) break;
    out.push_back(static_cast<char>(text[i]));
  }
  if (i < text.size()) out += velqua::AUtf8(text.substr(i));
}

std::string DescribeError(const velqua::Error& error) {
  char number[64];
  std::snprintf(number, sizeof number, " (error %" PRId32 ", 0x%08" PRIX32 ", in ", error.Number(),
                static_cast<uint32_t>(error.Number()));
  std::string line = ErrorMeaning(error.Number());
  line += number;
  line += U8(error.Source());
  line += ": ";
  // A description may hold CR LF (file errors name the file on a line of
  // their own); the line keeps them as " / ".
  const std::string description = U8(error.Description());
  bool in_break = false;
  for (char c : description) {
    if (c == '\r' || c == '\n') {
      if (!in_break) line += " / ";
      in_break = true;
    } else {
      line += c;
      in_break = false;
    }
  }
  return line + ")";
}

namespace {

// The length of the control character at utf8[i] (1 for C0 and DEL, 2 for
// a C1 control in UTF-8), or 0 when none stands there.
size_t ControlAt(std::string_view utf8, size_t i, bool keep_layout) {
  const auto c = static_cast<unsigned char>(utf8[i]);
  if (c < 0x20) return keep_layout && (c == '\n' || c == '\r' || c == '\t') ? 0 : 1;
  if (c == 0x7F) return 1;
  if (c == 0xC2 && i + 1 < utf8.size()) {
    const auto next = static_cast<unsigned char>(utf8[i + 1]);
    if (next >= 0x80 && next <= 0x9F) return 2;
  }
  return 0;
}

}  // namespace

bool NeedsVisible(std::string_view utf8, bool keep_layout) {
  for (size_t i = 0; i < utf8.size(); ++i) {
    if (ControlAt(utf8, i, keep_layout) != 0) return true;
  }
  return false;
}

void AppendVisible(std::string& out, std::string_view utf8, bool keep_layout) {
  for (size_t i = 0; i < utf8.size(); ++i) {
    const size_t n = ControlAt(utf8, i, keep_layout);
    if (n == 0) {
      out += utf8[i];
      continue;
    }
    char escape[8];
    if (n == 1) {
      std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(utf8[i]));
    } else {
      std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned char>(utf8[i + 1]));
    }
    out += escape;
    i += n - 1;
  }
}

bool IsValidUtf8(std::string_view bytes) {
  for (size_t i = 0; i < bytes.size();) {
    const auto c = static_cast<unsigned char>(bytes[i]);
    if (c < 0x80) {
      ++i;
      continue;
    }
    // The continuation bytes a lead byte announces, its payload bits, and the
    // least code point that needs that many bytes (anything less is overlong).
    const size_t n = (c & 0xE0) == 0xC0 ? 1 : (c & 0xF0) == 0xE0 ? 2 : (c & 0xF8) == 0xF0 ? 3 : 0;
    if (n == 0 || i + n >= bytes.size()) return false;
    constexpr uint32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
    uint32_t cp = c & (0x7Fu >> (n + 1));
    for (size_t k = 1; k <= n; ++k) {
      const auto d = static_cast<unsigned char>(bytes[i + k]);
      if ((d & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (d & 0x3Fu);
    }
    if (cp < kLeast[n] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    i += n + 1;
  }
  return true;
}

std::string LowerExtension(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  const size_t dot = path.find_last_of('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
  std::string ext = path.substr(dot);
  for (char& c : ext) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return ext;
}

void RequireReadableFile(const std::string& path, const std::string& what) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) {
    throw Failure(what + " '" + path + "': " + std::strerror(errno));
  }
  if (!S_ISREG(st.st_mode)) throw Failure(what + " '" + path + "': not a regular file");
  std::unique_ptr<std::FILE, FileCloser> f(std::fopen(path.c_str(), "rb"));
  if (!f) throw Failure(what + " '" + path + "': " + std::strerror(errno));
}

void RequireReadableInput(const std::string& path, const std::string& what) {
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) {
    throw Failure(what + " '" + path + "': " + std::strerror(errno));
  }
  if (S_ISFIFO(st.st_mode) || S_ISCHR(st.st_mode)) {
    if (::access(path.c_str(), R_OK) != 0) {
      throw Failure(what + " '" + path + "': " + std::strerror(errno));
    }
    return;
  }
  RequireReadableFile(path, what);
}

void RequireAppendableFile(const std::string& path, const std::string& what) {
  struct stat st {};
  if (::stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode)) {
    throw Failure(what + " '" + path + "': not a regular file");
  }
  std::unique_ptr<std::FILE, FileCloser> f(std::fopen(path.c_str(), "ab"));
  if (!f) throw Failure(what + " '" + path + "': " + std::strerror(errno));
}

std::FILE* OpenFile(const std::string& path, const char* mode, const std::string& what) {
  std::FILE* f = std::fopen(path.c_str(), mode);
  if (f == nullptr) {
    throw Failure("cannot open " + what + " '" + path + "': " + std::strerror(errno));
  }
  return f;
}

std::string ReadWholeFile(const std::string& path, const std::string& what) {
  RequireReadableFile(path, what);
  std::unique_ptr<std::FILE, FileCloser> f(OpenFile(path, "rb", what));
  std::string text;
  char buffer[65536];
  size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, f.get())) > 0) text.append(buffer, n);
  if (std::ferror(f.get())) throw Failure("cannot read " + what + " '" + path + "'");
  return text;
}

void AppendCsvField(std::string& out, std::string_view utf8) {
  if (utf8.find_first_of(",\"\r\n") == std::string_view::npos) {
    out += utf8;
    return;
  }
  out += '"';
  for (char c : utf8) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

bool NeedsJsonEscape(std::string_view utf8) {
  for (char c : utf8) {
    if (c == '"' || c == '\\' || static_cast<unsigned char>(c) < 0x20) return true;
  }
  return false;
}

void AppendJsonEscaped(std::string& out, std::string_view utf8) {
  for (char c : utf8) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (u < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", u);
      out += escape;
    } else {
      out += c;
    }
  }
}

bool ReplaceFileText(const std::string& path, std::string_view text) {
  const std::string temporary = path + ".new";
  std::FILE* f = std::fopen(temporary.c_str(), "wb");
  if (f == nullptr) return false;
  const bool written = std::fwrite(text.data(), 1, text.size(), f) == text.size();
  if (std::fclose(f) != 0 || !written) {
    std::remove(temporary.c_str());
    return false;
  }
  return std::rename(temporary.c_str(), path.c_str()) == 0;
}

}  // namespace velqua_records
