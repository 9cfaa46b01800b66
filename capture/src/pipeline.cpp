#include "pipeline.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>

#include "velqua/error.h"
#include "velqua/records/common.h"
#include "velqua/records/config_io.h"
#include "velqua/records/record_form.h"
#include "velqua/store/extension_list.h"
#include "velqua/store/import.h"
#include "velqua/texto.h"

namespace velqua_capture {
namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kBatchRows = 2000;
// A backlog in the spool at least this large (a burst, a store that was
// down) is offered to the store as a bulk load, and committed in batches
// this large: the store decides, by what it holds already (store.h).
constexpr int64_t kBulkBacklogBytes = 1 << 20;
constexpr int64_t kBytesPerRecord = 80;
constexpr size_t kBulkBatchRows = 20000;
// How long the sources stay quiet, everything stored, before a bulk load
// ends (a loaded machine pauses a backlog's arrival for a moment now and then).
constexpr std::chrono::seconds kBulkQuiet{1};
constexpr int64_t kLoggedUnrecognised = 20;
constexpr std::chrono::milliseconds kIdleWait{100};
constexpr std::chrono::seconds kStoreRetry{1};

// Thrown by Retry when the service stops while the store is unavailable:
// what is not stored yet stays in the spool for the next start.
struct Abandon {};

// Keeps the rows a translation writes, each with its record's text.
class Catcher : public velqua_records::RowSink {
 public:
  struct Caught {
    velqua_records::Row row;
    std::string text;  // UTF-8
  };
  void Write(const velqua_records::Row& row) override {
    caught_.push_back({row, velqua_records::U8(row.text)});
    caught_.back().row.text = {};  // viewed the translation's buffer
    caught_.back().row.input = {};
  }
  std::vector<Caught>& caught() { return caught_; }

 private:
  std::vector<Caught> caught_;
};

// "YYYY-MM-DDTHH:MM:SSZ" to microseconds since 1970; 0 when unreadable.
int64_t ParseUtc(const std::string& text) {
  std::tm t{};
  if (std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%d", &t.tm_year, &t.tm_mon, &t.tm_mday, &t.tm_hour,
                  &t.tm_min, &t.tm_sec) != 6) {
    return 0;
  }
  t.tm_year -= 1900;
  t.tm_mon -= 1;
  return static_cast<int64_t>(timegm(&t)) * 1000000;
}

}  // namespace

struct Pipeline::SwitchState {
  SwitchSettings settings;
  velqua_records::SwitchConfig config;  // with its record form
  // The service's framing for the switch, with what the record form adds:
  // NUL ending records as line ends do, and 7-bit lines.
  velqua_records::FramingSettings framing;
  // The extension list its records are translated with (the configured
  // one, else the one kept with the switch in the store, else a bundled
  // switch's own), chosen once the store is open; a stream holds it as long
  // as its translation reads it.
  std::shared_ptr<velqua_store::SwitchExtensionList> extensions;
};

struct Pipeline::StreamState {
  std::string name;
  std::string switch_name;
  SwitchState* sw = nullptr;  // none while its switch is not configured
  velqua_store::Source source;
  int64_t checkpoint = -1;  // entries before it were stored by an earlier run
  std::unique_ptr<velqua_records::Framer> framer;
  // The records road of the connection: page headings of the record form,
  // delimited shaping, continuation lines, multi-line calls.
  Catcher catcher;
  std::unique_ptr<velqua_records::Translation> translation;
  std::shared_ptr<velqua_store::SwitchExtensionList> extensions;  // the one it reads
  int64_t input_second = -1;  // the second Translation::Input was last told
  ResendFilter resend;
  int64_t connect_position = -1;  // of the connection's mark
  int64_t resent_dropped = 0;     // in the connection's re-sent part
  int64_t dropped = 0;            // re-sent records dropped and not yet logged
  bool connected = false;
  // Page headings printed while the connection is in its re-sent part: they
  // join the batch once it is over, so that a replay of the connection finds
  // the store as the connection found it.
  std::vector<velqua_store::Record> held_headings;
  std::vector<int64_t> held_headings_us;
  // Events not yet stored, each with the spool position it concerns: stored
  // in the transaction whose checkpoint passes that position, so that a
  // replay neither makes them again nor loses them.
  struct PendingEvent {
    int64_t position;
    velqua_store::Event event;
  };
  std::vector<PendingEvent> events;
  int64_t last_received_us = 0;
  std::string received_utc;                // of last_received_us
  int64_t unrecognised = 0;                // seen by this run
  int64_t unlisted = 0;                    // calls with an account code the list lacks
  int64_t headings = 0;                    // page headings in `rows`
  std::vector<velqua_store::Record> rows;  // translated, not yet stored
  std::vector<int64_t> rows_received_us;   // when each row's last byte came
};

