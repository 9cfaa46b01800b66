// The framer's, the login script's and the capture configuration's fuzz
// corpora, replayed by every test run.
#include <filesystem>
#include <string>

#include "replay_corpus.h"
#include "targets.h"

namespace {

TEST(FuzzCorpusReplay, CaptureTargetsAcceptEverySavedInput) {
  const std::filesystem::path corpus = std::string(VELQUA_SOURCE_DIR) + "/fuzz/corpus";
  velqua_fuzz::ReplayCorpus(corpus / "framer", velqua_fuzz_framer::Ejecuta, 5);
  velqua_fuzz::ReplayCorpus(corpus / "login", velqua_fuzz_login::Ejecuta, 5);
  velqua_fuzz::ReplayCorpus(corpus / "capture_config", velqua_fuzz_capture_config::Ejecuta, 5);
}

}  // namespace
