#include "velqua/records/translation.h"

#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <utility>

#include "unrecognised_log.h"
#include "velqua/records/common.h"
#include "velqua/records/error_text.h"
#include "velqua/texto.h"

namespace velqua_records {
namespace {

// Whether the extension of the record just read was drawn at random: in the
// account-code cases an outgoing call's code missing from the extension list
// gets a random extension, drawn anew at each read, while a listed one reads
// the same every time. A drawn extension is always four digits, or "10000";
// any other text was not drawn. Three equal reads leave one chance in 10^8
// that a drawn extension passes for a listed one.
bool ExtensionIsRandom(velqua::clsTraductor& t, const velqua::clsCfgConmut& cfg,
                       const std::u16string& first) {
  const int32_t c = cfg.Caso();
  if (t.TipoLlamadaDetectada() != velqua::emTradSaliente ||
      (c != velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100 &&
       c != velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto)) {
    return false;
  }
  const bool drawable =
      (first.size() == 4 || first == u"10000") &&
      std::all_of(first.begin(), first.end(), [](char16_t d) { return d >= u'0' && d <= u'9'; });
  return drawable && (t.Extension() != first || t.Extension() != first);
}

// Decodes a line into *text, reusing its storage: ASCII bytes directly (the
// common case: widened and tested in one pass, which the compiler
// vectorises), the rest from the first other byte through the library.
// False when UTF-8 bytes are not well-formed (the bad bytes then read as
// U+FFFD).
bool Decode(std::string_view bytes, bool utf8, std::u16string* text) {
  const auto* __restrict p = reinterpret_cast<const unsigned char*>(bytes.data());
  const size_t n = bytes.size();
  text->resize(n);
  char16_t* __restrict out = text->data();
  unsigned char any = 0;
  for (size_t i = 0; i < n; ++i) {
    out[i] = p[i];
    any = static_cast<unsigned char>(any | p[i]);
  }
  if (any < 0x80) return true;
  size_t i = 0;
  while (p[i] < 0x80) ++i;
  text->resize(i);
  *text += utf8 ? velqua::DesdeUtf8(bytes.substr(i)) : velqua::DesdeAnsi(bytes.substr(i));
  return !utf8 || IsValidUtf8(bytes.substr(i));
}

// A delimited field is never cut: a text the row read whole from a field's
// columns, which the field did not fit, is given the field's whole text.
void Uncut(const std::vector<std::pair<std::u16string, std::u16string>>& cut, Row* row) {
  for (std::u16string* text :
       {&row->dialled, &row->extension, &row->trunk, &row->receiving_extension,
        &row->receiving_trunk, &row->account_code}) {
    const std::u16string_view value = Trimmed(*text);
    for (const auto& [shaped, whole] : cut) {
      if (!value.empty() && value == shaped) {
        *text = whole;
        break;
      }
    }
  }
}

// Whether an input is live: anything but a regular file read to its end.
bool IsLive(std::FILE* stream, bool follow) {
  struct stat st {};
  return follow || (::fstat(::fileno(stream), &st) == 0 && !S_ISREG(st.st_mode));
}

}  // namespace

Translation::Translation(std::shared_ptr<velqua::clsCfgConmut> cfg, RowSink& sink,
                         const Settings& settings)
    : cfg_(std::move(cfg)),
      clock_(std::make_shared<ProgramClock>(settings.environment,
                                            settings.now ? settings.now : ProgramFixedNow())),
      traductor_(clock_),
      sink_(sink),
      utf8_(settings.utf8),
      blank_random_(settings.blank_random_extensions),
      form_(settings.form),
      check_(*cfg_) {
  plain_ = form_.Plain() && cfg_->Caso() != velqua::emCasoNortelNorstar0x32SMDR6;
  traductor_.Conmutador(cfg_);
  // The library's own log is Spanish; the road writes its own (LogUnrecognised).
  errors_log_ = settings.errors_log;
  traductor_.ArchivoListaExtensionesKXTDA(U16(settings.extensions));
  if (cfg_->Caso() == velqua::emCasoNortelNorstar0x32SMDR6) {
    gatherer_ = std::make_unique<CallGatherer>(cfg_->Separador());
  }
}

void Translation::Input(const std::string& name, const FechaHora& received, int64_t offset,
                        int64_t lines) {
  input_ = name;
  received_ = received;
  start_offset_ = offset;
  line_ = lines;
}

void Translation::Record(const std::u16string& record, int64_t offset) {
  RecordAt(record, offset, ++line_);
}

void Translation::RecordAt(const std::u16string& record, int64_t offset, int64_t line) {
  ++counts_.read;
  const int64_t number = line;
  ProgramClock& clock = *clock_;
  clock.Freeze();
  struct Thaw {
    ProgramClock& clock;
    ~Thaw() { clock.Thaw(); }
  } thaw{clock};
  const std::u16string* text = &record;
  ShapeOutcome outcome;
  if (form_.delimited) {
    outcome = ShapeDelimited(form_.fields, record, &shaped_);
    counts_.more_fields += outcome.more;
    counts_.fewer_fields += outcome.fewer;
    text = &shaped_;
  } else if (!form_.seconds_counts.empty()) {
    shaped_ = record;
    form_.RewriteCounts(&shaped_);
    text = &shaped_;
  }
  Row row;
  try {
    traductor_.LlamadaActual(*text);
    row = ReadRow(number);
    if (std::string reason = check_.Check(row, *text); !reason.empty()) {
      row = Row();
      row.number = number;
      row.error = std::move(reason);
      ++counts_.damaged;
      if (on_failure) on_failure(input_, row);
    }
    // A checked row: its date and time as printed are sound, so the start
    // and end computed from them are too; a field cut by its columns is
    // given whole.
    PlaceInTime(form_.printed_time, &row);
    if (!outcome.cut.empty()) Uncut(outcome.cut, &row);
    if (row.has_fields && !form_.extras.empty()) row.extras = CutExtras(form_.extras, *text);
  } catch (const velqua::Error& e) {
    row = Row();
    row.number = number;
    row.error = ErrorText(e);
    row.error_number = e.Number();
    row.error_source = U8(e.Source());
    row.error_description = U8(e.Description());
    ++counts_.failed;
    if (on_failure) on_failure(input_, row);
  }
  if (!row.has_fields) {
    if (!errors_log_.empty()) LogUnrecognised(*clock_, errors_log_, input_, row, record, utf8_);
    ++counts_.unrecognised;
    if (counts_.listed.size() < Counts::kListed) counts_.listed.push_back(number);
  }
  counts_.random_extensions += row.random_extension;
  row.offset = offset;
  row.text = record;
  row.input = input_;
  sink_.Write(row);
}

// The row of the record just written (the call data in Row's order), with
// what the switch did not print marked or derived rather than invented.
Row Translation::ReadRow(int64_t number) {
  const int32_t type = traductor_.TipoLlamadaDetectada();
  const int32_t attribute = traductor_.Atributo();
  if (type == velqua::emTradNoIdentificada) {
    Row row;  // no call data: the fields stay blank
    row.number = number;
    row.type = type;
    row.attribute = attribute;
    return row;
  }
  Row row(number, type, attribute, traductor_);
  row.printed = clock_->PrintedParts(traductor_, {row.day, row.month, row.year, row.time});
  if ((row.printed & kPrintedYear) == 0) row.year = YearReceived(row.month, row.day, received_);
  row.random_extension = ExtensionIsRandom(traductor_, *cfg_, row.extension);
  if (row.random_extension && blank_random_) row.extension.clear();
  return row;
}

bool Translation::Line(std::u16string_view line, int64_t offset) {
  ++line_;
  return Text(line, offset);
}

bool Translation::Text(std::u16string_view line, int64_t offset) {
  if (!form_.nul_ends_record) return Piece(line, offset);
  // Each NUL ends a record; an empty piece (a NUL then the line end) is none.
  // A piece's offset is its line's plus the characters before it: exact in
  // bytes for single-byte input, and in any input distinct for every record
  // and below the next line's.
  bool wrote = false;
  int64_t at = offset;
  for (size_t end; (end = line.find(u'\0')) != std::u16string_view::npos;) {
    wrote = Piece(line.substr(0, end), at) || wrote;
    line.remove_prefix(end + 1);
    if (offset >= 0) at += static_cast<int64_t>(end) + 1;
  }
  return Piece(line, at) || wrote;
}

bool Translation::Piece(std::u16string_view piece, int64_t offset) {
  // An empty line carries no record (the Norstar report ends with two).
  if (piece.empty()) return false;
  if (!form_.headings.empty() && form_.IsHeading(piece)) {
    ++counts_.headings;
    if (on_heading) on_heading(input_, piece, offset);
    return false;
  }
  if (holding_ && form_.IsContinuation(piece)) {
    form_.Join(piece, &held_);
    return false;
  }
  if (form_.continuation.empty()) return Emit(piece, offset, line_);
  // The record is complete when the next line is not one of its continuations.
  const bool wrote = FlushHeld();
  held_.assign(piece.data(), piece.size());
  held_offset_ = offset;
  held_line_ = line_;
  holding_ = true;
  return wrote;
}

bool Translation::FlushHeld() {
  if (!holding_) return false;
  holding_ = false;
  return Emit(held_, held_offset_, held_line_);
}

// A multi-line call is translated when the next one starts, with the offset
// of its first line.
bool Translation::Emit(std::u16string_view record, int64_t offset, int64_t line) {
  if (gatherer_ == nullptr) {
    record_.assign(record.data(), record.size());  // reuses the storage of the last one
    RecordAt(record_, offset, line);
    return true;
  }
  const int64_t closed_offset = call_offset_;
  const int64_t closed_line = call_line_;
  if (gatherer_->Add(record, &call_)) {
    call_open_ = true;
    call_offset_ = offset;
    call_line_ = line;
    RecordAt(call_, closed_offset, closed_line);
    return true;
  }
  if (!call_open_) {  // its first line: offsets are -1 when the input gives none
    call_open_ = true;
    call_offset_ = offset;
    call_line_ = line;
  }
  return false;
}

bool Translation::FinishCall() {
  if (gatherer_ == nullptr || !gatherer_->Finish(&call_)) return false;
  call_open_ = false;
  RecordAt(call_, std::exchange(call_offset_, -1), call_line_);
  return true;
}

bool Translation::LineBytes(std::string_view bytes, int64_t offset) {
  ++line_;
  if (bytes.empty()) return false;
  if (form_.seven_bit) {
    bytes_.assign(bytes.data(), bytes.size());
    for (char& c : bytes_) c = static_cast<char>(c & 0x7F);
    bytes = bytes_;
  }
  if (!Decode(bytes, utf8_, &text_) && counts_.invalid_utf8++ == 0 && on_invalid_utf8) {
    on_invalid_utf8(input_, line_);
  }
  // Plain fixed-column lines, the common case, go to the library as decoded.
  if (plain_) {
    RecordAt(text_, offset, line_);
    return true;
  }
  return Text(text_, offset);
}

void Translation::Lines(LineReader& reader, bool live) {
  std::string_view line;
  // A byte-order mark can only open an input, not a resumed one.
  bool first = reader.line_offset() == 0;
  while (reader.Next(&line)) {
    std::string_view bytes = line;
    if (first && utf8_ && bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
    first = false;
    const bool wrote = LineBytes(bytes, reader.line_offset());
    if (wrote && live) sink_.Flush();  // each row out as soon as it is complete
  }
  end_offset_ = reader.end_offset();
}

void Translation::Stream(std::FILE* stream, const std::string& follow) {
  if (!IsLive(stream, !follow.empty())) {
    LineReader reader(stream, start_offset_);
    Lines(reader, false);
    return;
  }
  LineReader::Live live;
  live.follow = follow;
  live.stop = stop;
  live.on_idle = [this] {
    const bool held = FlushHeld();
    if (FinishCall() || held) sink_.Flush();
  };
  LineReader reader(stream, std::move(live));
  Lines(reader, true);
}

void Translation::Finish() {
  FlushHeld();
  FinishCall();
  sink_.Flush();
}

// When the records of a file were received, for a switch that prints no
// year: 31 December of --year, else the file's modification time.
FechaHora ReceivedAt(const std::string& path, int32_t year) {
  if (year > 0) return FechaHora{year, 12, 31, 23, 59, 59};
  struct stat st {};
  if (path == "-" || ::stat(path.c_str(), &st) != 0) return ProgramNow();
  std::tm local{};
  const std::time_t when = st.st_mtime;
  localtime_r(&when, &local);
  return FechaHora{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                   local.tm_hour,        local.tm_min,     local.tm_sec};
}

}  // namespace velqua_records
