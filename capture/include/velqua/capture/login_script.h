// A tcp-connect source's login: expect/send steps played against what the
// switch sends (a Panasonic KX-TDA/NS: "login:" -> "SMDR\r\n", "Password:"
// -> the SMDR password), before any of its bytes count as records.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velqua/capture/settings.h"

namespace velqua_capture {

class LoginScript {
 public:
  explicit LoginScript(std::vector<LoginStep> steps);

  // What Feed found.
  struct Progress {
    std::string send;   // bytes to send now (the sends of every step completed)
    bool done = false;  // every step is complete
    std::string rest;   // when done: the bytes after the last expected text (records)
  };

  // Feeds bytes received. A step's expected text may arrive in pieces and
  // is searched in everything received since the previous step's text.
  // Only the last 4 KiB are kept while waiting, so a switch that sends
  // endlessly cannot take memory. Call Start() first for leading sends.
  Progress Feed(std::string_view bytes);
  // Runs the steps that expect nothing (a script that begins by sending).
  Progress Start();

  bool done() const { return step_ == steps_.size(); }
  // The step waited for: its expected text and timeout (undefined when done).
  const LoginStep& current() const { return steps_[step_]; }

 private:
  void Advance(Progress* p);

  std::vector<LoginStep> steps_;
  size_t step_ = 0;
  std::string received_;
};

}  // namespace velqua_capture
