#include "cmd_guess.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <vector>

#include "cli_common.h"
#include "velqua/records/bundled.h"
#include "velqua/records/guess.h"
#include "velqua/records/names.h"
#include "velqua/records/record_reader.h"
#include "velqua/texto.h"

namespace velqua_cli {
namespace {

// A sample beyond this many lines adds no evidence worth its time.
constexpr size_t kMaxSampleLines = 5000;

std::vector<std::u16string> ReadSample(const GuessOptions& options) {
  RequireReadableFile(options.records, "records");
  std::unique_ptr<std::FILE, FileCloser> f(OpenFile(options.records, "rb", "records"));
  LineReader reader(f.get());
  std::string line;
  std::vector<std::u16string> lines;
  while (lines.size() < kMaxSampleLines && reader.Next(&line)) {
    if (line.empty()) continue;
    lines.push_back(DecodeLine(line, options.encoding));
  }
  return lines;
}

void PrintEvidence(const Guess& guess) {
  std::fprintf(stderr, "velqua: %d sample records", guess.samples);
  if (!guess.form.Plain()) std::fprintf(stderr, "; %s", guess.form.Describe().c_str());
  std::fprintf(stderr, "\n");
  for (const GuessedField& field : guess.fields) {
    std::fprintf(stderr, "  %-32s %3d-%-3d %s\n", DatumWords(field.datum), field.pos,
                 field.pos + field.size - 1, field.evidence.c_str());
  }
  for (const GuessedMark& mark : guess.marks) {
    const char* name = EnumNameOf(EnumKind::kParamDatoConstante, mark.key);
    std::fprintf(stderr, "  mark %-27s %3d     \"%s\": %s\n", name != nullptr ? name : "?",
                 mark.pos, U8(mark.text).c_str(), mark.evidence.c_str());
  }
  for (const std::string& note : guess.notes)
    std::fprintf(stderr, "  left out: %s\n", note.c_str());
}

}  // namespace

void AddGuessCommand(CLI::App& config, GuessOptions& options) {
  CLI::App* guess = config.add_subcommand(
      "guess", "Propose a draft configuration (JSON form) from sample records");
  guess->add_option("RECORDS", options.records, "Sample records, one a line")->required();
  guess->add_option("--brand", options.brand, "Brand of the draft")->capture_default_str();
  guess->add_option("--model", options.model, "Model of the draft")->capture_default_str();
  AddEncodingOption(guess, options.encoding);
  guess->add_option("-o,--output", options.output,
                    "Write the draft to this file (default: stdout)");
  guess->add_option("--compare", options.compare,
                    "Print how many fields of this known configuration (or bundled switch) the "
                    "draft found exactly, instead of the draft");
}

int RunConfigGuess(const GuessOptions& options) {
  const std::string known = options.compare.empty()
                                ? std::string()
                                : ReadWholeFile(ResolveConfig(options.compare), "configuration");
  const Guess guess = GuessLayout(ReadSample(options));
  PrintEvidence(guess);
  if (!known.empty()) {
    const GuessScore score = ScoreGuess(guess, known);
    std::printf("%d of %d fields found exactly\n", score.found, score.total);
    if (score.by_rule > 0) std::printf("%d more read by rule, not scored\n", score.by_rule);
    for (const std::string& missed : score.missed) std::printf("  missed %s\n", missed.c_str());
    return 0;
  }
  const std::string json = GuessToJson(guess, options.brand, options.model);
  std::unique_ptr<std::FILE, FileCloser> out;
  if (!options.output.empty()) out.reset(OpenFile(options.output, "wb", "output"));
  std::FILE* stream = out ? out.get() : stdout;
  if (std::fwrite(json.data(), 1, json.size(), stream) != json.size() || std::fflush(stream) != 0) {
    throw CliError("cannot write the draft to '" +
                   (options.output.empty() ? std::string("standard output") : options.output) +
                   "'");
  }
  return 0;
}

}  // namespace velqua_cli
