// The tariff and directory readers' fuzz corpora, replayed by every test run.
#include <filesystem>
#include <string>

#include "replay_corpus.h"
#include "targets.h"

namespace {

TEST(FuzzCorpusReplay, TariffAndDirectoryReadersAcceptOrRefuseEverySavedInput) {
  const std::filesystem::path corpus = std::string(VELQUA_SOURCE_DIR) + "/fuzz/corpus";
  velqua_fuzz::ReplayCorpus(corpus / "tariff", velqua_fuzz_tariff::Ejecuta, 8);
  velqua_fuzz::ReplayCorpus(corpus / "directory", velqua_fuzz_directory::Ejecuta, 5);
}

}  // namespace
