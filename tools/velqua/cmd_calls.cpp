#include "cmd_calls.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cli_common.h"
#include "velqua/enums.h"
#include "velqua/records/mask.h"
#include "velqua/records/names.h"
#include "velqua/store/call_output.h"
#include "velqua/store/store.h"

namespace velqua_cli {
namespace {

// The calls --type names: a call type by its word ("outgoing") or number
// ("2"), or "unanswered", which the records give as a call's attribute rather
// than its type (an unanswered incoming call is of type incoming).
constexpr int32_t kUnanswered = -1;

int32_t TypeNamed(const std::string& text) {
  if (text == AttributeWord(velqua::emATRNoContestada)) return kUnanswered;
  for (int32_t v = 1; *CallTypeWord(v) != '\0'; ++v) {
    if (text == CallTypeWord(v) || text == std::to_string(v)) return v;
  }
  throw CLI::ValidationError("unknown call type '" + text +
                             "': expected incoming, outgoing, internal, trunk-to-trunk, "
                             "account-code, transferred, unanswered or a number from 1 to 6");
}

// A day as --from and --to take it: YYYY-MM-DD, a day of the calendar.
std::string CheckDay(const std::string& text) {
  int year = 0, month = 0, day = 0;
  char extra = 0;
  if (text.size() == 10 &&
      std::sscanf(text.c_str(), "%4d-%2d-%2d%c", &year, &month, &day, &extra) == 3 && month >= 1 &&
      month <= 12 && day >= 1) {
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (day <= kDays[month - 1] + (month == 2 && leap ? 1 : 0)) return "";
  }
  return "expected a date YYYY-MM-DD, got '" + text + "'";
}

// A count that cannot be negative (--limit, --min-duration).
std::string CheckNotNegative(const std::string& text) {
  int64_t value = 0;
  char extra = 0;
  if (std::sscanf(text.c_str(), "%" SCNd64 "%c", &value, &extra) == 1 && value >= 0) return "";
  return "expected a whole number, 0 or more, got '" + text + "'";
}

}  // namespace

void AddCallsCommand(CLI::App& app, CallsOptions& options) {
  CLI::App* cmd = app.add_subcommand("calls", "List the calls of the call store, by start time");
  cmd->add_option("--db", options.db, "Store: a SQLite file or postgresql://user@host:port/dbname")
      ->required();
  cmd->add_option("--from", options.from, "First day, YYYY-MM-DD (the switch's local time)")
      ->check(CheckDay, "DAY");
  cmd->add_option("--to", options.to, "Last day, YYYY-MM-DD, included")->check(CheckDay, "DAY");
  cmd->add_option("--switch", options.switch_name, "Only the calls of this switch");
  cmd->add_option("--extension", options.extension, "Only the calls of this extension");
  cmd->add_option("--trunk", options.trunk, "Only the calls on this trunk");
  cmd->add_option("--type", options.type,
                  "Only calls of this type (incoming, outgoing, internal, trunk-to-trunk, "
                  "account-code, transferred, or the number), or unanswered calls")
      ->check([](const std::string& text) { return (TypeNamed(text), std::string()); });
  cmd->add_option("--min-duration", options.min_duration,
                  "Only calls that lasted at least this many seconds")
      ->check(CheckNotNegative, "SECONDS");
  cmd->add_option("--number", options.number, "Only calls whose dialled number starts so");
  cmd->add_option("--account", options.account, "Only calls with this account code");
  cmd->add_option("--limit", options.limit, "At most this many calls (0: all)")
      ->check(CheckNotNegative, "N");
  cmd->add_option("-f,--format", options.format,
                  "Output form (default: table on a terminal, csv otherwise); cdr-csv: the "
                  "columns of Asterisk's Master.csv")
      ->check(CLI::IsMember({"table", "csv", "jsonl", "cdr-csv"}));
  cmd->add_option("-o,--output", options.output, "Write to this file (default: stdout)");
  AddMaskDigitsOption(cmd, options.mask_digits);
  cmd->add_flag("--unrecognised", options.unrecognised,
                "List the records kept as unrecognised instead (source, position, reason, raw "
                "text), filtered by --switch and --limit only");
}

namespace {

// The records of `--unrecognised`: no call field to filter on.
void ListUnrecognised(const CallsOptions& options, velqua_store::Store& store,
                      velqua_store::CallFormat format, std::FILE* out) {
  if (!options.from.empty() || !options.to.empty() || !options.extension.empty() ||
      !options.trunk.empty() || !options.type.empty() || !options.number.empty() ||
      !options.account.empty()) {
    throw CliError(
        "--unrecognised lists records that are no calls: filter by --switch and "
        "--limit only");
  }
  if (format == velqua_store::CallFormat::kCdrCsv) {
    throw CliError("--unrecognised: cdr-csv holds calls only; use table, csv or jsonl");
  }
  std::unique_ptr<velqua_store::UnrecognisedWriter> writer =
      velqua_store::MakeUnrecognisedWriter(format, out);
  store.ListUnrecognised(options.switch_name, options.limit,
                         [&](const velqua_store::StoredUnrecognised& u) { writer->Write(u); });
  writer->Finish();
}

}  // namespace

int RunCalls(const CallsOptions& options) {
  velqua_store::CallFilter filter;
  filter.from = options.from;
  filter.to = options.to;
  filter.switch_name = options.switch_name;
  filter.extension = options.extension;
  filter.trunk = options.trunk;
  if (!options.type.empty()) {
    const int32_t type = TypeNamed(options.type);
    if (type == kUnanswered) {
      filter.attribute = velqua::emATRNoContestada;
    } else {
      filter.type = type;
    }
  }
  if (options.min_duration >= 0) filter.min_duration = options.min_duration;
  filter.number_prefix = options.number;
  filter.account_code = options.account;
  filter.limit = options.limit;
  std::unique_ptr<velqua_store::Store> store = velqua_store::OpenStore(options.db, false);
  std::unique_ptr<std::FILE, FileCloser> file;
  if (!options.output.empty()) file.reset(OpenFile(options.output, "wb", "output"));
  std::FILE* out = file ? file.get() : stdout;
  std::string format = options.format;
  if (format.empty()) format = !file && ::isatty(::fileno(stdout)) ? "table" : "csv";
  if (options.unrecognised) {
    ListUnrecognised(options, *store, velqua_store::CallFormatNamed(format), out);
  } else {
    std::unique_ptr<velqua_store::CallWriter> writer =
        velqua_store::MakeCallWriter(velqua_store::CallFormatNamed(format), out);
    store->ListCalls(filter, [&](const velqua_store::StoredCall& call) {
      if (options.mask_digits == 0 || !call.dialled) return writer->Write(call);
      velqua_store::StoredCall masked = call;
      masked.dialled = velqua_records::MaskDigits(*call.dialled, options.mask_digits);
      masked.raw = velqua_records::MaskNumberIn(call.raw, *call.dialled, options.mask_digits);
      writer->Write(masked);
    });
    writer->Finish();
  }
  if (file && std::fclose(file.release()) != 0) {
    throw CliError("cannot write output '" + options.output + "': " + std::strerror(errno));
  }
  return 0;
}

}  // namespace velqua_cli
