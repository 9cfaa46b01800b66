// The directory: who an extension belongs to (person, department, cost
// centre) and what an account code is charged to (client, project), each
// row in force from a date, since people move and projects end. Read from
// CSV files a user exports from a spreadsheet (doc/rating.md, "The
// directory").
#pragma once

#include <string>
#include <vector>

#include "velqua/rating/tariff.h"

namespace velqua_rating {

struct DirectoryEntry {
  enum class Kind { kExtension, kAccount };
  Kind kind = Kind::kExtension;
  std::string key;   // the extension or account code, as the switch prints it
  std::string from;  // "YYYY-MM-DD", or "" = always
  // An extension's person, department and cost centre; an account code's
  // client and project. Empty when not given.
  std::string person, department, cost_centre, client, project;
};

// Reads a directory CSV: a header row, then one row a line (RFC 4180
// quoting; CR LF or LF). The header names the kind: `extension` with any of
// `person`, `department`, `cost_centre`, `from`; or `account` with any of
// `client`, `project`, `from`. Throws TariffError "<path>:<line>: <reason>"
// for an unknown column, a row without its key, a bad date, the same key
// and date twice, or a broken quote.
std::vector<DirectoryEntry> ReadDirectory(const std::string& text, const std::string& path);

// ReadDirectory on a file's content.
std::vector<DirectoryEntry> ReadDirectoryFile(const std::string& path);

}  // namespace velqua_rating
