#include "velqua/records/framer.h"

#include "glob.h"
#include "velqua/records/common.h"
#include "velqua/records/record_form.h"

namespace velqua_records {
namespace {

constexpr unsigned char kStx = 0x02;
constexpr unsigned char kEtx = 0x03;

bool IsControl(unsigned char c) { return (c < 0x20 && c != '\t') || c == 0x7F; }

}  // namespace

bool RecordEndOf(std::string_view word, RecordEnd* end) {
  static const std::pair<const char*, RecordEnd> kWords[] = {
      {"line", RecordEnd::kLine}, {"cr", RecordEnd::kCr},   {"lf", RecordEnd::kLf},
      {"crlf", RecordEnd::kCrLf}, {"nul", RecordEnd::kNul}, {"stx-etx", RecordEnd::kStxEtx},
  };
  for (const auto& [name, value] : kWords) {
    if (word == name) {
      *end = value;
      return true;
    }
  }
  return false;
}

size_t WholeRecordsSize(std::string_view bytes, RecordEnd end) {
  size_t at = std::string_view::npos;
  switch (end) {
    case RecordEnd::kLine:
      at = bytes.find_last_of("\r\n");
      break;
    case RecordEnd::kCr:
      at = bytes.rfind('\r');
      break;
    case RecordEnd::kLf:
    case RecordEnd::kCrLf:
      at = bytes.rfind('\n');
      break;
    case RecordEnd::kNul:
      at = bytes.rfind('\0');
      break;
    case RecordEnd::kStxEtx:
      at = bytes.rfind(static_cast<char>(kEtx));
      break;
  }
  return at == std::string_view::npos ? 0 : at + 1;
}

FramingSettings FramingFor(const RecordForm& form, FramingSettings settings) {
  settings.nul_ends_record = settings.nul_ends_record || form.nul_ends_record;
  settings.strip_bit7 = settings.strip_bit7 || form.seven_bit;
  return settings;
}

bool MatchesHeading(std::string_view pattern, std::string_view text) {
  return MatchesGlob(pattern, text);
}

Framer::Framer(const FramingSettings& settings) : settings_(settings) {
  for (const std::string& pattern : settings_.page_headings) {
    if (pattern.empty() || pattern.size() > 255) {
      throw Failure("page heading '" + pattern + "' must be 1 to 255 bytes");
    }
    if (pattern.find_first_not_of('*') == std::string::npos) {
      throw Failure("page heading '" + pattern + "' would match every record");
    }
  }
  record_.reserve(256);
}

void Framer::Feed(std::string_view bytes, int64_t position, const Emit& emit) {
  const unsigned char mask = settings_.strip_bit7 ? 0x7F : 0xFF;
  for (size_t i = 0; i < bytes.size(); ++i) {
    const auto c = static_cast<unsigned char>(static_cast<unsigned char>(bytes[i]) & mask);
    Byte(c, position + static_cast<int64_t>(i), emit);
  }
}

void Framer::Byte(unsigned char c, int64_t position, const Emit& emit) {
  const bool after_cr = after_cr_;
  after_cr_ = c == '\r';
  if (c == 0 && settings_.nul_ends_record && settings_.end != RecordEnd::kStxEtx) return End(emit);
  switch (settings_.end) {
    case RecordEnd::kLine:
      if (c == '\n' && after_cr) return;  // the LF of a CR LF: the CR ended the record
      if (c == '\r' || c == '\n') return End(emit);
      break;
    case RecordEnd::kCr:
      if (c == '\r') return End(emit);
      break;
    case RecordEnd::kLf:
    case RecordEnd::kCrLf:
      if (c == '\n' && (after_cr || settings_.end == RecordEnd::kLf)) {
        if (!record_.empty() && record_.back() == '\r') record_.pop_back();
        return End(emit);
      }
      break;
    case RecordEnd::kNul:
      if (c == 0) return End(emit);
      break;
    case RecordEnd::kStxEtx:
      if (c == kStx || c == kEtx) {
        End(emit);  // an STX inside a frame: what came before it is a record of its own
        in_frame_ = c == kStx;
        return;
      }
      // Line ends and NULs between frames are padding, not records.
      if (!in_frame_ && record_.empty() && (c == '\r' || c == '\n' || c == 0)) return;
      break;
  }
  Append(c, position, emit);
}

void Framer::Append(unsigned char c, int64_t position, const Emit& emit) {
  if (record_.empty()) open_position_ = position;
  record_.push_back(static_cast<char>(c));
  if (record_.size() >= kMaxRecord) End(emit);
}

void Framer::Flush(const Emit& emit) {
  // A CR LF record cut off between its CR and LF: the CR was its end.
  if (settings_.end == RecordEnd::kCrLf && after_cr_ && !record_.empty()) record_.pop_back();
  End(emit);
}

void Framer::End(const Emit& emit) {
  if (record_.empty()) {
    open_position_ = -1;
    return;
  }
  std::string_view bytes = record_;
  if (settings_.strip_controls) {
    stripped_.clear();
    for (char c : record_) {
      if (!IsControl(static_cast<unsigned char>(c))) stripped_.push_back(c);
    }
    bytes = stripped_;
  }
  if (!bytes.empty()) emit(Record{bytes, open_position_, IsHeading(bytes)});
  record_.clear();
  open_position_ = -1;
}

bool Framer::IsHeading(std::string_view record) const {
  for (const std::string& pattern : settings_.page_headings) {
    if (MatchesHeading(pattern, record)) return true;
  }
  return false;
}

}  // namespace velqua_records
