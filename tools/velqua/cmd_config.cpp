#include "cmd_config.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

#include "cli_common.h"
#include "velqua/cfg_conmut.h"
#include "velqua/records/bundled.h"
#include "velqua/records/check_reasons.h"
#include "velqua/records/config_io.h"
#include "velqua/records/names.h"
#include "velqua/records/record_reader.h"
#include "velqua/records/translation.h"
#include "velqua/texto.h"
#include "velqua/traductor.h"

namespace velqua_cli {
namespace {

using velqua::clsCfgConmut;

// One complete field or constant of a configuration, for listing.
struct Entry {
  bool constant = false;
  int32_t key = 0;
  std::string name;
  int pos = 0;
  int size = 0;
  std::string detail;  // type of a field, text of a constant
};

const char* TypeWordOrUndefined(int32_t tipo) {
  const char* word = TypeWord(tipo);
  return word != nullptr ? word : "undefined";
}

// The complete fields, then the complete constants, in key order. Restores
// the active keys.
std::vector<Entry> CompleteEntries(const clsCfgConmut& cfg) {
  std::vector<Entry> entries;
  for (const velqua::CampoDATO& f : cfg.ListaDATO()) {
    entries.push_back({false, f.emParam, EnumNameOf(EnumKind::kParamDato, f.emParam), f.btPos,
                       f.btTam, TypeWordOrUndefined(f.emTipo)});
  }
  for (const velqua::CampoCTE& c : cfg.ListaCTE()) {
    entries.push_back({true, c.emParam, EnumNameOf(EnumKind::kParamDatoConstante, c.emParam),
                       c.btPos, c.btTam, U8(c.cadTexto)});
  }
  return entries;
}

// "13 10 (\r\n)": the Windows-1252 codes and a readable escape form.
std::string SeparatorCodes(const std::u16string& separator) {
  if (separator.empty()) return "(none)";
  std::string codes, escaped;
  for (char16_t c : separator) {
    if (!codes.empty()) codes += ' ';
    codes += std::to_string(velqua::CodigoAnsi(c));
    switch (c) {
      case u'\r':
        escaped += "\\r";
        break;
      case u'\n':
        escaped += "\\n";
        break;
      case u'\t':
        escaped += "\\t";
        break;
      default:
        if (c < 0x20) {
          char esc[8];
          std::snprintf(esc, sizeof esc, "\\x%02X", static_cast<unsigned>(c));
          escaped += esc;
        } else {
          AppendUtf8(escaped, std::u16string(1, c));
        }
    }
  }
  return codes + " (\"" + escaped + "\")";
}

void ShowWiring(const clsCfgConmut& cfg) {
  struct Port {
    const char* name;
    velqua::emPuertoSerial port;
    int16_t last;
  };
  const Port ports[] = {{"RJ45", velqua::emPuertoRJ45, 9},
                        {"DB9", velqua::emPuertoDB9, 9},
                        {"DB25", velqua::emPuertoDB25, 25}};
  std::printf("Wiring (switch pin -> computer DB9 pin):\n");
  for (const Port& port : ports) {
    std::string pairs;
    for (int16_t pin = 1; pin <= port.last; ++pin) {
      for (int16_t pc = 1; pc <= 31; ++pc) {
        if (!cfg.PinesConectados(port.port, pin, pc)) continue;
        pairs += "  " + std::to_string(pin) + "->" + std::to_string(pc);
      }
    }
    std::printf("  %-5s%s\n", port.name, pairs.empty() ? "  (none)" : pairs.c_str());
  }
}

std::string Quoted(const std::u16string& text) {
  std::string out = "\"";
  AppendUtf8(out, text);
  return out + "\"";
}

// Prints `text` without trailing blanks, then a line end. A control
// character from a record is printed as its one-column picture (ESC as
// U+241B, DEL as U+2421, a C1 control as U+FFFD), so that the terminal does
// not act on it and the ruler above still stands over the right columns.
void PrintLine(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  std::string shown;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c < 0x20 || c == 0x7F) {
      AppendUtf8(shown, std::u16string(1, static_cast<char16_t>(c == 0x7F ? 0x2421 : 0x2400 + c)));
    } else if (c == 0xC2 && i + 1 < text.size() &&
               static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
               static_cast<unsigned char>(text[i + 1]) <= 0x9F) {
      AppendUtf8(shown, u"\uFFFD");
      ++i;
    } else {
      shown += text[i];
    }
  }
  std::printf("%s\n", shown.c_str());
}

