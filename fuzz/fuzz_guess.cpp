// Fuzz target: the layout guess of velqua_records (velqua/records/guess.h)
// on arbitrary sample lines (split at LF, decoded from Windows-1252).
// Invariants checked:
//  - the draft is always a configuration the JSON form accepts;
//  - scored against its own draft, the guess finds every field the draft
//    holds (its positions and the form they are read through agree).
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/cfg_conmut.h"
#include "velqua/records/common.h"
#include "velqua/records/config_json.h"
#include "velqua/records/guess.h"

namespace velqua_fuzz_guess {

int Run(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), std::min<size_t>(size, 20000));
  std::vector<std::u16string> lines;
  for (size_t at = 0; at < input.size() && lines.size() < 200;) {
    const size_t next = std::min(input.find('\n', at), input.size());
    if (next > at) lines.push_back(velqua::DesdeAnsi(input.substr(at, next - at)));
    at = next + 1;
  }
  const velqua_records::Guess guess = velqua_records::GuessLayout(lines);
  const std::string draft = velqua_records::GuessToJson(guess, "Fuzz", "draft");
  velqua::clsCfgConmut cfg;
  velqua_records::RecordForm form;
  std::string delivery;
  try {
    velqua_records::SwitchConfigFromJson(draft, cfg, &form, &delivery);
  } catch (const velqua_records::Failure& e) {
    std::fprintf(stderr, "%s\n%s\n", e.what(), draft.c_str());
    velqua_fuzz::Hallazgo("the draft is not a valid configuration");
  }
  const velqua_records::GuessScore score = velqua_records::ScoreGuess(guess, draft);
  if (score.found != score.total) velqua_fuzz::Hallazgo("the guess misses fields of its own draft");
  return 0;
}

}  // namespace velqua_fuzz_guess
