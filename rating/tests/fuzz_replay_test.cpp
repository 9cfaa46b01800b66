// The tariff reader's fuzz corpus, replayed by every test run.
#include <filesystem>
#include <string>

#define VELQUA_FUZZ_SIN_ENTRADA
#include "../../fuzz/fuzz_tariff.cpp"
#include "../../fuzz/replay_corpus.h"

namespace {

TEST(FuzzCorpusReplay, TariffReaderAcceptsOrRefusesEverySavedInput) {
  const std::filesystem::path corpus = std::string(VELQUA_SOURCE_DIR) + "/fuzz/corpus";
  velqua_fuzz::ReplayCorpus(corpus / "tariff", velqua_fuzz_tariff::Ejecuta, 8);
}

}  // namespace
