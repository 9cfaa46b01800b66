#include "cmd_translate.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "cli_common.h"
#include "config_io.h"
#include "record_reader.h"
#include "row_writer.h"
#include "velqua/texto.h"
#include "velqua/traductor.h"

namespace velqua_cli {
namespace {

// At most this many unrecognised record numbers are listed at the end.
constexpr size_t kListedUnrecognised = 20;

struct Counts {
  int64_t read = 0;
  int64_t unrecognised = 0;
  std::vector<int64_t> listed;
};

// The row of the record just written (the call data in Row's order).
Row ReadRow(velqua::clsTraductor& t, int64_t number) {
  const int32_t type = t.TipoLlamadaDetectada();
  const int32_t attribute = t.Atributo();
  if (type != velqua::emTradNoIdentificada) return Row(number, type, attribute, t);
  Row row;  // no call data: the fields stay blank
  row.number = number;
  row.type = type;
  row.attribute = attribute;
  return row;
}

class Translation {
 public:
  Translation(velqua::clsTraductor& traductor, RowWriter& writer)
      : traductor_(traductor), writer_(writer) {}

  void Record(const std::u16string& record) {
    const int64_t number = ++counts_.read;
    const Row row = [&] {
      try {
        traductor_.LlamadaActual(record);
        return ReadRow(traductor_, number);
      } catch (const velqua::Error& e) {
        throw CliError("record " + std::to_string(number) + ": " + DescribeError(e));
      }
    }();
    if (!row.has_fields) {
      ++counts_.unrecognised;
      if (counts_.listed.size() < kListedUnrecognised) counts_.listed.push_back(number);
    }
    writer_.Write(row);
  }

  const Counts& counts() const { return counts_; }

 private:
  velqua::clsTraductor& traductor_;
  RowWriter& writer_;
  Counts counts_;
};

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

void TranslateStream(std::FILE* stream, bool utf8, CallGatherer* gatherer,
                     Translation& translation) {
  LineReader reader(stream);
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
    }
  }
}

void ReportCounts(const Counts& counts, const TranslateOptions& options) {
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
  std::fprintf(stderr, "velqua: %lld records read, %lld translated, %lld unrecognised\n",
               static_cast<long long>(counts.read),
               static_cast<long long>(counts.read - counts.unrecognised),
               static_cast<long long>(counts.unrecognised));
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
}

int RunTranslate(const TranslateOptions& options) {
  std::vector<std::string> inputs = options.inputs;
  if (inputs.empty()) inputs.push_back("-");
  for (const std::string& input : inputs) {
    if (input != "-") RequireReadableFile(input, "input");
  }
  if (!options.extensions.empty()) RequireReadableFile(options.extensions, "extension list");

  std::shared_ptr<velqua::clsCfgConmut> cfg = LoadConfig(options.config);
  velqua::clsTraductor traductor;
  traductor.Conmutador(cfg);
  traductor.ArchivoLlamadasError(U16(options.errors_log));
  traductor.ArchivoListaExtensionesKXTDA(U16(options.extensions));

  std::unique_ptr<CallGatherer> gatherer;
  if (cfg->Caso() == velqua::emCasoNortelNorstar0x32SMDR6) {
    gatherer = std::make_unique<CallGatherer>(cfg->Separador());
  }

  Output out(stdout);
  std::unique_ptr<RowWriter> writer = MakeRowWriter(ChooseFormat(options.format), out);
  Translation translation(traductor, *writer);
  const bool utf8 = options.encoding == "utf-8";
  for (const std::string& input : inputs) {
    if (input == "-") {
      TranslateStream(stdin, utf8, gatherer.get(), translation);
    } else {
      std::unique_ptr<std::FILE, FileCloser> f(OpenFile(input, "rb", "input"));
      TranslateStream(f.get(), utf8, gatherer.get(), translation);
    }
  }
  std::u16string call;
  if (gatherer && gatherer->Finish(&call)) translation.Record(call);
  writer->Finish();
  ReportCounts(translation.counts(), options);
  return 0;
}

}  // namespace velqua_cli
