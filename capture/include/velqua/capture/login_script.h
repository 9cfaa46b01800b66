// A tcp-connect source's login: expect/send steps played against what the
// switch sends (a Panasonic KX-TDA/NS: "login:" -> "SMDR\r\n", "Password:"
// -> the SMDR password), before any of its bytes count as records.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "velqua/capture/settings.h"

namespace velqua_capture {

//
// A switch that refuses the login says so after the last step's answer
// ("Login incorrect"): with `failures` given, the script is done only once
// the first non-empty line after its last step holds none of them, and
// fails when a failure text shows before that, so that a refusal is never
// taken for a record.
class LoginScript {
 public:
  explicit LoginScript(std::vector<LoginStep> steps, std::vector<std::string> failures = {});

  // What Feed found.
  struct Progress {
    std::string send;    // bytes to send now (the sends of every step completed)
    bool done = false;   // every step is complete (and the login not refused)
    std::string rest;    // when done: the bytes after the last expected text (records)
    std::string failed;  // the failure text the switch answered with: the login failed
  };

  // Feeds bytes received. A step's expected text may arrive in pieces and
  // is searched in everything received since the previous step's text.
  // Only the last 4 KiB are kept while waiting, so a switch that sends
  // endlessly cannot take memory. Call Start() first for leading sends.
  Progress Feed(std::string_view bytes);
  // Runs the steps that expect nothing (a script that begins by sending).
  Progress Start();
  // Ends the wait for the switch's answer after the last step (it said
  // nothing for a while): done, with what it sent meanwhile.
  Progress Settle();

  bool done() const { return step_ == steps_.size() && !confirming_; }
  // Every step is complete; the switch's answer to the last is awaited.
  bool confirming() const { return confirming_; }
  // The step waited for: its expected text and timeout (undefined when done).
  const LoginStep& current() const { return steps_[step_]; }

 private:
  void Advance(Progress* p);
  void Confirm(Progress* p);

  std::vector<LoginStep> steps_;
  std::vector<std::string> failures_;
  size_t step_ = 0;
  bool confirming_ = false;
  bool failed_ = false;
  std::string received_;
};

}  // namespace velqua_capture
