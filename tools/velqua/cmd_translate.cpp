#include "cmd_translate.h"

#include <sys/stat.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cli_common.h"
#include "velqua/records/bundled.h"
#include "velqua/records/config_io.h"
#include "velqua/records/mask.h"
#include "velqua/records/row_writer.h"
#include "velqua/records/translation.h"

namespace velqua_cli {
namespace {

// Set by SIGINT and SIGTERM once StopOnSignals has run: a followed input
// then ends cleanly (its open call translated, the counts reported) instead
// of the program being killed.
volatile std::sig_atomic_t g_stop = 0;

void Stop(int) { g_stop = 1; }

void StopOnSignals() {
  struct sigaction action {};
  action.sa_handler = Stop;  // no SA_RESTART: a waiting poll returns
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool StopRequested() { return g_stop != 0; }

// Waits, as `tail -F` does, until `path` exists (a record file the switch's
// logger has not created yet), looking every 200 ms; false when SIGINT or
// SIGTERM came first.
bool WaitForFile(const std::string& path) {
  while (::access(path.c_str(), F_OK) != 0) {
    if (StopRequested()) return false;
    ::usleep(200 * 1000);
  }
  return true;
}

// At most this many failed records are reported one by one.
constexpr int64_t kReportedFailures = 20;

RowFormat ChooseFormat(const std::string& format) {
  if (format == "csv") return RowFormat::kCsv;
  if (format == "jsonl") return RowFormat::kJsonl;
  if (format == "table") return RowFormat::kTable;
  return ::isatty(::fileno(stdout)) ? RowFormat::kTable : RowFormat::kCsv;
}

// "velqua: 3 records had ...": a count of something the run met, when any.
void CountNote(int64_t count, const char* noun, const char* what) {
  if (count == 0) return;
  std::fprintf(stderr, "velqua: %lld %s%s %s\n", static_cast<long long>(count), noun,
               count == 1 ? "" : "s", what);
}

void ReportCounts(const Counts& counts, const TranslateOptions& options) {
  if (counts.failed + counts.damaged > kReportedFailures) {
    std::fprintf(stderr, "velqua: %lld more failed or damaged records not shown\n",
                 static_cast<long long>(counts.failed + counts.damaged - kReportedFailures));
  }
  if (counts.random_extensions > 0) {
    std::fprintf(stderr, "velqua: %s\n",
                 UnlistedAccountCodes(counts.random_extensions, options.random_extensions).c_str());
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
  CountNote(counts.headings, "page-heading line", "skipped");
  CountNote(counts.more_fields, "record",
            "had more fields than the configuration declares (the extra fields ignored)");
  CountNote(counts.fewer_fields, "record",
            "had fewer fields than the configuration declares (the missing fields blank)");
  std::string why;
  if (counts.failed > 0) why += ", " + std::to_string(counts.failed) + " failed with an error";
  if (counts.damaged > 0) why += ", " + std::to_string(counts.damaged) + " damaged";
  if (!why.empty()) why = " (" + why.substr(2) + ")";
  std::fprintf(stderr, "velqua: %lld record%s read, %lld translated, %lld unrecognised%s\n",
               static_cast<long long>(counts.read), counts.read == 1 ? "" : "s",
               static_cast<long long>(counts.read - counts.unrecognised),
               static_cast<long long>(counts.unrecognised), why.c_str());
}

// Whether records come from the input as they are written (a pipe, a
// terminal, a serial device), not from a file read to its end.
bool IsLiveInput(const std::string& input) {
  struct stat st {};
  const int done = input == "-" ? ::fstat(STDIN_FILENO, &st) : ::stat(input.c_str(), &st);
  return done == 0 && !S_ISREG(st.st_mode);
}

}  // namespace

std::string UnlistedAccountCodes(int64_t calls, bool drawn) {
  const std::string n = std::to_string(calls) + (calls == 1 ? " call" : " calls");
  if (drawn) {
    return n +
           " with an account code missing from the extension list: extension drawn at "
           "random (column extension_random)";
  }
  return n + " with an account code missing from the extension list: extension left blank, " +
         "account code kept (column extension_random; --random-extensions draws one)";
}

void AddRandomExtensionsFlag(CLI::App* cmd, bool& flag) {
  cmd->add_flag("--random-extensions", flag,
                "For an account code missing from the extension list, keep the extension the "
                "library draws at random (default: leave it blank)");
}

void AddTranslateCommand(CLI::App& app, TranslateOptions& options) {
  CLI::App* cmd = app.add_subcommand(
      "translate", "Translate call records (one a line) into call data, one row per record");
  cmd->add_option("-c,--config", options.config,
                  "Switch configuration (.cfg, .ini or .json), or a bundled switch's name")
      ->required();
  cmd->add_option("files", options.inputs,
                  "Record files, read in order (none or '-': standard input)");
  cmd->add_option("-f,--format", options.format,
                  "Output form (default: table on a terminal, csv otherwise)")
      ->check(CLI::IsMember({"table", "csv", "jsonl"}));
  AddEncodingOption(cmd, options.encoding);
  cmd->add_option("--errors", options.errors_log,
                  "Append unrecognised records to this log (ArchivoLlamadasError)");
  cmd->add_option("--extensions", options.extensions,
                  "KX-TDA account code to extension list (ArchivoListaExtensionesKXTDA)");
  AddRandomExtensionsFlag(cmd, options.random_extensions);
  cmd->add_option("--follow", options.follow,
                  "Follow a growing record file like tail -F (rotation and truncation "
                  "handled) until interrupted; rows come out as records complete");
  cmd->add_option("-o,--output", options.output, "Write the rows to this file (default: stdout)");
  AddMaskDigitsOption(cmd, options.mask_digits);
  cmd->add_option("--year", options.year,
                  "Year the records were received in, for switches that print no year "
                  "(default: each file's modification time; standard input: today)")
      ->check(CLI::Range(1, 9999));
}

int RunTranslate(const TranslateOptions& options) {
  std::vector<std::string> inputs = options.inputs;
  if (!options.follow.empty()) {
    if (!inputs.empty()) throw UsageError("--follow reads one file: give no other input");
    inputs.push_back(options.follow);
  }
  if (inputs.empty()) inputs.push_back("-");
  if (!options.follow.empty()) StopOnSignals();
  if (!options.follow.empty() && ::access(options.follow.c_str(), F_OK) != 0) {
    // As tail -F: a file not there yet (a logger starting later) is waited for.
    std::fprintf(stderr, "velqua: waiting for '%s' to appear\n", options.follow.c_str());
    if (!WaitForFile(options.follow)) return 0;
  }
  for (const std::string& input : inputs) {
    if (input != "-") RequireReadableInput(input, "input");
  }
  const std::string extensions =
      options.extensions.empty() ? BundledExtensionList(options.config) : options.extensions;
  if (!extensions.empty()) RequireReadableFile(extensions, "extension list");
  if (!options.errors_log.empty()) RequireAppendableFile(options.errors_log, "error log");

  SwitchConfig config = LoadSwitchConfig(ResolveConfig(options.config));
  std::unique_ptr<std::FILE, FileCloser> output_file;
  if (!options.output.empty()) {
    RequireAppendableFile(options.output, "output");  // names the reason first
    output_file.reset(OpenFile(options.output, "wb", "output"));
  }
  std::FILE* const output_stream = output_file ? output_file.get() : stdout;
  Output out(output_stream);
  std::unique_ptr<RowWriter> writer = MakeRowWriter(
      options.format.empty() && output_file ? RowFormat::kCsv : ChooseFormat(options.format), out,
      !options.follow.empty() || std::any_of(inputs.begin(), inputs.end(), IsLiveInput));
  velqua_records::MaskingSink masked(*writer, options.mask_digits);
  Translation translation(config.cfg, masked,
                          {options.errors_log, extensions, options.encoding == "utf-8", config.form,
                           !options.random_extensions});
  translation.stop = [] { return StopRequested(); };
  translation.on_failure = [](const std::string& input, const Row& row) {
    static int64_t reported = 0;
    if (++reported > kReportedFailures) return;
    // A library error in English or, with --verbose, in full; a damaged
    // record's reason as the check gives it.
    const std::string why = row.error_number == 0
                                ? row.error
                                : ShowError(velqua::Error(row.error_number, U16(row.error_source),
                                                          U16(row.error_description)));
    std::fprintf(stderr, "velqua: %s, record %lld: %s\n", input.c_str(),
                 static_cast<long long>(row.number), why.c_str());
  };
  translation.on_invalid_utf8 = [](const std::string& input, int64_t number) {
    std::fprintf(stderr,
                 "velqua: %s, record %lld: not valid UTF-8 (its bad bytes read as U+FFFD; later "
                 "ones not reported; is the input Windows-1252?)\n",
                 input.c_str(), static_cast<long long>(number));
  };
  for (const std::string& input : inputs) {
    translation.Input(input == "-" ? "standard input" : input, ReceivedAt(input, options.year));
    if (input == "-") {
      translation.Stream(stdin);
    } else {
      std::unique_ptr<std::FILE, FileCloser> f(OpenFile(input, "rb", "input"));
      translation.Stream(f.get(), options.follow);
    }
  }
  translation.Finish();
  if (output_file && std::fclose(output_file.release()) != 0) {
    throw CliError("cannot write output '" + options.output + "': " + std::strerror(errno));
  }
  ReportCounts(translation.counts(), options);
  const Counts& counts = translation.counts();
  return counts.failed + counts.damaged > 0 ? kExitRecordsFailed : 0;
}

}  // namespace velqua_cli
