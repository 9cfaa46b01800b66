// The directory as a report reads it: who an extension belonged to and what
// an account code was charged to on a given day, and the extensions of a
// department over a period (its members change as people move).
#pragma once

#include <map>
#include <string>
#include <vector>

#include "velqua/rating/directory.h"
#include "velqua/store/aggregates.h"

namespace velqua_reports {

class DirectoryView {
 public:
  explicit DirectoryView(std::vector<velqua_rating::DirectoryEntry> entries);

  // The extension's or account code's row in force on `day` ("YYYY-MM-DD"):
  // the latest dated on or before it, else the one without a date; null when
  // none.
  const velqua_rating::DirectoryEntry* Extension(const std::string& key,
                                                 const std::string& day) const;
  const velqua_rating::DirectoryEntry* Account(const std::string& key,
                                               const std::string& day) const;

  bool HasExtensions() const { return !extensions_.empty(); }
  bool HasDepartments() const;
  bool HasAccounts() const { return !accounts_.empty(); }
  // Whether some extension belongs to the department at some time.
  bool KnowsDepartment(const std::string& department) const;
  // The days of [from, to_next) each extension belonged to the department,
  // in extension order.
  std::vector<velqua_store::ExtensionDays> Members(const std::string& department,
                                                   const std::string& from,
                                                   const std::string& to_next) const;

 private:
  using Rows = std::map<std::string, std::vector<velqua_rating::DirectoryEntry>>;
  static const velqua_rating::DirectoryEntry* At(const Rows& rows, const std::string& key,
                                                 const std::string& day);
  Rows extensions_, accounts_;  // each key's rows by date, the undated first
};

}  // namespace velqua_reports
