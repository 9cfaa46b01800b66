// Longest-prefix lookup of dialled numbers: a trie over the characters a
// normalised number holds (digits, '+', '*', '#'), so that a lookup costs
// one step per digit whatever the number of prefixes.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace velqua_rating {

class PrefixTable {
 public:
  PrefixTable();

  // Whether `c` can be part of a prefix (digits, '+', '*', '#').
  static bool Accepts(char c) { return Symbol(c) >= 0; }

  // Adds `prefix` (non-empty, Accepts-only) with `value` (>= 0); returns the
  // value already held for that exact prefix, or -1 when it was new (then it
  // is set).
  int32_t Add(std::string_view prefix, int32_t value);

  // The value of the longest prefix of `number`, and its length in
  // `matched`; -1 when none matches. Stops at the first character a prefix
  // cannot hold.
  int32_t Find(std::string_view number, size_t* matched = nullptr) const;

  size_t size() const { return count_; }

 private:
  static constexpr int kSymbols = 13;
  static int Symbol(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c == '+') return 10;
    if (c == '*') return 11;
    if (c == '#') return 12;
    return -1;
  }
  struct Node {
    std::array<int32_t, kSymbols> next;  // 0 = none (the root is never a child)
    int32_t value = -1;
  };
  std::vector<Node> nodes_;
  size_t count_ = 0;
};

}  // namespace velqua_rating
