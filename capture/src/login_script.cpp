#include "velqua/capture/login_script.h"

#include <utility>

namespace velqua_capture {
namespace {
constexpr size_t kKept = 4096;
}

LoginScript::LoginScript(std::vector<LoginStep> steps, std::vector<std::string> failures)
    : steps_(std::move(steps)), failures_(std::move(failures)) {}

LoginScript::Progress LoginScript::Start() {
  Progress p;
  Advance(&p);
  return p;
}

LoginScript::Progress LoginScript::Settle() {
  Progress p;
  if (!confirming_) return p;
  confirming_ = false;
  p.done = true;
  p.rest = std::move(received_);
  received_.clear();
  return p;
}

LoginScript::Progress LoginScript::Feed(std::string_view bytes) {
  Progress p;
  if (failed_) return p;
  if (done()) {
    p.done = true;
    p.rest.assign(bytes.data(), bytes.size());
    return p;
  }
  received_.append(bytes.data(), bytes.size());
  Advance(&p);
  // What follows the last step is kept whole (it may be records): a switch
  // that sends that much without a line end is past its login.
  if (confirming_ && received_.size() > kKept) {
    Progress settled = Settle();
    settled.send = std::move(p.send);
    return settled;
  }
  if (!p.done && !confirming_ && received_.size() > kKept) {
    received_.erase(0, received_.size() - kKept);
  }
  return p;
}

// Completes every step whose text has been received, in order.
void LoginScript::Advance(Progress* p) {
  for (const std::string& failure : failures_) {
    if (!failure.empty() && received_.find(failure) != std::string::npos) {
      failed_ = true;
      p->failed = failure;
      return;
    }
  }
  if (confirming_) return Confirm(p);
  while (step_ < steps_.size()) {
    const LoginStep& step = steps_[step_];
    const size_t at = received_.find(step.expect);
    if (at == std::string::npos) return;
    received_.erase(0, at + step.expect.size());
    p->send += step.send;
    ++step_;
  }
  if (!failures_.empty() && !steps_.empty()) {
    confirming_ = true;
    return Confirm(p);
  }
  p->done = true;
  p->rest = std::move(received_);
  received_.clear();
}

// After the last step: done once a line that is not blank has come (the failure
// texts were looked for in it already).
void LoginScript::Confirm(Progress* p) {
  for (size_t at = 0; at < received_.size(); ++at) {
    const char c = received_[at];
    if (c == '\r' || c == '\n' || c == ' ' || c == '\t') continue;         // blank
    if (received_.find_first_of("\r\n", at) == std::string::npos) return;  // a line not whole yet
    confirming_ = false;
    p->done = true;
    p->rest = std::move(received_);
    received_.clear();
    return;
  }
}

}  // namespace velqua_capture
