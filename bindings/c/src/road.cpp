#include "road.h"

#include <cstdio>
#include <mutex>

#include "platform/reloj.h"
#include "velqua/records/clock.h"
#include "velqua/records/common.h"

namespace velqua_bindings {
namespace {

using velqua::plataforma::FechaHora;
using velqua_records::ProgramClock;

thread_local bool tOnRoad = false;

std::mutex& RoadMutex() {
  static std::mutex mutex;
  return mutex;
}

class HostClock : public velqua::plataforma::Reloj {
 public:
  FechaHora Ahora() const override {
    return tOnRoad ? ProgramClock::Instance().Ahora() : system_.Ahora();
  }
  uint32_t SemillaTemporizador() const override {
    return tOnRoad ? ProgramClock::Instance().SemillaTemporizador() : system_.SemillaTemporizador();
  }

 private:
  velqua::plataforma::RelojSistema system_;
};

// The calling thread on the road until the end of the scope.
class OnRoad {
 public:
  OnRoad() : lock_(RoadMutex()) { tOnRoad = true; }
  ~OnRoad() { tOnRoad = false; }

 private:
  std::lock_guard<std::mutex> lock_;
};

}  // namespace

void InstallHostClock() {
  static const bool installed = [] {
    static const HostClock clock;
    ProgramClock::Instance();  // installs itself, once: the host clock replaces it
    velqua::plataforma::EstableceReloj(&clock);
    return true;
  }();
  (void)installed;
}

class Road::Collector : public velqua_records::RowSink {
 public:
  void Write(const Row& row) override {
    rows->push_back(row);
    rows->back().text = {};  // viewed the translation's buffer: kept rows outlive it
  }
  std::vector<Row>* rows = nullptr;
};

Road::Road(std::shared_ptr<velqua::clsCfgConmut> cfg, const Settings& settings)
    : cfg_(std::move(cfg)), settings_(settings), collector_(std::make_unique<Collector>()) {
  if (!settings.extensions.empty()) {
    velqua_records::RequireReadableFile(settings.extensions, "extension list");
  }
  if (!settings.errors_log.empty()) {
    velqua_records::RequireAppendableFile(settings.errors_log, "error log");
  }
  InstallHostClock();
}

// Called on the road: the translator's first seeds come from the road's clock.
void Road::Start() {
  if (translation_ != nullptr) return;
  translation_ = std::make_unique<velqua_records::Translation>(
      cfg_, *collector_,
      velqua_records::Translation::Settings{settings_.errors_log, settings_.extensions,
                                            settings_.utf8, settings_.form});
  translation_->Input(settings_.input == "-" ? "input" : settings_.input,
                      velqua_records::ReceivedAt(settings_.input, settings_.year));
}

velqua_records::Counts Road::counts() const {
  return translation_ != nullptr ? translation_->counts() : velqua_records::Counts();
}

Road::~Road() = default;

void Road::Write(std::string_view bytes, std::vector<Row>* rows) {
  const size_t end = bytes.find_last_of("\r\n");
  if (end == std::string_view::npos) {
    pending_.append(bytes);
    return;
  }
  if (pending_.empty()) {
    Translate(bytes.substr(0, end + 1), rows);
  } else {
    pending_.append(bytes.data(), end + 1);
    Translate(pending_, rows);
  }
  pending_.assign(bytes.substr(end + 1));
}

void Road::Finish(std::vector<Row>* rows) {
  Translate(pending_, rows);
  pending_.clear();
  const OnRoad on_road;
  Start();
  collector_->rows = rows;
  translation_->Finish();
}

// One block of whole lines through the road's line reader, which takes a
// FILE: the block is read in place through fmemopen.
void Road::Translate(std::string_view lines, std::vector<Row>* rows) {
  if (lines.empty()) return;
  // The reader drops a byte-order mark at the start of each stream; only the
  // input's own first line may lose one, so a later block that starts with
  // one is given an empty first line (which carries no record).
  std::string shifted;
  if (settings_.utf8 && !first_block_ && lines.substr(0, 3) == "\xEF\xBB\xBF") {
    shifted = "\n";
    shifted.append(lines);
    lines = shifted;
  }
  first_block_ = false;
  std::unique_ptr<std::FILE, velqua_records::FileCloser> stream(
      fmemopen(const_cast<char*>(lines.data()), lines.size(), "r"));
  if (!stream) throw std::bad_alloc();
  const OnRoad on_road;
  Start();
  collector_->rows = rows;
  translation_->Stream(stream.get());
}

}  // namespace velqua_bindings
