#include "directory_view.h"

#include <algorithm>

namespace velqua_reports {

using velqua_rating::DirectoryEntry;

DirectoryView::DirectoryView(std::vector<DirectoryEntry> entries) {
  for (DirectoryEntry& e : entries) {
    Rows& rows = e.kind == DirectoryEntry::Kind::kAccount ? accounts_ : extensions_;
    rows[e.key].push_back(std::move(e));
  }
  for (Rows* rows : {&extensions_, &accounts_}) {
    for (auto& [key, list] : *rows) {
      std::sort(list.begin(), list.end(),
                [](const DirectoryEntry& a, const DirectoryEntry& b) { return a.from < b.from; });
    }
  }
}

const DirectoryEntry* DirectoryView::At(const Rows& rows, const std::string& key,
                                        const std::string& day) {
  const auto found = rows.find(key);
  if (found == rows.end()) return nullptr;
  const DirectoryEntry* in_force = nullptr;
  for (const DirectoryEntry& e : found->second) {
    if (e.from <= day) in_force = &e;  // "" (always) sorts first
  }
  return in_force;
}

const DirectoryEntry* DirectoryView::Extension(const std::string& key,
                                               const std::string& day) const {
  return At(extensions_, key, day);
}

const DirectoryEntry* DirectoryView::Account(const std::string& key, const std::string& day) const {
  return At(accounts_, key, day);
}

bool DirectoryView::HasDepartments() const {
  for (const auto& [key, list] : extensions_) {
    for (const DirectoryEntry& e : list) {
      if (!e.department.empty()) return true;
    }
  }
  return false;
}

bool DirectoryView::KnowsDepartment(const std::string& department) const {
  for (const auto& [key, list] : extensions_) {
    for (const DirectoryEntry& e : list) {
      if (e.department == department) return true;
    }
  }
  return false;
}

std::vector<velqua_store::ExtensionDays> DirectoryView::Members(const std::string& department,
                                                                const std::string& from,
                                                                const std::string& to_next) const {
  std::vector<velqua_store::ExtensionDays> members;
  for (const auto& [key, list] : extensions_) {
    // Each row holds from its date (or the beginning) to the next row's.
    for (size_t i = 0; i < list.size(); ++i) {
      if (list[i].department != department) continue;
      std::string begin = std::max(list[i].from, from);
      std::string end = i + 1 < list.size() ? std::min(list[i + 1].from, to_next) : to_next;
      if (begin >= end) continue;
      if (!members.empty() && members.back().extension == key && members.back().to_next == begin) {
        members.back().to_next = end;  // the next row keeps the department
        continue;
      }
      members.push_back({key, begin, end});
    }
  }
  for (velqua_store::ExtensionDays& m : members) {  // the span's own bounds need no test
    if (m.from == from) m.from.clear();
    if (m.to_next == to_next) m.to_next.clear();
  }
  return members;
}

}  // namespace velqua_reports
