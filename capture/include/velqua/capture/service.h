// The capture service: every configured source feeding the spool, and the
// spool feeding the store through the framer and the translator
// (doc/capture.md). `velqua capture` runs one in the foreground.
#pragma once

#include <memory>

#include "velqua/capture/log.h"
#include "velqua/capture/settings.h"

namespace velqua_capture {

class Service {
 public:
  // Takes checked settings (LoadSettings); logs to `log`.
  Service(ServiceSettings settings, Logger& log);
  ~Service();
  Service(const Service&) = delete;
  Service& operator=(const Service&) = delete;

  // Runs until SIGTERM or SIGINT, or Stop(): then every source is closed, the
  // spool synced and what was spooled stored as far as the store allows
  // within about 1.5 s (the rest is stored on the next start). SIGHUP reloads
  // the settings file: a file with a mistake is refused (logged) and the
  // running settings kept; sources whose settings changed are restarted.
  // Returns 0, or 1 when the spool folder cannot be used.
  int Run();

  // Ends Run as SIGTERM does; from any thread.
  void Stop();

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace velqua_capture