// Prints the ruler, the record, and one marker line per field or constant,
// in column order.
void CheckRecord(const std::u16string& record, std::vector<Entry> entries,
                 velqua::clsTraductor* traductor) {
  std::stable_sort(entries.begin(), entries.end(),
                   [](const Entry& a, const Entry& b) { return a.pos < b.pos; });
  size_t width = std::max<size_t>(record.size(), 10);
  for (const Entry& e : entries) width = std::max(width, static_cast<size_t>(e.pos + e.size - 1));
  std::string tens = "    ", units = "    ";
  for (size_t col = 1; col <= width; ++col) {
    tens += col % 10 == 0 ? static_cast<char>('0' + col / 10 % 10) : ' ';
    units += static_cast<char>('0' + col % 10);
  }
  PrintLine(tens);
  PrintLine(units);
  std::string line = "    ";
  AppendUtf8(line, record);
  PrintLine(line);
  for (const Entry& e : entries) {
    const size_t start = static_cast<size_t>(e.pos - 1);
    std::string marks = "    " + std::string(start, ' ');
    marks.append(static_cast<size_t>(e.size), e.constant ? '~' : '^');
    marks.resize(width + 6, ' ');
    std::string cut = start < record.size()
                          ? Quoted(record.substr(start, static_cast<size_t>(e.size)))
                          : "(beyond the end of the line)";
    marks += e.name + " [" + Columns(e.pos, e.size) + "] " + cut;
    if (e.constant) {
      const bool match =
          traductor != nullptr &&
          traductor->HayConstanteLlamada(static_cast<velqua::emParamDatoConstante>(e.key));
      marks += std::string(match ? "  matches " : "  no match for ") + "\"" + e.detail + "\"";
    }
    PrintLine(marks);
  }
  if (traductor != nullptr) {
    std::printf("    => type %d %s, attribute %d %s\n", traductor->TipoLlamadaDetectada(),
                EnumNameOf(EnumKind::kTipoLlamada, traductor->TipoLlamadaDetectada()),
                traductor->Atributo(), EnumNameOf(EnumKind::kAtributo, traductor->Atributo()));
  }
}

// The delivery and the record form, when the configuration has them.
void ShowRecordForm(const SwitchConfig& config) {
  if (!config.delivery.empty()) std::printf("Delivery:   %s\n", config.delivery.c_str());
  const RecordForm& form = config.form;
  if (form.Plain()) return;
  std::printf("Records:    %s\n", form.Describe().c_str());
  if (form.delimited) {
    int width = 0;
    const std::vector<int> columns = ShapedColumns(form.fields, &width);
    std::printf("  separator \"%s\", quote \"%s\"; shaped line of %d columns:\n",
                U8(std::u16string(1, form.fields.separator)).c_str(),
                form.fields.quote == u'\0' ? "" : U8(std::u16string(1, form.fields.quote)).c_str(),
                width);
    for (size_t i = 0; i < form.fields.fields.size(); ++i) {
      const DelimitedField& field = form.fields.fields[i];
      const std::string where = field.width == 0 ? std::string("(not carried)")
                                                 : "[" + Columns(columns[i], field.width) + "]";
      std::printf("  %3zu %-32s %s%s\n", i + 1, field.name.c_str(), where.c_str(),
                  field.seconds ? " seconds as H:MM:SS" : "");
    }
  }
  for (const std::u16string& pattern : form.headings) {
    std::printf("  heading \"%s\"\n", U8(pattern).c_str());
  }
}

struct CheckedRecord {
  int64_t line;  // where it starts in the file
  std::u16string text;
};

