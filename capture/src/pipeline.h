// The service's store side, on its own thread: reads the spool from where the
// store's checkpoints say, frames each stream, gathers multi-line calls,
// applies the re-send rule, translates, and writes the records into the
// store in batches, each with its stream's checkpoint in the same
// transaction. A store that is unavailable is waited for: the spool holds
// everything meanwhile.
//
// Replay is exact because every decision is made from the spool alone: where
// records end (the framer, with the quiet marks the spooler wrote), which are
// re-sent (from the connection's start and what the store held before it),
// and each record's position (of its first byte in the spool). Replaying
// from a checkpoint gives the same records at the same positions, and the
// store's unique (source, position) makes those already stored harmless.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "velqua/capture/log.h"
#include "velqua/capture/resend_filter.h"
#include "velqua/capture/settings.h"
#include "velqua/capture/spool.h"
#include "velqua/capture/status.h"
#include "velqua/records/framer.h"
#include "velqua/records/record_reader.h"
#include "velqua/records/translation.h"
#include "velqua/store/extension_list.h"
#include "velqua/store/store.h"

namespace velqua_capture {

class Pipeline {
 public:
  // `release` is told the position before which the spool is no longer
  // needed (called on this pipeline's thread).
  Pipeline(const ServiceSettings& settings, StatusBoard& board, Logger& log,
           std::function<void(int64_t)> release);
  ~Pipeline();

  void Start();
  // The spool's end moved (the spooler's thread).
  void Published(int64_t end);
  // New settings for the records framed from now on.
  void Reload(const ServiceSettings& settings);
  // Frames and stores what has been spooled until `deadline`, commits, and
  // ends the thread. What is left stays in the spool for the next start.
  void Stop(std::chrono::steady_clock::time_point deadline);

 private:
  struct SwitchState;
  struct StreamState;

  void Run();
  bool OpenStore();
  void Loop();
  void LoadInBulk();
  void EndBulk();
  void Apply(const ServiceSettings& settings);
  void Process(const SpoolEntry& e);
  void Handle(const SpoolEntry& e, int64_t end);
  StreamState* Stream(const std::string& name);
  void Feed(StreamState& s, std::string_view bytes, int64_t position);
  void EndConnection(StreamState& s);
  void CloseResent(StreamState& s);
  void ReportDropped(StreamState& s);
  void AddEvent(StreamState& s, int64_t position, const std::string& kind, int64_t received_us,
                int64_t count, const std::string& detail);
  void Connect(StreamState& s, const SpoolEntry& e);
  void Framed(StreamState& s, const velqua_records::Framer::Record& r);
  void Translated(StreamState& s);
  void Heading(StreamState& s, std::u16string_view line, int64_t position);
  void Complete(StreamState& s);
  void Unrecognised(StreamState& s, const velqua_store::Record& record);
  void Unlisted(StreamState& s, const velqua_store::Record& record);
  std::shared_ptr<velqua_store::SwitchExtensionList> ExtensionsOf(SwitchState& sw);
  int64_t Hold(const StreamState& s) const;
  bool EventsReady() const;
  void Commit();
  // Runs `work` until it succeeds, waiting while the store is unavailable;
  // throws Abandon (pipeline.cpp) when the service stops first.
  void Retry(const std::function<void()>& work);
  void NewConnection(StreamState& s);
  bool Stopping() const;

  ServiceSettings settings_;
  StatusBoard& board_;
  Logger& log_;
  std::function<void(int64_t)> release_;
  std::unique_ptr<velqua_store::Store> store_;
  std::map<std::string, std::unique_ptr<SwitchState>> switches_;
  std::map<std::string, std::unique_ptr<StreamState>> streams_;
  std::set<std::string> unknown_;  // streams of sources no longer configured
  std::unique_ptr<SpoolReader> reader_;
  // The spool position after the last entry processed whole: a commit made
  // while an entry is being processed never passes that entry.
  int64_t processed_end_ = 0;
  int64_t replay_from_ = 0;  // as last written to the replay-from file
  size_t pending_rows_ = 0;
  int64_t bulk_offered_ = 0;  // the backlog (bytes) last offered to the store as a bulk load
  int64_t last_end_ = 0;      // the spool's end as last seen
  std::chrono::steady_clock::time_point last_moved_;  // when it last moved
  std::chrono::steady_clock::time_point first_pending_;

  std::thread thread_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::atomic<int64_t> published_{0};
  std::optional<ServiceSettings> reload_;
  std::atomic<bool> stop_{false};
  std::chrono::steady_clock::time_point deadline_;
};

}  // namespace velqua_capture
