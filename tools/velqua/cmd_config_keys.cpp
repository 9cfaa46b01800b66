// `velqua config keys`: every member and key name of the JSON form of a
// configuration with what it means, so that a configuration can be written by
// hand without the library's headers at hand.
#include <cstdio>
#include <string>

#include "cli_common.h"
#include "cmd_config.h"
#include "velqua/enums.h"
#include "velqua/records/names.h"

namespace velqua_cli {
namespace {

void PrintMembers() {
  static const char* const kMembers[][2] = {
      {"brand", "the switch's brand, at most 50 characters"},
      {"model", "the switch's model, at most 50 characters"},
      {"case", "the handling case, by name or number (below)"},
      {"separator", "the text that joins the lines of one multi-line call, at most 10 characters"},
      {"comments", "free text, at most 250 characters"},
      {"fields",
       "data fields by key (below): {\"pos\": 1-255, \"size\": 1-255, \"type\": "
       "\"numeric\" | \"string\" | \"constant\"}"},
      {"constants",
       "identifying texts by key (below): {\"pos\": 1-255, \"text\": 1-20 "
       "characters, \"size\" only when it differs from the text's length}"},
      {"wiring", "per port \"rj45\", \"db9\", \"db25\": [switchPin, computerPin] pairs"},
  };
  std::printf("Members (all optional):\n");
  for (const auto& member : kMembers) std::printf("  %-10s %s\n", member[0], member[1]);
}

// One line per member of an enumeration between `first` and `last`
// (inclusive) that has a description.
void PrintKeys(const char* title, EnumKind kind, int32_t first, int32_t last) {
  std::printf("\n%s:\n", title);
  for (int32_t value = first; value <= last; ++value) {
    const std::string words = KeyDescription(kind, value);
    if (words.empty()) continue;
    std::printf("  %2d %-50s %s\n", value, EnumNameOf(kind, value), words.c_str());
  }
}

}  // namespace

int RunConfigKeys() {
  PrintMembers();
  PrintKeys("Handling cases (\"case\")", EnumKind::kCaso, velqua::emNoCaso, velqua::emCasoAD_TES);
  PrintKeys("Data fields (\"fields\")", EnumKind::kParamDato, velqua::emPrimerParamDato + 1,
            velqua::emUltimoParamDato - 1);
  PrintKeys("Identifying constants (\"constants\")", EnumKind::kParamDatoConstante,
            velqua::emPrimerParamDatoConstante + 1, velqua::emUltimoParamDatoConstante - 1);
  return 0;
}

}  // namespace velqua_cli
