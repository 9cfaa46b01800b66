// Whole-text matching of the page-heading and continuation patterns, for
// bytes (the capture service's framing) and for decoded text (a
// configuration's record form) alike.
#pragma once

#include <string_view>

namespace velqua_records {

// `*` matches any run (none included), `?` any one unit, every other unit
// itself. Iterative: on a mismatch the last `*` takes one more unit and
// matching resumes there, so time grows with the product of the two lengths
// at worst and no input can exhaust the stack.
template <typename Char>
bool MatchesGlob(std::basic_string_view<Char> pattern, std::basic_string_view<Char> text) {
  constexpr auto kNone = std::basic_string_view<Char>::npos;
  size_t p = 0, t = 0, star = kNone, resume = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == Char('*')) {  // before a literal '*' of the text
      star = p++;
      resume = t;
    } else if (p < pattern.size() && (pattern[p] == Char('?') || pattern[p] == text[t])) {
      ++p;
      ++t;
    } else if (star != kNone) {
      p = star + 1;
      t = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == Char('*')) ++p;
  return p == pattern.size();
}

}  // namespace velqua_records