Pipeline::Pipeline(const ServiceSettings& settings, StatusBoard& board, Logger& log,
                   std::function<void(int64_t)> release)
    : settings_(settings), board_(board), log_(log), release_(std::move(release)) {}

Pipeline::~Pipeline() {
  if (thread_.joinable()) Stop(Clock::now());
}

void Pipeline::Start() {
  std::ifstream in(settings_.spool + "/replay-from");
  if (!(in >> replay_from_)) replay_from_ = 0;
  Apply(settings_);
  thread_ = std::thread([this] { Run(); });
}

void Pipeline::Published(int64_t end) {
  published_.store(end);
  wake_.notify_one();
}

void Pipeline::Reload(const ServiceSettings& settings) {
  std::lock_guard<std::mutex> lock(mutex_);
  reload_ = settings;
}

void Pipeline::Stop(Clock::time_point deadline) {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    deadline_ = deadline;
    stop_.store(true);  // after the deadline: a thread that sees it sees the deadline
  }
  wake_.notify_one();
  if (thread_.joinable()) thread_.join();
}

bool Pipeline::Stopping() const { return stop_ && Clock::now() >= deadline_; }

// Loads each switch's configuration and record form (they were checked when
// the settings were loaded; one that became unreadable since is logged and
// its records wait in the spool). Streams take them at their next connection.
void Pipeline::Apply(const ServiceSettings& settings) {
  settings_ = settings;
  std::map<std::string, std::unique_ptr<SwitchState>> switches;
  for (const SwitchSettings& sw : settings.switches) {
    auto state = std::make_unique<SwitchState>();
    state->settings = sw;
    try {
      state->config = velqua_records::LoadSwitchConfig(sw.config);
    } catch (const std::exception& e) {
      log_.Error("switch " + sw.name + ": " + e.what());
      continue;
    }
    state->framing = velqua_records::FramingFor(state->config.form, sw.framing);
    switches[sw.name] = std::move(state);
  }
  switches_.swap(switches);  // the old ones go at the end of this function
  for (auto& [name, stream] : streams_) {
    const auto it = switches_.find(stream->switch_name);
    stream->sw = it == switches_.end() ? nullptr : it->second.get();
  }
}

void Pipeline::Run() {
  reader_ = std::make_unique<SpoolReader>(settings_.spool, replay_from_,
                                          [this](const std::string& line) { log_.Warn(line); });
  try {
    Retry([] {});  // the store opens
    Loop();
    Retry([this] { Commit(); });
    EndBulk();
  } catch (const Abandon&) {
    log_.Warn(
        "stopping with records not yet stored: they are stored from the spool on the next start");
  }
}

void Pipeline::Loop() {
  SpoolEntry e;
  for (;;) {
    {
      std::unique_lock<std::mutex> lock(mutex_);
      if (reload_) {
        ServiceSettings next = std::move(*reload_);
        reload_.reset();
        lock.unlock();
        Retry([this] { Commit(); });
        Apply(next);
      }
    }
    LoadInBulk();
    bool caught_up = false;
    while (pending_rows_ < (bulk_offered_ > 0 ? kBulkBatchRows : kBatchRows)) {
      if (!reader_->Next(published_.load(), &e)) {
        caught_up = true;
        break;
      }
      if (pending_rows_ == 0) first_pending_ = Clock::now();
      Process(e);
    }
    if (pending_rows_ > 0 || EventsReady()) Retry([this] { Commit(); });
    for (auto& [name, s] : streams_) ReportDropped(*s);
    const int64_t end = published_.load();
    if (end != last_end_) {
      last_end_ = end;
      last_moved_ = Clock::now();
    }
    board_.Progress(end, caught_up ? end : processed_end_, caught_up);  // for the metrics
    if (caught_up) {
      std::unique_lock<std::mutex> lock(mutex_);
      if (stop_) return;
      wake_.wait_for(lock, kIdleWait, [&] { return stop_ || published_.load() != end; });
      lock.unlock();
      // Everything stored, and the sources quiet for a while: a bulk load is over.
      if (published_.load() == end && Clock::now() - last_moved_ >= kBulkQuiet) EndBulk();
    }
    if (Stopping()) return;
  }
}