// The records of a (small) sample file as the record form frames them, as
// translate reads them: each line, or each NUL-ended piece of it, with its
// continuation lines joined (past a page heading, to the record before it);
// a UTF-8 file's byte-order mark dropped. Headings stay, to be shown.
std::vector<CheckedRecord> ReadForCheck(const ConfigOptions& options, const RecordForm& form) {
  std::unique_ptr<std::FILE, FileCloser> f(OpenFile(options.records, "rb", "records"));
  LineReader reader(f.get());
  std::string line;
  std::vector<CheckedRecord> records;
  size_t last_record = 0;  // records[last_record - 1], the last one not a heading
  for (int64_t number = 1; reader.Next(&line); ++number) {
    if (number == 1 && options.encoding == "utf-8" && line.compare(0, 3, "\xEF\xBB\xBF") == 0) {
      line.erase(0, 3);
    }
    if (form.seven_bit) {
      for (char& c : line) c = static_cast<char>(c & 0x7F);
    }
    std::u16string text = DecodeLine(line, options.encoding);
    std::u16string_view rest = text;
    while (!rest.empty()) {
      const size_t end = form.nul_ends_record ? rest.find(u'\0') : std::u16string_view::npos;
      const std::u16string_view piece = rest.substr(0, end);
      rest.remove_prefix(end == std::u16string_view::npos ? rest.size() : end + 1);
      if (piece.empty()) continue;
      if (last_record > 0 && form.IsContinuation(piece)) {
        form.Join(piece, &records[last_record - 1].text);
      } else {
        records.push_back({number, std::u16string(piece)});
        if (!form.IsHeading(piece)) last_record = records.size();
      }
    }
  }
  return records;
}

// Keeps the reason of the one row a Record call writes.
struct LastRow : RowSink {
  std::string error;
  void Write(const Row& row) override { error = row.error; }
};

// Checks one record (one line, or one NUL-ended piece of it) of `check`.
void CheckPiece(const SwitchConfig& config, std::u16string_view piece,
                const std::vector<Entry>& entries, velqua::clsTraductor* traductor) {
  if (config.form.IsHeading(piece)) {
    std::printf("    page heading (skipped): ");
    PrintLine(U8(piece));
    return;
  }
  std::u16string record(piece);
  if (config.form.delimited) {
    std::printf("    record: ");
    PrintLine(U8(piece));
    const ShapeOutcome outcome = ShapeDelimited(config.form.fields, piece, &record);
    std::printf("    %zu field%s, %zu declared%s; shaped:\n", outcome.fields,
                outcome.fields == 1 ? "" : "s", config.form.fields.fields.size(),
                outcome.more    ? " (the extra ones ignored)"
                : outcome.fewer ? " (the missing ones blank)"
                                : "");
  }
  if (!config.form.delimited) config.form.RewriteCounts(&record);
  if (traductor) traductor->LlamadaActual(record);
  CheckRecord(record, entries, traductor);
  if (traductor && traductor->TipoLlamadaDetectada() == velqua::emTradNoIdentificada) {
    for (const std::string& why : UnrecognisedReasons(*config.cfg, *traductor, record))
      std::printf("    why: %s\n", why.c_str());
  }
}

}  // namespace

void AddConfigCommand(CLI::App& app, ConfigOptions& options) {
  CLI::App* config = app.add_subcommand("config", "Show, convert or check a configuration");
  config->require_subcommand(1);
  CLI::App* show = config->add_subcommand("show", "Print a configuration");
  show->add_option("CONFIG", options.config,
                   "Configuration (.cfg, .ini or .json), or a bundled switch's name")
      ->required();
  CLI::App* convert = config->add_subcommand(
      "convert", "Convert a configuration between .cfg, .ini and .json (by extension)");
  convert->add_option("IN", options.input, "Configuration to read")->required();
  convert->add_option("OUT", options.output, "Configuration to write")->required();
  convert->add_flag("--force", options.force,
                    "Write even when the output form cannot hold the whole configuration");
  CLI::App* check = config->add_subcommand(
      "check", "Show which columns each field and constant cuts from sample records");
  check
      ->add_option("CONFIG", options.config,
                   "Configuration (.cfg, .ini or .json), or a bundled switch's name")
      ->required();
  check->add_option("RECORDS", options.records, "Sample records, one a line")->required();
  AddEncodingOption(check, options.encoding);
  config->add_subcommand("keys",
                         "List the members and key names of the JSON form with their meaning");
}

