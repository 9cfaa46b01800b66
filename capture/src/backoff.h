// Waits between reconnection attempts: from the first wait, doubling up to
// the last, each drawn within +/-20% so that many services restarted together
// do not all knock on the same switch at the same instant.
#pragma once

#include <algorithm>
#include <random>

#include "velqua/capture/settings.h"

namespace velqua_capture {

class Backoff {
 public:
  Backoff(Millis first, Millis last) : first_(first), last_(last), next_(first) {
    random_.seed(std::random_device{}());
  }
  // The wait before the next attempt; each call doubles the one after it.
  Millis Next() {
    const Millis wait = next_;
    next_ = std::min(last_, next_ * 2);
    std::uniform_int_distribution<long long> jitter(-wait.count() / 5, wait.count() / 5);
    return Millis(wait.count() + jitter(random_));
  }
  // A connection worked: the next failure waits the first wait again.
  void Reset() { next_ = first_; }

 private:
  Millis first_, last_, next_;
  std::minstd_rand random_;
};

}  // namespace velqua_capture