void Pipeline::Retry(const std::function<void()>& work) {
  bool down = false;
  std::string last;
  for (;;) {
    try {
      if (!store_) store_ = velqua_store::OpenStore(settings_.store);
      work();
      if (down) log_.Info("store available again: catching up from the spool");
      return;
    } catch (const std::exception& e) {
      if (!down || last != e.what()) {
        log_.Warn(std::string("store unavailable: ") + e.what() +
                  "; records wait in the spool, retrying");
      }
      down = true;
      last = e.what();
      if (dynamic_cast<const velqua_store::ConnectionLost*>(&e) == nullptr &&
          dynamic_cast<const velqua_store::StoreError*>(&e) == nullptr) {
        store_.reset();  // opened again on the next try
      }
    }
    std::unique_lock<std::mutex> lock(mutex_);
    wake_.wait_for(lock, kStoreRetry, [this] { return Stopping(); });
    if (Stopping()) throw Abandon{};
  }
}

// A backlog the size of a load (the spool holding far more than the batches
// keep up with) is loaded as an import loads it: the store may put off its
// query indexes until the backlog is stored (it does when the backlog is
// larger than what it holds), and the batches grow. Every batch is still
// committed with its checkpoint before the spool is released.
// A backlog that keeps growing is offered again each time it doubles.
void Pipeline::LoadInBulk() {
  if (processed_end_ == 0) return;
  const int64_t behind = published_.load() - processed_end_;
  if (behind < std::max(kBulkBacklogBytes, 2 * bulk_offered_)) return;
  Retry([&] { store_->BeginBulk(behind / kBytesPerRecord); });
  bulk_offered_ = behind;
}

// Caught up, and the sources quiet for a while (a pause between two chunks
// of a backlog is not its end): the store builds what it put off.
void Pipeline::EndBulk() {
  if (bulk_offered_ == 0) return;
  Retry([this] { store_->EndBulk(); });
  bulk_offered_ = 0;
}

Pipeline::StreamState* Pipeline::Stream(const std::string& name) {
  if (auto it = streams_.find(name); it != streams_.end()) return it->second.get();
  const std::string source(SourceOfStream(name));
  SwitchState* sw = nullptr;
  for (const auto& [switch_name, state] : switches_) {
    for (const SourceSettings& s : state->settings.sources) {
      if (s.name == source) sw = state.get();
    }
  }
  if (sw == nullptr) {
    if (unknown_.insert(name).second) {
      log_.Warn("the spool holds records of \"" + name +
                "\", a source no longer configured: they are left in the spool");
    }
    return nullptr;
  }
  auto s = std::make_unique<StreamState>();
  s->name = name;
  s->switch_name = sw->settings.name;
  s->sw = sw;
  Retry([&] {
    store_->PutSwitch({sw->settings.name, sw->settings.config,
                       velqua_store::ConfigHash(sw->settings.config), sw->settings.time_zone});
    s->source = store_->OpenSource(sw->settings.name, name, "capture");
  });
  s->checkpoint = s->source.checkpoint.value_or(-1);
  NewConnection(*s);
  board_.Update(name, [&](StreamStatus& st) {
    st.source = source;
    st.switch_name = sw->settings.name;
  });
  return (streams_[name] = std::move(s)).get();
}

// The processed end moves past an entry only once it is processed whole: a
// commit it makes (a new connection commits what came before it) must leave
// the entry itself to be read again.
void Pipeline::Process(const SpoolEntry& e) {
  const int64_t end = e.data_position + static_cast<int64_t>(e.bytes.size());
  Handle(e, end);
  processed_end_ = std::max(processed_end_, end);
}

