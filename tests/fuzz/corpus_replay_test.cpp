// Every saved input of fuzz/corpus/<target> runs through that fuzz target, so
// the normal and the sanitizer test runs replay the corpora. A target reports a
// finding by aborting, as under libFuzzer.
#include <filesystem>

#include "replay_corpus.h"
#include "targets.h"

namespace {

TEST(FuzzCorpusReplay, EveryTargetAcceptsEverySavedInput) {
  const auto corpus = std::filesystem::path(VELQUA_TEST_DATA) / ".." / ".." / "fuzz" / "corpus";
  velqua_fuzz::ReplayCorpus(corpus / "abrir", velqua_fuzz_abrir::Ejecuta, 11);
  velqua_fuzz::ReplayCorpus(corpus / "importar", velqua_fuzz_importar::Ejecuta, 11);
  velqua_fuzz::ReplayCorpus(corpus / "lector", velqua_fuzz_lector::Ejecuta, 11);
  velqua_fuzz::ReplayCorpus(corpus / "traductor", velqua_fuzz_traductor::Ejecuta, 11);
}

}  // namespace
