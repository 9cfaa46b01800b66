// Fuzz target: a tcp-connect source's login script
// (velqua/capture/login_script.h) against any replies of a switch. The input
// is the script's expected texts and the replies, separated by NUL bytes;
// the first byte tells how many of the parts are expected texts (1 to 3) and
// the size of the pieces the replies arrive in. Invariants:
//  - the answers sent are the steps' answers in order, each once;
//  - once done, what the script gives as records is an end of the replies.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/capture/login_script.h"

namespace velqua_fuzz_login {

int Ejecuta(const uint8_t* datos, size_t tam) {
  if (tam == 0) return 0;
  const size_t steps = 1 + datos[0] % 3;
  const size_t piece = 1 + datos[0] / 3;
  std::vector<std::string> parts(1);
  for (size_t i = 1; i < tam; ++i) {
    if (datos[i] == 0 && parts.size() <= steps) {
      parts.emplace_back();
    } else {
      parts.back().push_back(static_cast<char>(datos[i]));
    }
  }
  std::vector<velqua_capture::LoginStep> script;
  std::string answers;
  for (size_t i = 0; i < steps && i + 1 < parts.size(); ++i) {
    const std::string send = "answer" + std::to_string(i) + "\r\n";
    script.push_back({parts[i], send, velqua_capture::Millis(1)});
    answers += send;
  }
  const std::string replies = parts.back();
  velqua_capture::LoginScript login(script);
  std::string sent = login.Start().send;
  std::string rest;
  bool done = false;
  for (size_t at = 0; at <= replies.size(); at += piece) {
    const auto p =
        login.Feed(std::string_view(replies).substr(std::min(at, replies.size()), piece));
    sent += p.send;
    rest += p.rest;
    done = done || p.done;
  }
  if (answers.compare(0, sent.size(), sent) != 0) {
    velqua_fuzz::Hallazgo("answers sent out of order or more than once");
  }
  if (done && (sent != answers || rest.size() > replies.size() ||
               replies.compare(replies.size() - rest.size(), rest.size(), rest) != 0)) {
    velqua_fuzz::Hallazgo("a finished login lost answers or records");
  }
  return 0;
}

}  // namespace velqua_fuzz_login
