#include "road.h"

#include <cstdio>
#include <utility>

#include "velqua/records/common.h"

namespace velqua_bindings {

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
}

void Road::Start() {
  if (translation_ != nullptr) return;
  translation_ = std::make_unique<velqua_records::Translation>(
      cfg_, *collector_,
      velqua_records::Translation::Settings{settings_.errors_log, settings_.extensions,
                                            settings_.utf8, settings_.form,
                                            true});  // the program's rows: none invented
  translation_->Input(settings_.input == "-" ? "input" : settings_.input,
                      velqua_records::ReceivedAt(settings_.input, settings_.year));
}

velqua_records::Counts Road::counts() const {
  return translation_ != nullptr ? translation_->counts() : velqua_records::Counts();
}

Road::~Road() = default;

namespace {

// One write's records are one block of the translation (the extension list
// looked at once for them), ended however the write ends.
struct Block {
  explicit Block(velqua_records::Translation& t) : translation(t) { translation.BeginBlock(); }
  ~Block() { translation.EndBlock(); }
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  velqua_records::Translation& translation;
};

}  // namespace

// Lines end with CR, LF or CR LF, as the program reads them; the last one
// may have no end (Finish).
void Road::Write(std::string_view bytes, std::vector<Row>* rows) {
  if (bytes.empty()) return;
  Start();
  collector_->rows = rows;
  Block block{*translation_};
  cutter_.Alimenta(bytes, [this](std::string_view line, int64_t at) { Line(line, at); });
}

void Road::Finish(std::vector<Row>* rows) {
  Start();
  collector_->rows = rows;
  Block block{*translation_};
  cutter_.Termina([this](std::string_view line, int64_t at) { Line(line, at); });
  translation_->Finish();
}

// One line: a byte-order mark is dropped from the input's first line only.
void Road::Line(std::string_view line, int64_t at) {
  if (at == 0 && settings_.utf8 && line.substr(0, 3) == "\xEF\xBB\xBF") line.remove_prefix(3);
  translation_->LineBytes(line, at);
}

}  // namespace velqua_bindings
