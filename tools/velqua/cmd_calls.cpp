#include "cmd_calls.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cli_common.h"
#include "velqua/records/mask.h"
#include "velqua/records/names.h"
#include "velqua/store/call_output.h"
#include "velqua/store/store.h"

namespace velqua_cli {
namespace {

// A call type by its word ("outgoing") or number ("2").
int32_t TypeNamed(const std::string& text) {
  for (int32_t v = 0; *CallTypeWord(v) != '\0'; ++v) {
    if (text == CallTypeWord(v) || text == std::to_string(v)) return v;
  }
  throw CliError("--type: unknown call type '" + text +
                 "': expected incoming, outgoing, internal, trunk-to-trunk, account-code, "
                 "transferred or a number from 1 to 6");
}

}  // namespace

void AddCallsCommand(CLI::App& app, CallsOptions& options) {
  CLI::App* cmd = app.add_subcommand("calls", "List the calls of the call store, by start time");
  cmd->add_option("--db", options.db, "Store: a SQLite file or postgresql://user@host:port/dbname")
      ->required();
  cmd->add_option("--from", options.from, "First day, YYYY-MM-DD (the switch's local time)");
  cmd->add_option("--to", options.to, "Last day, YYYY-MM-DD, included");
  cmd->add_option("--switch", options.switch_name, "Only the calls of this switch");
  cmd->add_option("--extension", options.extension, "Only the calls of this extension");
  cmd->add_option("--trunk", options.trunk, "Only the calls on this trunk");
  cmd->add_option("--type", options.type,
                  "Only calls of this type (incoming, outgoing, internal, trunk-to-trunk, "
                  "account-code, transferred, or the number)");
  cmd->add_option("--number", options.number, "Only calls whose dialled number starts so");
  cmd->add_option("--account", options.account, "Only calls with this account code");
  cmd->add_option("--limit", options.limit, "At most this many calls")
      ->check(CLI::NonNegativeNumber);
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
  if (!options.type.empty()) filter.type = TypeNamed(options.type);
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
