// The service's io side: takes what sources report and appends it to the
// spool at once, holding it in memory (and pausing the sources) while the
// disk refuses writes; marks quiet streams for the framer (a record left
// open is complete), warns about silent sources, syncs the spool as the
// fsync policy says and writes the status file.
#pragma once

#include <asio/io_context.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "velqua/capture/log.h"
#include "velqua/capture/settings.h"
#include "velqua/capture/source.h"
#include "velqua/capture/spool.h"
#include "velqua/capture/status.h"

namespace velqua_capture {

class Spooler : public SourceEvents {
 public:
  // `published` is called with the spool's end after each append that
  // reached the spool (on the disk, with fsync "always").
  Spooler(asio::io_context& io, const ServiceSettings& settings, StatusBoard& board, Logger& log,
          std::function<void(int64_t)> published);
  ~Spooler() override;

  // Opens the spool (cutting a torn tail), appends the start mark and starts
  // the timers. Throws std::runtime_error when the spool folder is unusable.
  void Start();
  // Takes new settings (idle times, silence warnings) after a reload.
  void Configure(const ServiceSettings& settings);
  // Appends what is held if it can, syncs and stops the timers.
  void Stop();
  // Deletes spool segments wholly before `position` (on the io thread).
  void Release(int64_t position);

  void Connected(const std::string& stream, const std::string& peer) override;
  void Received(const std::string& stream, std::string_view bytes) override;
  void Disconnected(const std::string& stream, const std::string& reason) override;
  bool Held() const override { return !held_.empty(); }
  void Log(const std::string& line) override { log_.Info(line); }
  void Gap(const std::string& stream, const std::string& what) override;
  void LoginFailed(const std::string& stream, const std::string& why) override;

 private:
  using Clock = std::chrono::steady_clock;
  struct HeldAppend {
    SpoolKind kind;
    std::string stream;
    int64_t received_us;
    std::string bytes;
  };

  void Append(SpoolKind kind, const std::string& stream, std::string_view bytes);
  bool TryAppend(SpoolKind kind, std::string_view stream, int64_t received_us,
                 std::string_view bytes);
  void Tick();
  void RetryHeld();
  void CheckSilence(Clock::time_point now);
  const SwitchSettings* SwitchOf(std::string_view stream) const;  // null: not configured

  asio::io_context& io_;
  ServiceSettings settings_;
  StatusBoard& board_;
  Logger& log_;
  std::function<void(int64_t)> published_;
  std::unique_ptr<SpoolWriter> writer_;
  asio::steady_timer tick_;
  std::deque<HeldAppend> held_;
  int64_t held_bytes_ = 0;
  std::map<std::string, Clock::time_point> flush_due_;  // streams with bytes not yet quiet
  std::map<std::string, Clock::time_point> last_data_;  // by source
  std::map<std::string, bool> silent_;                  // by source: warned
  Clock::time_point next_sync_, next_status_, next_retry_;
  int64_t started_us_ = 0;
  bool stopped_ = false;
  bool sync_posted_ = false;  // appends wait for one sync, then are published together
};

}  // namespace velqua_capture
