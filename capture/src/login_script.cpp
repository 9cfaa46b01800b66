#include "velqua/capture/login_script.h"

#include <utility>

namespace velqua_capture {
namespace {
constexpr size_t kKept = 4096;
}

LoginScript::LoginScript(std::vector<LoginStep> steps) : steps_(std::move(steps)) {}

LoginScript::Progress LoginScript::Start() {
  Progress p;
  Advance(&p);
  return p;
}

LoginScript::Progress LoginScript::Feed(std::string_view bytes) {
  Progress p;
  if (done()) {
    p.done = true;
    p.rest.assign(bytes.data(), bytes.size());
    return p;
  }
  received_.append(bytes.data(), bytes.size());
  Advance(&p);
  if (!p.done && received_.size() > kKept) received_.erase(0, received_.size() - kKept);
  return p;
}

// Completes every step whose text has been received, in order.
void LoginScript::Advance(Progress* p) {
  while (step_ < steps_.size()) {
    const LoginStep& step = steps_[step_];
    const size_t at = received_.find(step.expect);
    if (at == std::string::npos) return;
    received_.erase(0, at + step.expect.size());
    p->send += step.send;
    ++step_;
  }
  p->done = true;
  p->rest = std::move(received_);
  received_.clear();
}

}  // namespace velqua_capture
