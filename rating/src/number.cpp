#include "velqua/rating/number.h"

namespace velqua_rating {
namespace {

bool StartsWith(std::string_view text, std::string_view start) {
  return text.size() >= start.size() && text.compare(0, start.size(), start) == 0;
}

}  // namespace

void Normalise(std::string_view dialled, const NumberRule& rule, std::string& out) {
  out.clear();
  for (const char c : dialled) {
    if (c == ' ' || c == '-' || c == '.' || c == '/' || c == '(' || c == ')') continue;
    out.push_back(c);
  }
  size_t strip = 0;
  for (const auto& code : rule.access_codes) {
    if (code.size() > strip && code.size() < out.size() && StartsWith(out, code)) {
      strip = code.size();
    }
  }
  out.erase(0, strip);
  const std::pair<std::string, std::string>* best = nullptr;
  for (const auto& rewrite : rule.rewrites) {
    if (StartsWith(out, rewrite.first) &&
        (best == nullptr || rewrite.first.size() > best->first.size())) {
      best = &rewrite;
    }
  }
  // An empty number stays empty: there is nothing to put a country code on.
  if (best != nullptr && !out.empty()) out.replace(0, best->first.size(), best->second);
}

}  // namespace velqua_rating
