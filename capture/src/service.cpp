#include "velqua/capture/service.h"

#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <csignal>
#include <map>
#include <sstream>

#include "pipeline.h"
#include "spooler.h"
#include "velqua/capture/metrics.h"
#include "velqua/capture/source.h"

namespace velqua_capture {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kStoreTimeOnStop{1500};

// Everything that makes a source what it is, its switch's settings
// included: a source whose fingerprint changes on reload is restarted.
std::string Fingerprint(const SwitchSettings& sw, const SourceSettings& s) {
  std::ostringstream f;
  f << sw.name << '|' << sw.config << '|' << sw.extensions << '|' << sw.time_zone << '|' << sw.utf8
    << '|' << static_cast<int>(sw.framing.end) << sw.framing.strip_bit7 << sw.framing.strip_controls
    << '|' << sw.idle_flush.count() << '|' << sw.resend_records << '|' << sw.resend_age.count();
  for (const std::string& h : sw.framing.page_headings) f << '|' << h;
  f << "||" << static_cast<int>(s.kind) << '|' << s.device << '|' << s.baud << s.data_bits
    << static_cast<int>(s.parity) << s.stop_bits << static_cast<int>(s.flow) << '|' << s.host << '|'
    << s.port << '|' << s.bind << '|' << s.path << '|' << s.rotated << '|' << s.retry_min.count()
    << '|' << s.retry_max.count() << '|' << s.silence.count();
  for (const LoginStep& l : s.login)
    f << '|' << l.expect << '|' << l.send << '|' << l.timeout.count();
  for (const std::string& a : s.allow) f << '|' << a;
  for (const std::string& failure : s.login_failure) f << "|!" << failure;
  return f.str();
}

// The configured sources and their switches, for the metrics.
std::vector<std::pair<std::string, std::string>> SourcesOf(const ServiceSettings& settings) {
  std::vector<std::pair<std::string, std::string>> sources;
  for (const SwitchSettings& sw : settings.switches) {
    for (const SourceSettings& s : sw.sources) sources.emplace_back(s.name, sw.name);
  }
  return sources;
}

}  // namespace

class Service::Impl {
 public:
  Impl(ServiceSettings settings, Logger& log)
      : settings_(std::move(settings)),
        log_(log),
        signals_(io_),
        spooler_(io_, settings_, board_, log_, [this](int64_t end) { pipeline_.Published(end); }),
        pipeline_(settings_, board_, log_, [this](int64_t position) {
          asio::post(io_, [this, position] { spooler_.Release(position); });
        }) {}

