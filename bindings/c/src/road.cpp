#include "road.h"

#include <cstdio>
#include <cstring>
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

// The index of the first CR or LF in `bytes`, or its size.
size_t LineEnd(std::string_view bytes) {
  const void* lf = std::memchr(bytes.data(), '\n', bytes.size());
  const size_t k = lf != nullptr ? static_cast<size_t>(static_cast<const char*>(lf) - bytes.data())
                                 : bytes.size();
  const void* cr = std::memchr(bytes.data(), '\r', k);
  return cr != nullptr ? static_cast<size_t>(static_cast<const char*>(cr) - bytes.data()) : k;
}

}  // namespace

// Lines end with CR, LF or CR LF, as the program reads them; the last one
// may have no end (Finish).
void Road::Write(std::string_view bytes, std::vector<Row>* rows) {
  if (bytes.empty()) return;
  Start();
  collector_->rows = rows;
  Block block{*translation_};
  while (!bytes.empty()) {
    if (std::exchange(after_cr_, false) && bytes.front() == '\n') {
      bytes.remove_prefix(1);
      ++offset_;
      continue;
    }
    const size_t end = LineEnd(bytes);
    if (end == bytes.size()) {
      pending_.append(bytes);
      return;
    }
    after_cr_ = bytes[end] == '\r';
    if (pending_.empty()) {
      Line(bytes.substr(0, end));
    } else {
      pending_.append(bytes.data(), end);
      Line(pending_);
      pending_.clear();
    }
    ++offset_;  // the line end
    bytes.remove_prefix(end + 1);
  }
}

void Road::Finish(std::vector<Row>* rows) {
  Start();
  collector_->rows = rows;
  Block block{*translation_};
  if (!pending_.empty()) Line(pending_);
  pending_.clear();
  translation_->Finish();
}

// One line: a byte-order mark is dropped from the input's first line only.
void Road::Line(std::string_view line) {
  const int64_t at = offset_;
  offset_ += static_cast<int64_t>(line.size());
  if (at == 0 && settings_.utf8 && line.substr(0, 3) == "\xEF\xBB\xBF") line.remove_prefix(3);
  translation_->LineBytes(line, at);
}

}  // namespace velqua_bindings
