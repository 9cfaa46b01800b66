#include "cmd_translate.h"

#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cli_common.h"
#include "config_io.h"
#include "program_clock.h"
#include "record_reader.h"
#include "row_writer.h"
#include "velqua/texto.h"
#include "velqua/traductor.h"

namespace velqua_cli {
namespace {

// At most this many unrecognised record numbers are listed at the end, and
// this many failed records reported one by one.
constexpr size_t kListedUnrecognised = 20;
constexpr int64_t kReportedFailures = 20;

struct Counts {
  int64_t read = 0;
  int64_t unrecognised = 0;  // failed records included
  int64_t failed = 0;
  int64_t random_extensions = 0;
  std::vector<int64_t> listed;
};

// Whether the extension of the record just read was drawn at random: in the
// account-code cases an outgoing call's code missing from the extension list
// gets a random extension, drawn anew at each read, while a listed one reads
// the same every time. Three equal reads leave one chance in 10^8 that a
// random extension passes for a listed one.
bool ExtensionIsRandom(velqua::clsTraductor& t, const velqua::clsCfgConmut& cfg,
                       const std::u16string& first) {
  const int32_t c = cfg.Caso();
  if (t.TipoLlamadaDetectada() != velqua::emTradSaliente ||
      (c != velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100 &&
       c != velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto)) {
    return false;
  }
  return t.Extension() != first || t.Extension() != first;
}

class Translation {
 public:
  Translation(velqua::clsTraductor& traductor, const velqua::clsCfgConmut& cfg, RowWriter& writer)
      : traductor_(traductor), cfg_(cfg), writer_(writer) {}

  // The input the next records come from, and when they were received.
  void Input(const std::string& name, const FechaHora& received) {
    input_ = name;
    received_ = received;
  }

  // Translates one record and writes its row. A record the library fails on
  // is reported and kept as an unrecognised row carrying the error; the run
  // goes on.
  void Record(const std::u16string& record) {
    const int64_t number = ++counts_.read;
    Row row;
    try {
      traductor_.LlamadaActual(record);
      row = ReadRow(number);
    } catch (const velqua::Error& e) {
      row = Row();
      row.number = number;
      row.error = DescribeError(e);
      if (++counts_.failed <= kReportedFailures) {
        std::fprintf(stderr, "velqua: %s, record %lld: %s\n", input_.c_str(),
                     static_cast<long long>(number), row.error.c_str());
      }
    }
    if (!row.has_fields) {
      ++counts_.unrecognised;
      if (counts_.listed.size() < kListedUnrecognised) counts_.listed.push_back(number);
    }
    counts_.random_extensions += row.random_extension;
    writer_.Write(row);
  }

  const Counts& counts() const { return counts_; }

 private:
  // The row of the record just written (the call data in Row's order), with
  // what the switch did not print marked or derived rather than invented.
  Row ReadRow(int64_t number) {
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
    row.printed = ProgramClock::Instance().PrintedParts(traductor_);
    if ((row.printed & kPrintedYear) == 0) row.year = YearReceived(row.month, row.day, received_);
    row.random_extension = ExtensionIsRandom(traductor_, cfg_, row.extension);
    return row;
  }