  int Run() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);  // a file-size limit is a full disk, not a reason to die
    try {
      spooler_.Start();
    } catch (const std::exception& e) {
      log_.Error(e.what());
      return 1;
    }
    log_.Info("started: " + std::to_string(settings_.switches.size()) + " switch(es), spool " +
              settings_.spool + ", store " + settings_.store);
    StartMetrics();
    pipeline_.Start();
    StartSources();
    signals_.add(SIGINT);
    signals_.add(SIGTERM);
    signals_.add(SIGHUP);
    Wait();
    while (!stopping_ && io_.run_one() > 0) {
    }
    // The handlers the stop cancelled still run; whatever would keep the
    // loop alive past a second is cut short.
    io_.run_for(std::chrono::seconds(1));
    pipeline_.Stop(stop_time_ + kStoreTimeOnStop);
    log_.Info("stopped");
    return 0;
  }

  void Stop() {
    asio::post(io_, [this] { Shutdown("asked to stop"); });
  }

 private:
  void Wait() {
    signals_.async_wait([this](const asio::error_code& ec, int signal) {
      if (ec) return;
      if (signal == SIGHUP) {
        Reload();
        return Wait();
      }
      Shutdown(signal == SIGINT ? "SIGINT" : "SIGTERM");
    });
  }

  // Metrics are for watching: a port that cannot be had is logged, and the
  // records are captured all the same.
  void StartMetrics() {
    if (settings_.metrics_port == 0) return;
    try {
      metrics_ = std::make_unique<MetricsServer>(settings_.metrics_host, settings_.metrics_port,
                                                 board_, NowMicros());
      metrics_->Configure(SourcesOf(settings_));
      log_.Info("metrics: http://" + settings_.metrics_host + ":" +
                std::to_string(settings_.metrics_port) + "/metrics");
    } catch (const std::exception& e) {
      log_.Error(std::string(e.what()) + "; capturing without metrics");
    }
  }

  void StartSources() {
    for (const SwitchSettings& sw : settings_.switches) {
      for (const SourceSettings& s : sw.sources) StartSource(sw, s);
    }
  }

  void StartSource(const SwitchSettings& sw, const SourceSettings& s) {
    auto source = MakeSource(io_, s, sw, settings_.spool, spooler_);
    sources_[s.name] = {Fingerprint(sw, s), source};
    source->Start();
  }

  // The sources stop in a handler of their own, queued behind every read
  // the loop has completed already, and each spools what the operating
  // system holds for it before it closes: nothing the switch sent before
  // the stop is left behind.
  void Shutdown(const std::string& why) {
    if (shutting_down_) return;
    shutting_down_ = true;
    stop_time_ = Clock::now();
    log_.Info("stopping (" + why + ")");
    asio::post(io_, [this] {
      for (auto& [name, source] : sources_) source.second->Stop("service stopping");
      spooler_.Stop();
      asio::error_code ignored;
      signals_.cancel(ignored);
      stopping_ = true;
    });
  }

  void Reload() {
    ServiceSettings next;
    try {
      next = LoadSettings(settings_.file);
    } catch (const std::exception& e) {
      log_.Error(std::string("reload refused, running settings kept: ") + e.what());
      return;
    }
    if (next.store != settings_.store || next.spool != settings_.spool ||
        next.fsync != settings_.fsync || next.metrics_host != settings_.metrics_host ||
        next.metrics_port != settings_.metrics_port) {
      log_.Warn("reload: store, spool, fsync and metrics changes take effect on restart");
      next.store = settings_.store;
      next.spool = settings_.spool;
      next.fsync = settings_.fsync;
      next.metrics_host = settings_.metrics_host;
      next.metrics_port = settings_.metrics_port;
    }
    std::map<std::string, std::string> wanted;
    for (const SwitchSettings& sw : next.switches) {
      for (const SourceSettings& s : sw.sources) wanted[s.name] = Fingerprint(sw, s);
    }
    int stopped = 0;
    for (auto it = sources_.begin(); it != sources_.end();) {
      const auto w = wanted.find(it->first);
      if (w != wanted.end() && w->second == it->second.first) {
        ++it;
        continue;
      }
      it->second.second->Stop("configuration reloaded");
      it = sources_.erase(it);  // alive until its cancelled handlers have run
      ++stopped;
    }
    pipeline_.Reload(next);
    spooler_.Configure(next);
    if (metrics_) metrics_->Configure(SourcesOf(next));
    settings_ = next;
    int started = 0;
    for (const SwitchSettings& sw : settings_.switches) {
      for (const SourceSettings& s : sw.sources) {
        if (sources_.count(s.name) == 0) {
          StartSource(sw, s);
          ++started;
        }
      }
    }
    log_.Info("reloaded " + settings_.file + ": " + std::to_string(stopped) +
              " source(s) stopped, " + std::to_string(started) + " started");
  }

  ServiceSettings settings_;
  Logger& log_;
  asio::io_context io_;
  asio::signal_set signals_;
  StatusBoard board_;
  Spooler spooler_;
  Pipeline pipeline_;
  std::map<std::string, std::pair<std::string, std::shared_ptr<Source>>> sources_;
  bool shutting_down_ = false;
  bool stopping_ = false;
  Clock::time_point stop_time_;
  std::unique_ptr<MetricsServer> metrics_;  // reads board_: goes first
};

Service::Service(ServiceSettings settings, Logger& log)
    : impl_(std::make_unique<Impl>(std::move(settings), log)) {}

Service::~Service() = default;

int Service::Run() { return impl_->Run(); }

void Service::Stop() { impl_->Stop(); }

}  // namespace velqua_capture