void Pipeline::Handle(const SpoolEntry& e, int64_t end) {
  if (e.kind == SpoolKind::kStart) {
    for (auto& [name, s] : streams_) {
      if (s->connected && end > s->checkpoint) {
        AddEvent(*s, e.position, "disconnect", e.received_us, 0,
                 "the service stopped without ending the connection");
      }
      s->connected = false;
      EndConnection(*s);
    }
    return;
  }
  StreamState* s = Stream(e.source);
  if (s == nullptr || s->sw == nullptr || end <= s->checkpoint) return;
  switch (e.kind) {
    case SpoolKind::kConnect:
      EndConnection(*s);
      Connect(*s, e);
      break;
    case SpoolKind::kData: {
      const int64_t skip = std::max<int64_t>(0, s->checkpoint - e.data_position);
      s->last_received_us = e.received_us;
      Feed(*s, std::string_view(e.bytes).substr(static_cast<size_t>(skip)), e.data_position + skip);
      break;
    }
    case SpoolKind::kFlush:
      Complete(*s);
      break;
    case SpoolKind::kDisconnect:
      EndConnection(*s);
      s->connected = false;
      AddEvent(*s, e.position, "disconnect", e.received_us, 0, e.bytes);
      break;
    case SpoolKind::kGap:
    case SpoolKind::kTornTail:
      // Logged where it was found; recorded here, once.
      AddEvent(*s, e.position, e.kind == SpoolKind::kGap ? "gap" : "torn-tail", e.received_us, 0,
               e.bytes);
      break;
    case SpoolKind::kStart:
      break;
  }
}

void Pipeline::Feed(StreamState& s, std::string_view bytes, int64_t position) {
  s.framer->Feed(bytes, position, [&](const velqua_records::Framer::Record& r) { Framed(s, r); });
}

// The stream went quiet: the record, call or record with continuation lines
// it left open is complete.
void Pipeline::Complete(StreamState& s) {
  s.framer->Flush([&](const velqua_records::Framer::Record& r) { Framed(s, r); });
  s.translation->Finish();
  Translated(s);
}

// Logs how many re-sent records were dropped since the last report, if any
// (the loop calls it at least every second).
void Pipeline::ReportDropped(StreamState& s) {
  if (s.dropped == 0) return;
  log_.Info("source " + s.name + ": " + std::to_string(s.dropped) + " re-sent records dropped");
  s.dropped = 0;
}

// The end of a connection: what it left open is complete, its re-sent part over.
void Pipeline::EndConnection(StreamState& s) {
  if (s.sw == nullptr) return;
  Complete(s);
  CloseResent(s);
  NewConnection(s);
}

// The connection's re-sent part is over (a new record came, every stored
// record it could send again was matched, or it ended): what it dropped is
// recorded, and the page headings it printed meanwhile join the batch.
void Pipeline::CloseResent(StreamState& s) {
  s.resend.End();
  ReportDropped(s);
  if (s.resent_dropped > 0) {
    AddEvent(s, s.connect_position, "resent-dropped", s.last_received_us, s.resent_dropped, "");
    s.resent_dropped = 0;
  }
  for (size_t i = 0; i < s.held_headings.size(); ++i) {
    s.rows.push_back(std::move(s.held_headings[i]));
    s.rows_received_us.push_back(s.held_headings_us[i]);
    ++s.headings;
    ++pending_rows_;
  }
  s.held_headings.clear();
  s.held_headings_us.clear();
}

// Chosen once a switch (and again after the settings are reloaded); a list
// given or bundled is kept with the switch. A list that cannot be read was
// refused with the settings; one that went since is logged and none used.
std::shared_ptr<velqua_store::SwitchExtensionList> Pipeline::ExtensionsOf(SwitchState& sw) {
  if (sw.extensions) return sw.extensions;
  const SwitchSettings& set = sw.settings;
  Retry([&] {
    const std::optional<velqua_store::SwitchInfo> kept = store_->FindSwitch(set.name);
    try {
      sw.extensions = std::make_shared<velqua_store::SwitchExtensionList>(
          set.extensions, kept ? kept->extension_list : "", set.config);
    } catch (const velqua_records::Failure& e) {
      log_.Error("switch " + set.name + ": " + e.what() + ": no extension list used");
      sw.extensions = std::make_shared<velqua_store::SwitchExtensionList>("", "", "");
      return;
    }
    if (!sw.extensions->to_keep().empty()) {
      store_->PutSwitch({set.name, set.config, velqua_store::ConfigHash(set.config), set.time_zone,
                         sw.extensions->to_keep()});
    }
  });
  return sw.extensions;
}

void Pipeline::AddEvent(StreamState& s, int64_t position, const std::string& kind,
                        int64_t received_us, int64_t count, const std::string& detail) {
  s.events.push_back({position, {kind, IsoTime(received_us), count, detail}});
}

