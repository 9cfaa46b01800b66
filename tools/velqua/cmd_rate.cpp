#include "cmd_rate.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "cli_common.h"
#include "velqua/store/call_output.h"
#include "velqua/store/store.h"

namespace velqua_cli {

void AddRateCommand(CLI::App& app, RateOptions& options) {
  CLI::App* cmd = app.add_subcommand(
      "rate", "Price the stored calls of a period (again) with the store's rating plan");
  cmd->add_option("--db", options.db, "Store: a SQLite file or postgresql://user@host:port/dbname")
      ->required();
  cmd->add_option("--plan", options.plan,
                  "Check this rating plan and its tariffs and keep them in the store first: "
                  "from then on import and capture price every call they store");
  cmd->add_option("--from", options.from, "First day, YYYY-MM-DD (the switch's local time)");
  cmd->add_option("--to", options.to, "Last day, YYYY-MM-DD, included");
  cmd->add_option("--switch", options.switch_name, "Only the calls of this switch");
  cmd->add_option("--batch", options.batch, "Calls a transaction")->check(CLI::PositiveNumber);
  cmd->add_flag("--unpriced", options.unpriced,
                "List the period's calls that could not be priced, with the reason");
  cmd->add_option("-f,--format", options.format, "Form of the --unpriced list")
      ->check(CLI::IsMember({"table", "csv", "jsonl"}));
  cmd->add_option("-o,--output", options.output, "Write the list to this file (default: stdout)");
}

namespace {

int ListUnpriced(velqua_store::Store& store, const RateOptions& options) {
  velqua_store::CallFilter filter;
  filter.from = options.from;
  filter.to = options.to;
  filter.switch_name = options.switch_name;
  filter.unpriced = true;
  std::unique_ptr<std::FILE, FileCloser> file;
  if (!options.output.empty()) file.reset(OpenFile(options.output, "wb", "output"));
  std::FILE* out = file ? file.get() : stdout;
  std::string format = options.format;
  if (format.empty()) format = !file && ::isatty(::fileno(stdout)) ? "table" : "csv";
  auto writer = velqua_store::MakeCallWriter(velqua_store::CallFormatNamed(format), out);
  int64_t n = 0;
  store.ListCalls(filter, [&](const velqua_store::StoredCall& call) {
    writer->Write(call);
    ++n;
  });
  writer->Finish();
  if (file && std::fclose(file.release()) != 0) {
    throw CliError("cannot write output '" + options.output + "'");
  }
  std::fprintf(stderr, "velqua: %lld unpriced calls\n", static_cast<long long>(n));
  return 0;
}

}  // namespace

int RunRate(const RateOptions& options) {
  // A plan may come before any call: then import and capture price from the first one.
  std::unique_ptr<velqua_store::Store> store =
      velqua_store::OpenStore(options.db, !options.plan.empty());
  if (!options.plan.empty()) {
    const int64_t tariffs = store->PutRatingPlan(options.plan);
    std::fprintf(stderr, "velqua: rating plan '%s' and %lld tariffs kept in the store\n",
                 options.plan.c_str(), static_cast<long long>(tariffs));
  }
  if (options.unpriced) return ListUnpriced(*store, options);
  velqua_store::RatePeriod period;
  period.from = options.from;
  period.to = options.to;
  period.switch_name = options.switch_name;
  period.batch = options.batch;
  const auto result = store->Rate(period);
  std::fprintf(stderr, "velqua: %s%lld calls priced, %lld at no cost, %lld unpriced%s\n",
               result.resumed ? "resumed: " : "", static_cast<long long>(result.priced),
               static_cast<long long>(result.free), static_cast<long long>(result.unpriced),
               result.unpriced > 0 ? " (velqua rate --unpriced lists them)" : "");
  return 0;
}

}  // namespace velqua_cli
