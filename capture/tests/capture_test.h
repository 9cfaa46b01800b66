// Helpers of the capture tests: private temporary folders, free loopback
// ports, and waiting for a condition with a generous deadline (a deadline
// only ends a stuck test; no test measures time).
#pragma once

#include <gtest/gtest.h>

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace velqua_capture_test {

// A new empty folder for one test under the build's test folder.
std::string TempDir(const std::string& name);

// A TCP port on 127.0.0.1 that nothing listens on right now.
int FreePort();

// Polls `done` until it holds or `deadline` passes; returns its last value.
bool WaitFor(const std::function<bool()>& done,
             std::chrono::milliseconds deadline = std::chrono::seconds(20));

// The whole content of a file ("" when missing).
std::string ReadFile(const std::string& path);

// Waits (as WaitFor) until the file at `path` holds `text`; a failure shows
// what the file holds.
::testing::AssertionResult WaitForText(const std::string& path, const std::string& text);

// A program run for a test (an emulator, the service), its standard output
// gathered; killed when the test ends.
class Child {
 public:
  // Runs `args` (args[0] is the program's path); standard error goes to
  // `stderr_file` ("" = the test's own).
  explicit Child(const std::vector<std::string>& args, const std::string& stderr_file = "");
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // The first line of its output that starts with `prefix` (waiting for it);
  // "" when it does not come.
  std::string WaitLine(const std::string& prefix,
                       std::chrono::milliseconds deadline = std::chrono::seconds(20));
  // Sends `signal` and waits for the end; the exit status (-1: killed by a signal).
  int Stop(int signal);
  pid_t pid() const { return pid_; }
  // The lines of its output so far.
  std::vector<std::string> lines() {
    std::lock_guard<std::mutex> lock(mutex_);
    return lines_;
  }

 private:
  pid_t pid_ = -1;
  int out_ = -1;
  std::thread reader_;
  std::mutex mutex_;
  std::vector<std::string> lines_;
};

// The path of the emulator built with the tests.
inline std::string EmulatorPath() { return VELQUA_EMULATOR; }

}  // namespace velqua_capture_test
