#include "velqua/records/record_rules.h"

#include <algorithm>

#include "glob.h"

namespace velqua_records {

std::u16string_view FieldPart::Of(const std::vector<std::u16string_view>& fields) const {
  const size_t index = static_cast<size_t>(field);
  std::u16string_view text = index < fields.size() ? fields[index] : std::u16string_view();
  if (!after.empty()) {
    const size_t at = text.find(after);
    text = at == std::u16string_view::npos ? std::u16string_view() : text.substr(at + after.size());
  }
  if (!upto.empty()) {
    const size_t at = text.find(upto);
    if (at != std::u16string_view::npos) text = text.substr(0, at);
  }
  if (!before.empty()) {
    const size_t at = text.rfind(before);
    if (at != std::u16string_view::npos) text = text.substr(0, at);
  }
  text.remove_prefix(std::min(text.size(), static_cast<size_t>(skip)));
  return text;
}

bool RecordMemory::Has(std::u16string_view text) const {
  return keys.count(std::u16string(text)) > 0;
}

void RecordMemory::Add(std::u16string_view text) {
  if (text.empty() || !keys.insert(std::u16string(text)).second) return;
  order.emplace_back(text);
  if (order.size() > kMaxKeys) {
    keys.erase(order.front());
    order.pop_front();
  }
}

bool FieldTest::Holds(const std::vector<std::u16string_view>& fields) const {
  const std::u16string_view text = part.Of(fields);
  bool holds = seen && !text.empty() && memory.Has(text);
  if (digits) {
    holds = !text.empty() && std::all_of(text.begin(), text.end(),
                                         [](char16_t c) { return c >= u'0' && c <= u'9'; });
  }
  for (const std::u16string& pattern : patterns)
    holds = holds || MatchesGlob<char16_t>(pattern, text);
  return holds != negate;
}

void FieldTest::Remember(const std::vector<std::u16string_view>& fields) const {
  if (!seen) return;
  const bool met = std::all_of(earlier.begin(), earlier.end(),
                               [&](const FieldTest& test) { return test.Holds(fields); });
  if (met) memory.Add(part.Of(fields));
}

void DerivedField::Remember(const std::vector<std::u16string_view>& fields) const {
  for (const FieldRule& rule : rules) {
    for (const FieldTest& test : rule.when) test.Remember(fields);
  }
}

std::u16string_view DerivedField::Value(const std::vector<std::u16string_view>& fields) const {
  for (const FieldRule& rule : rules) {
    const bool holds = std::all_of(rule.when.begin(), rule.when.end(),
                                   [&](const FieldTest& test) { return test.Holds(fields); });
    if (holds) return rule.takes ? rule.take.Of(fields) : std::u16string_view(rule.text);
  }
  return {};
}

}  // namespace velqua_records
