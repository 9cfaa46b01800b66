// The service's log: one line per event on standard error. Under systemd
// (JOURNAL_STREAM set) each line starts with its syslog priority ("<4>" for
// a warning) and journald adds the time; elsewhere with the UTC time.
#pragma once

#include <cstdio>
#include <mutex>
#include <string>

namespace velqua_capture {

class Logger {
 public:
  // Lines go to `out` (standard error by default).
  explicit Logger(std::FILE* out = stderr);
  void Info(const std::string& line) { Write(6, line); }
  void Warn(const std::string& line) { Write(4, line); }
  void Error(const std::string& line) { Write(3, line); }

 private:
  void Write(int priority, const std::string& line);

  std::FILE* out_;
  bool journal_;
  std::mutex mutex_;
};

}  // namespace velqua_capture