  velqua::clsTraductor& traductor_;
  const velqua::clsCfgConmut& cfg_;
  RowWriter& writer_;
  Counts counts_;
  std::string input_ = "standard input";
  FechaHora received_;
};

// When the records of a file were received, for a switch that prints no
// year: 31 December of --year, else the file's modification time.
FechaHora ReceivedAt(const std::string& path, int32_t year) {
  if (year > 0) return FechaHora{year, 12, 31, 23, 59, 59};
  struct stat st {};
  if (path == "-" || ::stat(path.c_str(), &st) != 0) return ProgramClock::Instance().Now();
  std::tm local{};
  const std::time_t when = st.st_mtime;
  localtime_r(&when, &local);
  return FechaHora{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                   local.tm_hour,        local.tm_min,     local.tm_sec};
}

RowFormat ChooseFormat(const std::string& format) {
  if (format == "csv") return RowFormat::kCsv;
  if (format == "jsonl") return RowFormat::kJsonl;
  if (format == "table") return RowFormat::kTable;
  return ::isatty(::fileno(stdout)) ? RowFormat::kTable : RowFormat::kCsv;
}

// Decodes a line into *text, reusing its storage: ASCII bytes directly (the
// common case: widened and tested in one pass, which the compiler
// vectorises), the rest from the first other byte through the library.
void Decode(std::string_view bytes, bool utf8, std::u16string* text) {
  const auto* __restrict p = reinterpret_cast<const unsigned char*>(bytes.data());
  const size_t n = bytes.size();
  text->resize(n);
  char16_t* __restrict out = text->data();
  unsigned char any = 0;
  for (size_t i = 0; i < n; ++i) {
    out[i] = p[i];
    any = static_cast<unsigned char>(any | p[i]);
  }
  if (any < 0x80) return;
  size_t i = 0;
  while (p[i] < 0x80) ++i;
  text->resize(i);
  *text += utf8 ? velqua::DesdeUtf8(bytes.substr(i)) : velqua::DesdeAnsi(bytes.substr(i));
}

// Set by SIGINT and SIGTERM while a file is followed: the run ends cleanly.
volatile std::sig_atomic_t g_stop = 0;

void StopFollowing(int) { g_stop = 1; }

void CatchStopSignals() {
  struct sigaction action {};
  action.sa_handler = StopFollowing;  // no SA_RESTART: a waiting poll returns
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

// Whether an input is live: anything but a regular file read to its end.
bool IsLive(std::FILE* stream, bool follow) {
  struct stat st {};
  return follow || (::fstat(::fileno(stream), &st) == 0 && !S_ISREG(st.st_mode));
}

void TranslateLines(LineReader& reader, bool utf8, CallGatherer* gatherer, Translation& translation,
                    RowWriter* live) {
  std::string_view line;
  std::u16string text;
  std::u16string call;
  bool first = true;
  while (reader.Next(&line)) {
    std::string_view bytes = line;
    if (first && utf8 && bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
    first = false;
    // An empty line carries no record (the Norstar report ends with two).
    if (bytes.empty()) continue;
    Decode(bytes, utf8, &text);
    if (gatherer == nullptr) {
      translation.Record(text);
    } else if (gatherer->Add(text, &call)) {
      translation.Record(call);
    } else {
      continue;
    }
    if (live != nullptr) live->Finish();  // each row out as soon as it is complete
  }
}

// Translates one input: a file read to its end in large blocks, or a live
// source (pipe, device, followed file) whose rows are written and flushed one
// by one, a multi-line call being closed by the next call or after 2 s of quiet.
void TranslateStream(std::FILE* stream, const std::string& follow, bool utf8,
                     CallGatherer* gatherer, Translation& translation, RowWriter& writer) {
  if (!IsLive(stream, !follow.empty())) {
    LineReader reader(stream);
    TranslateLines(reader, utf8, gatherer, translation, nullptr);
    return;
  }
  LineReader::Live live;
  live.follow = follow;
  live.stop = [] { return g_stop != 0; };
  live.on_idle = [&] {
    std::u16string call;
    if (gatherer != nullptr && gatherer->Finish(&call)) {
      translation.Record(call);
      writer.Finish();
    }
  };
  LineReader reader(stream, std::move(live));
  TranslateLines(reader, utf8, gatherer, translation, &writer);
}

void ReportCounts(const Counts& counts, const TranslateOptions& options) {
  if (counts.failed > kReportedFailures) {
    std::fprintf(stderr, "velqua: %lld more failed records not shown\n",
                 static_cast<long long>(counts.failed - kReportedFailures));
  }
  if (counts.random_extensions > 0) {
    std::fprintf(stderr,
                 "velqua: %lld extension%s drawn at random for account codes missing from the "
                 "extension list (column extension_random)\n",
                 static_cast<long long>(counts.random_extensions),
                 counts.random_extensions == 1 ? "" : "s");
  }
  if (counts.unrecognised > 0) {
    std::string list;
    for (int64_t n : counts.listed) list += (list.empty() ? "" : ", ") + std::to_string(n);
    if (counts.unrecognised > static_cast<int64_t>(counts.listed.size())) list += ", ...";
    std::fprintf(
        stderr, "velqua: %lld unrecognised record%s: %s%s\n",
        static_cast<long long>(counts.unrecognised), counts.unrecognised == 1 ? "" : "s",
        list.c_str(),
        options.errors_log.empty() ? "" : (" (logged to " + options.errors_log + ")").c_str());
  }
  std::fprintf(stderr, "velqua: %lld records read, %lld translated, %lld unrecognised%s\n",
               static_cast<long long>(counts.read),
               static_cast<long long>(counts.read - counts.unrecognised),
               static_cast<long long>(counts.unrecognised),
               counts.failed == 0
                   ? ""
                   : (" (" + std::to_string(counts.failed) + " failed with an error)").c_str());
}

}  // namespace

void AddTranslateCommand(CLI::App& app, TranslateOptions& options) {
  CLI::App* cmd = app.add_subcommand(
      "translate", "Translate call records (one a line) into call data, one row per record");
  cmd->add_option("-c,--config", options.config, "Switch configuration (.cfg, .ini or .json)")
      ->required();
  cmd->add_option("files", options.inputs,
                  "Record files, read in order (none or '-': standard input)");
  cmd->add_option("-f,--format", options.format,
                  "Output form (default: table on a terminal, csv otherwise)")
      ->check(CLI::IsMember({"table", "csv", "jsonl"}));
  cmd->add_option("--encoding", options.encoding, "Encoding of the records")
      ->check(CLI::IsMember({"windows-1252", "utf-8"}))
      ->capture_default_str();
  cmd->add_option("--errors", options.errors_log,
                  "Append unrecognised records to this log (ArchivoLlamadasError)");
  cmd->add_option("--extensions", options.extensions,
                  "KX-TDA account code to extension list (ArchivoListaExtensionesKXTDA)");
  cmd->add_option("--follow", options.follow,
                  "Follow a growing record file like tail -F (rotation and truncation "
                  "handled) until interrupted; rows come out as records complete");
  cmd->add_option("-o,--output", options.output, "Write the rows to this file (default: stdout)");
  cmd->add_option("--year", options.year,
                  "Year the records were received in, for switches that print no year "
                  "(default: each file's modification time; standard input: today)")
      ->check(CLI::Range(1, 9999));
}

int RunTranslate(const TranslateOptions& options) {
  std::vector<std::string> inputs = options.inputs;
  if (!options.follow.empty()) {
    if (!inputs.empty()) throw CliError("--follow reads one file: give no other input");
    inputs.push_back(options.follow);
  }
  if (inputs.empty()) inputs.push_back("-");
  for (const std::string& input : inputs) {
    if (input != "-") RequireReadableInput(input, "input");
  }
  if (!options.extensions.empty()) RequireReadableFile(options.extensions, "extension list");
  if (!options.errors_log.empty()) RequireAppendableFile(options.errors_log, "error log");

  std::shared_ptr<velqua::clsCfgConmut> cfg = LoadConfig(options.config);
  velqua::clsTraductor traductor;
  traductor.Conmutador(cfg);
  traductor.ArchivoLlamadasError(U16(options.errors_log));
  traductor.ArchivoListaExtensionesKXTDA(U16(options.extensions));

  std::unique_ptr<CallGatherer> gatherer;
  if (cfg->Caso() == velqua::emCasoNortelNorstar0x32SMDR6) {
    gatherer = std::make_unique<CallGatherer>(cfg->Separador());
  }

  std::unique_ptr<std::FILE, FileCloser> output_file;
  if (!options.output.empty()) {
    RequireAppendableFile(options.output, "output");  // names the reason first
    output_file.reset(OpenFile(options.output, "wb", "output"));
  }
  std::FILE* const output_stream = output_file ? output_file.get() : stdout;
  Output out(output_stream);
  std::unique_ptr<RowWriter> writer = MakeRowWriter(
      options.format.empty() && output_file ? RowFormat::kCsv : ChooseFormat(options.format), out);
  if (!options.follow.empty()) CatchStopSignals();
  Translation translation(traductor, *cfg, *writer);
  const bool utf8 = options.encoding == "utf-8";
  for (const std::string& input : inputs) {
    translation.Input(input == "-" ? "standard input" : input, ReceivedAt(input, options.year));
    if (input == "-") {
      TranslateStream(stdin, "", utf8, gatherer.get(), translation, *writer);
    } else {
      std::unique_ptr<std::FILE, FileCloser> f(OpenFile(input, "rb", "input"));
      TranslateStream(f.get(), options.follow, utf8, gatherer.get(), translation, *writer);
    }
  }
  std::u16string call;
  if (gatherer && gatherer->Finish(&call)) translation.Record(call);
  writer->Finish();
  if (output_file && std::fclose(output_file.release()) != 0) {
    throw CliError("cannot write output '" + options.output + "': " + std::strerror(errno));
  }
  ReportCounts(translation.counts(), options);
  return translation.counts().failed > 0 ? kExitRecordsFailed : 0;
}

}  // namespace velqua_cli
