#include "velqua/capture/resend_filter.h"

#include <algorithm>

namespace velqua_capture {

void ResendFilter::Connect(std::vector<Stored> recent, int64_t connected_us, int64_t max_records,
                           int64_t max_age_us) {
  left_.clear();
  std::sort(recent.begin(), recent.end(),
            [](const Stored& a, const Stored& b) { return a.received_us > b.received_us; });
  int64_t taken = 0;
  for (const Stored& s : recent) {
    if (taken == max_records || s.received_us < connected_us - max_age_us) break;
    ++left_[s.raw];
    ++taken;
  }
  active_ = !left_.empty();
}

bool ResendFilter::Drop(const std::string& raw) {
  if (!active_) return false;
  const auto it = left_.find(raw);
  if (it == left_.end()) {
    End();  // a new record: the re-sent part is over
    return false;
  }
  if (--it->second == 0) left_.erase(it);
  if (left_.empty()) active_ = false;
  return true;
}

}  // namespace velqua_capture