// A connection's bytes start a new stream: nothing carries over from the last.
void Pipeline::NewConnection(StreamState& s) {
  SwitchState& sw = *s.sw;
  s.framer = std::make_unique<velqua_records::Framer>(sw.framing);
  s.extensions = ExtensionsOf(sw);
  s.translation = std::make_unique<velqua_records::Translation>(
      sw.config.cfg, s.catcher,
      velqua_records::Translation::Settings{"", s.extensions ? s.extensions->path() : "",
                                            sw.settings.utf8, sw.config.form, true});
  s.translation->on_heading = [this, &s](const std::string&, std::u16string_view line,
                                         int64_t position) { Heading(s, line, position); };
  s.input_second = -1;
}

// A new connection: what was stored before it decides what it re-sends.
// The commit stops before the connection's mark (the processed end has not
// passed it yet): until the re-sent part is over, a replay must make the
// decision again from the mark.
void Pipeline::Connect(StreamState& s, const SpoolEntry& e) {
  Retry([this] { Commit(); });
  const SwitchSettings& sw = s.sw->settings;
  std::vector<ResendFilter::Stored> stored;
  const int64_t age_us = sw.resend_age.count() * 1000;
  if (sw.resend_records > 0) {
    Retry([&] {
      stored.clear();
      for (const velqua_store::RawRecord& r :
           store_->RecentRecords(s.source, sw.resend_records, IsoTime(e.received_us - age_us))) {
        stored.push_back({r.raw, ParseUtc(r.received_utc)});
      }
    });
  }
  s.resend.Connect(std::move(stored), e.received_us, sw.resend_records, age_us + 1000000);
  s.connect_position = e.position;
  s.connected = true;
  AddEvent(s, e.position, "connect", e.received_us, 0, e.bytes);
}

void Pipeline::Framed(StreamState& s, const velqua_records::Framer::Record& r) {
  const int64_t second = s.last_received_us / 1000000;
  if (second != s.input_second) {
    // The year of a record that prints none is the year it was received in,
    // read from the received time as `retranslate` reads it.
    s.received_utc = IsoTime(s.last_received_us);
    s.translation->Input(s.name, velqua_store::UtcToLocal(s.received_utc));
    s.input_second = second;
  }
  if (r.heading) {
    return Heading(s, s.sw->settings.utf8 ? velqua::DesdeUtf8(r.bytes) : velqua::DesdeAnsi(r.bytes),
                   r.position);
  }
  // Decoded as `translate` decodes a line (the framer has applied the
  // record form's record ends and 7-bit lines already).
  s.translation->LineBytes(r.bytes, r.position);
  Translated(s);
}

// The rows the translation wrote: each record re-sent after a reconnection
// is dropped, every other one joins the stream's batch.
void Pipeline::Translated(StreamState& s) {
  for (Catcher::Caught& c : s.catcher.caught()) {
    std::string& raw = c.text;
    if (s.resend.active()) {
      if (s.resend.Drop(raw)) {
        ++s.dropped;
        ++s.resent_dropped;
        board_.Update(s.name, [](StreamStatus& st) { ++st.resent_dropped; });
        if (!s.resend.active()) CloseResent(s);
        continue;
      }
      CloseResent(s);
    }
    velqua_store::Record record;
    record.position = c.row.offset;
    record.raw = std::move(raw);
    record.received_utc = s.received_utc;
    record.row = std::move(c.row);
    if (!record.row.has_fields) Unrecognised(s, record);
    if (record.row.random_extension) Unlisted(s, record);
    s.rows.push_back(std::move(record));
    s.rows_received_us.push_back(s.last_received_us);
    ++pending_rows_;
  }
  s.catcher.caught().clear();
}

// A page heading is kept where every record is kept, as an unrecognised
// record with that reason (as an import keeps it), never translated. The
// re-send rule passes over it: headings are printed again on every page.
void Pipeline::Heading(StreamState& s, std::u16string_view line, int64_t position) {
  board_.Update(s.name, [](StreamStatus& st) { ++st.headings; });
  velqua_store::Record record;
  record.position = position;
  record.raw = velqua_records::U8(line);
  record.received_utc = s.received_utc;
  record.row.error = velqua_records::kPageHeadingReason;
  record.row.offset = position;
  if (s.resend.active()) {
    s.held_headings.push_back(std::move(record));
    s.held_headings_us.push_back(s.last_received_us);
    return;
  }
  s.rows.push_back(std::move(record));
  s.rows_received_us.push_back(s.last_received_us);
  ++s.headings;
  ++pending_rows_;
}

