#include "spooler.h"

#include <unistd.h>

#include <asio/post.hpp>

namespace velqua_capture {
namespace {

constexpr std::chrono::milliseconds kTick{100};
constexpr std::chrono::seconds kStatusEvery{1};
constexpr std::chrono::seconds kRetryEvery{1};

}  // namespace

Spooler::Spooler(asio::io_context& io, const ServiceSettings& settings, StatusBoard& board,
                 Logger& log, std::function<void(int64_t)> published)
    : io_(io),
      settings_(settings),
      board_(board),
      log_(log),
      published_(std::move(published)),
      tick_(io) {}

Spooler::~Spooler() = default;

void Spooler::Start() {
  writer_ = std::make_unique<SpoolWriter>(settings_.spool, settings_.fsync,
                                          [this](const std::string& line) { log_.Warn(line); });
  writer_->set_deferred_sync(true);
  started_us_ = NowMicros();
  const auto now = Clock::now();
  next_sync_ = now + settings_.fsync_interval;
  next_status_ = now;
  for (const SwitchSettings& sw : settings_.switches) {
    for (const SourceSettings& s : sw.sources) last_data_[s.name] = now;
  }
  Append(SpoolKind::kStart, "service", "");
  // The record cut was the stream's: the store records it there.
  if (!writer_->torn_stream().empty()) {
    Append(SpoolKind::kTornTail, writer_->torn_stream(), writer_->torn_tail());
  }
  Tick();
}

void Spooler::Configure(const ServiceSettings& settings) {
  settings_.switches = settings.switches;
  settings_.silence = settings.silence;
  for (const SwitchSettings& sw : settings_.switches) {
    for (const SourceSettings& s : sw.sources) last_data_.emplace(s.name, Clock::now());
  }
}

void Spooler::Stop() {
  stopped_ = true;
  tick_.cancel();
  RetryHeld();
  if (!held_.empty()) {
    log_.Error("spool: " + std::to_string(held_bytes_) +
               " bytes held in memory could not be written before stopping");
  }
  try {
    if (writer_) writer_->Sync();
  } catch (const SpoolFull& e) {
    log_.Error(e.what());
  }
  WriteStatusFile(StatusFilePath(settings_.spool), static_cast<int>(::getpid()), started_us_,
                  NowMicros(), board_.Snapshot(), board_.latency());
}

void Spooler::Release(int64_t position) {
  if (writer_) writer_->Release(position);
}

const SwitchSettings* Spooler::SwitchOf(std::string_view stream) const {
  const std::string_view source = SourceOfStream(stream);
  for (const SwitchSettings& sw : settings_.switches) {
    for (const SourceSettings& s : sw.sources) {
      if (s.name == source) return &sw;
    }
  }
  return nullptr;
}

void Spooler::Connected(const std::string& stream, const std::string& peer) {
  log_.Info("source " + stream + ": connected (" + peer + ")");
  const SwitchSettings* sw = SwitchOf(stream);
  board_.Update(stream, [&](StreamStatus& s) {
    s.source = std::string(SourceOfStream(stream));
    s.switch_name = sw != nullptr ? sw->name : "";
    s.connected = true;
    s.login_failed = false;
    s.since_us = NowMicros();
    ++s.connections;
  });
  Append(SpoolKind::kConnect, stream, peer);
}

void Spooler::Received(const std::string& stream, std::string_view bytes) {
  const auto now = Clock::now();
  const std::string source(SourceOfStream(stream));
  last_data_[source] = now;
  if (silent_[source]) log_.Info("source " + source + ": sending again");
  silent_[source] = false;
  const SwitchSettings* sw = SwitchOf(stream);
  flush_due_[stream] = now + (sw != nullptr ? sw->idle_flush : SwitchSettings{}.idle_flush);
  board_.Update(stream, [&](StreamStatus& s) {
    s.bytes += static_cast<int64_t>(bytes.size());
    s.last_data_us = NowMicros();
  });
  Append(SpoolKind::kData, stream, bytes);
}

void Spooler::Disconnected(const std::string& stream, const std::string& reason) {
  log_.Info("source " + stream + ": disconnected: " + reason);
  flush_due_.erase(stream);
  board_.Update(stream, [&](StreamStatus& s) {
    s.connected = false;
    s.since_us = NowMicros();
    s.last_event = reason;
  });
  Append(SpoolKind::kDisconnect, stream, reason);
}

void Spooler::LoginFailed(const std::string& stream, const std::string& why) {
  board_.Update(stream, [&](StreamStatus& s) {
    s.source = std::string(SourceOfStream(stream));
    s.login_failed = true;
    s.last_event = "login failed: " + why;
  });
}

void Spooler::Gap(const std::string& stream, const std::string& what) {
  log_.Warn("source " + stream + ": " + what);
  Append(SpoolKind::kGap, stream, what);
}

void Spooler::Append(SpoolKind kind, const std::string& stream, std::string_view bytes) {
  const int64_t received_us = NowMicros();
  if (held_.empty() && TryAppend(kind, stream, received_us, bytes)) return;
  if (held_.empty()) {
    next_retry_ = Clock::now() + kRetryEvery;
    log_.Warn("spool: holding what sources send in memory, sources paused; retrying every " +
              std::to_string(kRetryEvery.count()) + " s");
  }
  held_bytes_ += static_cast<int64_t>(bytes.size());
  held_.push_back({kind, stream, received_us, std::string(bytes)});
}

bool Spooler::TryAppend(SpoolKind kind, std::string_view stream, int64_t received_us,
                        std::string_view bytes) {
  try {
    writer_->Append(kind, stream, received_us, bytes);
  } catch (const SpoolFull& e) {
    if (held_.empty()) log_.Error(e.what());
    return false;
  }
  if (settings_.fsync != FsyncPolicy::kAlways) {
    published_(writer_->End());
  } else if (!sync_posted_) {
    // Every append made by the handlers already waiting joins this sync;
    // nothing is framed before it is on the disk.
    sync_posted_ = true;
    asio::post(io_, [this] {
      sync_posted_ = false;
      try {
        writer_->Sync();
      } catch (const SpoolFull& e) {
        log_.Error(e.what());
      }
      published_(writer_->End());
    });
  }
  return true;
}

void Spooler::RetryHeld() {
  if (held_.empty() || !writer_) return;
  while (!held_.empty()) {
    const HeldAppend& h = held_.front();
    if (!TryAppend(h.kind, h.stream, h.received_us, h.bytes)) break;
    held_bytes_ -= static_cast<int64_t>(held_.front().bytes.size());
    held_.pop_front();
  }
  if (held_.empty()) log_.Info("spool: writing again; sources resumed");
}

void Spooler::CheckSilence(Clock::time_point now) {
  for (const SwitchSettings& sw : settings_.switches) {
    for (const SourceSettings& s : sw.sources) {
      if (silent_[s.name] || now - last_data_[s.name] < s.silence) continue;
      silent_[s.name] = true;
      log_.Warn("source " + s.name + ": nothing received for " +
                std::to_string(s.silence.count() / 60000) +
                " min (a quiet switch, or a cable or connection to check)");
    }
  }
}

// Every tick: quiet streams get their flush mark, held bytes are retried,
// the spool is synced and the status file written when due.
void Spooler::Tick() {
  if (stopped_) return;
  const auto now = Clock::now();
  for (auto it = flush_due_.begin(); it != flush_due_.end();) {
    if (it->second > now) {
      ++it;
      continue;
    }
    Append(SpoolKind::kFlush, it->first, "");
    it = flush_due_.erase(it);
  }
  if (!held_.empty() && now >= next_retry_) {
    next_retry_ = now + kRetryEvery;
    RetryHeld();
  }
  if (settings_.fsync == FsyncPolicy::kInterval && now >= next_sync_) {
    next_sync_ = now + settings_.fsync_interval;
    try {
      writer_->Sync();
    } catch (const SpoolFull& e) {
      log_.Error(e.what());
    }
  }
  if (now >= next_status_) {
    next_status_ = now + kStatusEvery;
    CheckSilence(now);
    WriteStatusFile(StatusFilePath(settings_.spool), static_cast<int>(::getpid()), started_us_,
                    NowMicros(), board_.Snapshot(), board_.latency());
  }
  tick_.expires_after(kTick);
  tick_.async_wait([this](const asio::error_code& ec) {
    if (!ec) Tick();
  });
}

}  // namespace velqua_capture
