#include "velqua/rating/directory.h"

#include <fstream>
#include <set>
#include <sstream>
#include <utility>

namespace velqua_rating {
namespace {

class CsvLines {
 public:
  CsvLines(const std::string& text, const std::string& path) : text_(text), path_(path) {}

  // The fields of the next record into `fields`; false at the end.
  bool Next(std::vector<std::string>& fields) {
    fields.clear();
    if (at_ >= text_.size()) return false;
    line_ = next_line_;
    std::string field;
    bool quoted = false;
    for (; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (quoted) {
        if (c == '"' && at_ + 1 < text_.size() && text_[at_ + 1] == '"') {
          field += '"';
          ++at_;
        } else if (c == '"') {
          quoted = false;
        } else {
          if (c == '\n') ++next_line_;
          field += c;
        }
      } else if (c == '"' && field.empty()) {
        quoted = true;
      } else if (c == ',') {
        fields.push_back(std::move(field));
        field.clear();
      } else if (c == '\n') {
        ++at_;
        break;
      } else if (c != '\r') {
        field += c;
      }
    }
    if (quoted) Fail("a quoted field is not closed");
    ++next_line_;
    fields.push_back(std::move(field));
    return true;
  }

  [[noreturn]] void Fail(const std::string& reason) const {
    throw TariffError(path_ + ":" + std::to_string(line_) + ": " + reason);
  }

 private:
  const std::string& text_;
  const std::string& path_;
  size_t at_ = 0;
  int line_ = 1, next_line_ = 1;
};

std::string Trimmed(const std::string& s) {
  const size_t first = s.find_first_not_of(" \t");
  if (first == std::string::npos) return "";
  return s.substr(first, s.find_last_not_of(" \t") - first + 1);
}

bool IsDate(const std::string& s) {
  if (s.size() != 10 || s[4] != '-' || s[7] != '-') return false;
  for (size_t i : {0u, 1u, 2u, 3u, 5u, 6u, 8u, 9u}) {
    if (s[i] < '0' || s[i] > '9') return false;
  }
  const int m = std::stoi(s.substr(5, 2));
  const int d = std::stoi(s.substr(8, 2));
  static constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m >= 1 && m <= 12 && d >= 1 && d <= kDays[m - 1];
}

}  // namespace

std::vector<DirectoryEntry> ReadDirectory(const std::string& text, const std::string& path) {
  CsvLines lines(text, path);
  std::vector<std::string> header, fields;
  if (!lines.Next(header)) lines.Fail("empty: the first row names the columns");
  for (auto& name : header) name = Trimmed(name);
  if (!header.empty() && header[0].rfind("\xEF\xBB\xBF", 0) == 0) header[0].erase(0, 3);
  const bool accounts = !header.empty() && header[0] == "account";
  if (header.empty() || (header[0] != "extension" && !accounts)) {
    lines.Fail("the first column is 'extension' or 'account'");
  }
  const std::vector<std::string> known =
      accounts ? std::vector<std::string>{"client", "project", "from"}
               : std::vector<std::string>{"person", "department", "cost_centre", "from"};
  for (size_t i = 1; i < header.size(); ++i) {
    bool ok = false;
    for (const auto& k : known) ok = ok || header[i] == k;
    if (!ok) lines.Fail("unknown column '" + header[i] + "'");
  }
  std::vector<DirectoryEntry> entries;
  std::set<std::pair<std::string, std::string>> seen;
  while (lines.Next(fields)) {
    if (fields.size() == 1 && Trimmed(fields[0]).empty()) continue;  // a blank line
    if (fields.size() > header.size()) lines.Fail("more fields than columns");
    DirectoryEntry e;
    e.kind = accounts ? DirectoryEntry::Kind::kAccount : DirectoryEntry::Kind::kExtension;
    for (size_t i = 0; i < fields.size(); ++i) {
      const std::string value = Trimmed(fields[i]);
      const std::string& column = header[i];
      if (i == 0) e.key = value;
      if (column == "person") e.person = value;
      if (column == "department") e.department = value;
      if (column == "cost_centre") e.cost_centre = value;
      if (column == "client") e.client = value;
      if (column == "project") e.project = value;
      if (column == "from") e.from = value;
    }
    if (e.key.empty()) lines.Fail("a row without its " + header[0]);
    if (!e.from.empty() && !IsDate(e.from))
      lines.Fail("'" + e.from + "' is not a date (YYYY-MM-DD)");
    if (!seen.emplace(e.key, e.from).second) {
      lines.Fail(header[0] + " " + e.key + " is given twice from " +
                 (e.from.empty() ? "the start" : e.from));
    }
    entries.push_back(std::move(e));
  }
  return entries;
}

std::vector<DirectoryEntry> ReadDirectoryFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw TariffError("cannot read directory '" + path + "'");
  std::ostringstream text;
  text << in.rdbuf();
  return ReadDirectory(text.str(), path);
}

}  // namespace velqua_rating