int RunConfigShow(const ConfigOptions& options) {
  const SwitchConfig config = LoadSwitchConfig(ResolveConfig(options.config));
  const std::shared_ptr<clsCfgConmut>& cfg = config.cfg;
  const char* case_name = EnumNameOf(EnumKind::kCaso, cfg->Caso());
  std::printf("Brand:      %s\n", U8(cfg->Marca()).c_str());
  std::printf("Model:      %s\n", U8(cfg->Modelo()).c_str());
  std::printf("Version:    %s\n", U8(cfg->NombreVersion()).c_str());
  std::printf("Case:       %d %s\n", cfg->Caso(), case_name != nullptr ? case_name : "");
  const std::string english = KeyDescription(EnumKind::kCaso, cfg->Caso());
  std::printf("            %s\n", english.empty() ? "(no such handling case)" : english.c_str());
  if (Verbose()) {
    // The library's own (Spanish) name, which its documentation and hosts use.
    const std::string own = U8(cfg->NombreCaso());
    std::printf("            library's name: %s\n", own.empty() ? "(none)" : own.c_str());
  }
  std::printf("Separator:  %s\n", SeparatorCodes(cfg->Separador()).c_str());
  std::printf("Comments:   %s\n", U8(cfg->Comentarios()).c_str());
  ShowRecordForm(config);
  const std::vector<Entry> entries = CompleteEntries(*cfg);
  const auto fields =
      std::count_if(entries.begin(), entries.end(), [](const Entry& e) { return !e.constant; });
  std::printf("Fields (%ld):\n", static_cast<long>(fields));
  for (const Entry& e : entries) {
    if (e.constant) continue;
    std::printf("  %2d %-48s pos %3d size %3d  [%s] %s\n", e.key, e.name.c_str(), e.pos, e.size,
                Columns(e.pos, e.size).c_str(), e.detail.c_str());
  }
  std::printf("Constants (%ld):\n", static_cast<long>(entries.size()) - static_cast<long>(fields));
  for (const Entry& e : entries) {
    if (!e.constant) continue;
    std::printf("  %2d %-48s pos %3d size %3d  [%s] \"%s\"\n", e.key, e.name.c_str(), e.pos, e.size,
                Columns(e.pos, e.size).c_str(), e.detail.c_str());
  }
  ShowWiring(*cfg);
  return 0;
}

int RunConfigConvert(const ConfigOptions& options) {
  ConfigFormatOf(options.output);  // refuse a bad output name before reading
  SwitchConfig config = LoadSwitchConfig(ResolveConfig(options.input));
  SaveSwitchConfigChecked(config, options.output, options.force);
  return 0;
}

int RunConfigCheck(const ConfigOptions& options) {
  RequireReadableFile(options.records, "records");
  const SwitchConfig config = LoadSwitchConfig(ResolveConfig(options.config));
  const std::shared_ptr<clsCfgConmut>& cfg = config.cfg;
  const std::vector<Entry> entries = CompleteEntries(*cfg);
  // Detection is shown for single-line switches; a multi-line call's fields
  // lie on different lines of the call, so its lines are only measured.
  std::unique_ptr<velqua::clsTraductor> traductor;
  if (cfg->Caso() != velqua::emCasoNortelNorstar0x32SMDR6) {
    traductor = std::make_unique<velqua::clsTraductor>();
    traductor->Conmutador(cfg);
  }
  const std::vector<CheckedRecord> records = ReadForCheck(options, config.form);
  if (records.empty()) {
    throw CliError("records '" + options.records +
                   "': nothing to check (the file is empty or holds only empty lines)");
  }
  // A recognised record is also checked as translate checks it: a damaged
  // one (a date that does not exist, letters in a duration) is kept as
  // unrecognised, and the reason is shown here.
  LastRow last;
  Translation translation(cfg, last, {"", "", false, config.form});
  int64_t damaged = 0;
  for (const CheckedRecord& record : records) {
    std::printf("line %lld:\n", static_cast<long long>(record.line));
    try {
      CheckPiece(config, record.text, entries, traductor.get());
    } catch (const velqua::Error& e) {
      throw CliError("line " + std::to_string(record.line) + ": " + ShowError(e));
    }
    if (traductor && !config.form.IsHeading(record.text)) {
      translation.Record(record.text);
      if (!last.error.empty()) {
        std::printf("    damaged, kept as unrecognised: %s\n", last.error.c_str());
        ++damaged;
      }
    }
    std::printf("\n");
  }
  if (damaged > 0) {
    std::printf("%lld damaged record%s\n", static_cast<long long>(damaged),
                damaged == 1 ? "" : "s");
  }
  return 0;
}

}  // namespace velqua_cli
