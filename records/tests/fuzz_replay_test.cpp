// The record form's and the guess's fuzz corpora, replayed by every test run.
#include <filesystem>

#include "replay_corpus.h"
#include "targets.h"

namespace {

TEST(FuzzCorpusReplay, RecordFormAndGuessAcceptEverySavedInput) {
  const std::filesystem::path corpus(VELQUA_FUZZ_CORPUS);
  velqua_fuzz::ReplayCorpus(corpus / "record_form", velqua_fuzz_record_form::Run, 10);
  velqua_fuzz::ReplayCorpus(corpus / "guess", velqua_fuzz_guess::Run, 10);
}

}  // namespace