// Logs an unrecognised record: each of a stream's first 20, then one line
// for every 1,000 more (a configuration that does not fit the switch would
// otherwise fill the log).
void Pipeline::Unrecognised(StreamState& s, const velqua_store::Record& record) {
  const int64_t n = ++s.unrecognised;
  if (n <= kLoggedUnrecognised) {
    log_.Warn("source " + s.name + ": unrecognised record at position " +
              std::to_string(record.position) +
              (record.row.error.empty() ? "" : " (" + record.row.error + ")") + ": " +
              record.raw.substr(0, 120));
  } else if (n % 1000 == 0) {
    log_.Warn("source " + s.name + ": " + std::to_string(n) + " unrecognised records so far");
  }
}

// As the program says it: the call is stored with its account code and no
// extension.
void Pipeline::Unlisted(StreamState& s, const velqua_store::Record& record) {
  const int64_t n = ++s.unlisted;
  if (n <= kLoggedUnrecognised) {
    log_.Warn("source " + s.name + ": call at position " + std::to_string(record.position) +
              " has account code " + velqua_records::U8(record.row.account_code) +
              ", missing from the extension list: extension left blank, account code kept");
  } else if (n % 1000 == 0) {
    log_.Warn("source " + s.name + ": " + std::to_string(n) +
              " calls with an account code missing from the extension list so far");
  }
}

// Where replay must start for the stream: the first byte of what it holds
// open (a record, a multi-line call, a connection still in its re-sent
// part), or -1 when it holds nothing.
int64_t Pipeline::Hold(const StreamState& s) const {
  int64_t hold = INT64_MAX;
  if (s.framer && s.framer->OpenPosition() >= 0) hold = s.framer->OpenPosition();
  if (s.translation && s.translation->held_offset() >= 0) {
    hold = std::min(hold, s.translation->held_offset());
  }
  if (s.resend.active()) hold = std::min(hold, s.connect_position);
  return hold == INT64_MAX ? -1 : hold;
}

// Each stream's batch goes with its checkpoint, and with the events the
// checkpoint passes, in one transaction; then the spool's replay-from moves
// to the earliest position any stream still needs.
// Whether a stream holds an event a commit would store now.
bool Pipeline::EventsReady() const {
  for (const auto& [name, s] : streams_) {
    const int64_t hold = Hold(*s);
    for (const StreamState::PendingEvent& ev : s->events) {
      if (ev.position < (hold >= 0 ? hold : processed_end_)) return true;
    }
  }
  return false;
}

void Pipeline::Commit() {
  int64_t safe = processed_end_;
  for (auto& [name, s] : streams_) {
    const int64_t hold = Hold(*s);
    if (hold >= 0) safe = std::min(safe, hold);
    const int64_t checkpoint = hold >= 0 ? hold : processed_end_;
    const auto ready = std::stable_partition(
        s->events.begin(), s->events.end(),
        [&](const StreamState::PendingEvent& ev) { return ev.position < checkpoint; });
    if (s->rows.empty() && ready == s->events.begin()) continue;
    StreamState* const stream = s.get();
    const velqua_store::WriteResult result =
        store_->Write(s->source, s->rows, checkpoint, [this, stream, ready] {
          for (auto it = stream->events.begin(); it != ready; ++it) {
            store_->AddEvent(stream->source, it->event);
          }
        });
    s->events.erase(s->events.begin(), ready);
    const int64_t now = NowMicros();
    int64_t last_us = 0;
    for (int64_t& received : s->rows_received_us) {
      last_us = std::max(last_us, received);
      received = now - received;
    }
    board_.Committed(s->rows_received_us);
    const int64_t headings = s->headings;
    board_.Update(name, [&](StreamStatus& st) {
      st.records += result.calls;
      st.unrecognised += std::max<int64_t>(0, result.unrecognised - headings);
      st.last_record_us = std::max(st.last_record_us, last_us);
    });
    pending_rows_ -= s->rows.size();
    s->headings = 0;
    s->rows.clear();
    s->rows_received_us.clear();
  }
  if (safe > replay_from_) {
    if (velqua_records::ReplaceFileText(settings_.spool + "/replay-from",
                                        std::to_string(safe) + '\n')) {
      replay_from_ = safe;
      release_(safe);
    }
  }
}

}  // namespace velqua_capture
