// The web server's own parsers' fuzz corpora (fuzz/corpus/web_*), replayed
// by every test run: the Cookie header, Last-Event-ID, serve.toml and the
// Calls view's query string.
#include <filesystem>
#include <string>

#include "replay_corpus.h"
#include "targets.h"

namespace {

TEST(FuzzCorpusReplay, WebParsersAcceptOrRefuseEverySavedInput) {
  const std::filesystem::path corpus = std::string(VELQUA_SOURCE_DIR) + "/fuzz/corpus";
  velqua_fuzz::ReplayCorpus(corpus / "web_cookie", velqua_fuzz_web_cookie::Run, 4);
  velqua_fuzz::ReplayCorpus(corpus / "web_event_id", velqua_fuzz_web_event_id::Run, 5);
  velqua_fuzz::ReplayCorpus(corpus / "web_serve_config", velqua_fuzz_web_serve_config::Run, 4);
  velqua_fuzz::ReplayCorpus(corpus / "web_query", velqua_fuzz_web_query::Run, 4);
}

}  // namespace
