// Helpers of the capture tests: private temporary folders, free loopback
// ports, and waiting for a condition with a generous deadline (a deadline
// only ends a stuck test; no test measures time).
#pragma once

#include <chrono>
#include <functional>
#include <string>

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

}  // namespace velqua_capture_test
