#include "velqua/rating/prefix_table.h"

namespace velqua_rating {

PrefixTable::PrefixTable() : nodes_(1) { nodes_[0].next.fill(0); }

int32_t PrefixTable::Add(std::string_view prefix, int32_t value) {
  size_t node = 0;
  for (const char c : prefix) {
    const int s = Symbol(c);
    int32_t next = nodes_[node].next[static_cast<size_t>(s)];
    if (next == 0) {
      next = static_cast<int32_t>(nodes_.size());
      nodes_[node].next[static_cast<size_t>(s)] = next;
      nodes_.emplace_back();
      nodes_.back().next.fill(0);
    }
    node = static_cast<size_t>(next);
  }
  const int32_t held = nodes_[node].value;
  if (held < 0) {
    nodes_[node].value = value;
    ++count_;
  }
  return held;
}

int32_t PrefixTable::Find(std::string_view number, size_t* matched) const {
  int32_t found = -1;
  size_t length = 0;
  size_t node = 0;
  for (size_t i = 0; i < number.size(); ++i) {
    const int s = Symbol(number[i]);
    if (s < 0) break;
    const int32_t next = nodes_[node].next[static_cast<size_t>(s)];
    if (next == 0) break;
    node = static_cast<size_t>(next);
    if (nodes_[node].value >= 0) {
      found = nodes_[node].value;
      length = i + 1;
    }
  }
  if (matched != nullptr) *matched = length;
  return found;
}

}  // namespace velqua_rating
