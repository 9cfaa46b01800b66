#include "velqua/capture/login_script.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velqua_capture {
namespace {

const std::vector<LoginStep> kPanasonic = {{"login:", "SMDR\r\n", Millis(1000)},
                                           {"Password:", "PCCSMDR\r\n", Millis(1000)}};

// The switch's replies arrive in pieces of every size; the script sends each
// answer once, in order, and the bytes after the last prompt are records.
TEST(LoginScript, PromptsInPiecesOfEverySize) {
  const std::string replies = "\r\nWelcome\r\nlogin: \r\nPassword: 01/19/26 08:02AM   201\r\n";
  for (size_t piece = 1; piece <= replies.size(); ++piece) {
    SCOPED_TRACE(piece);
    LoginScript script(kPanasonic);
    std::string sent = script.Start().send;
    std::string rest;
    bool done = false;
    for (size_t at = 0; at < replies.size(); at += piece) {
      const LoginScript::Progress p = script.Feed(std::string_view(replies).substr(at, piece));
      sent += p.send;
      done = done || p.done;
      rest += p.rest;
    }
    EXPECT_TRUE(done);
    EXPECT_EQ(sent, "SMDR\r\nPCCSMDR\r\n");
    EXPECT_EQ(rest, " 01/19/26 08:02AM   201\r\n");
  }
}

TEST(LoginScript, StepsInOrderLeadingSendsAndNoScript) {
  const struct {
    const char* name;
    std::vector<LoginStep> steps;
    std::string replies;
    const char* sent;
    bool done;
  } rows[] = {
      // clang-format off
      {"a password prompt before the login prompt waits for it", kPanasonic, "Password: login: ", "SMDR\r\n", false},
      {"a script that begins by sending", {{"", "HELLO\r\n", Millis(1)}, {"OK", "", Millis(1)}}, "OK", "HELLO\r\n", true},
      {"no script: done at once", {}, "", "", true},
      {"expected text split by a long noise", kPanasonic, "log" + std::string(10000, 'x') + "login:", "SMDR\r\n", false},
      // clang-format on
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    LoginScript script(row.steps);
    std::string sent = script.Start().send;
    sent += script.Feed(row.replies).send;
    EXPECT_EQ(sent, row.sent);
    EXPECT_EQ(script.done(), row.done);
  }
}

// With failure texts, the switch's answer to the last step decides: a
// refusal fails the login, whole or in pieces; the first line that is not
// one is a record; silence is settled by the caller.
TEST(LoginScript, ARefusalIsNeverTakenForARecord) {
  const std::vector<std::string> kFailures = {"Login incorrect", "Invalid"};
  const struct {
    const char* name;
    std::vector<std::string> pieces;
    const char* failed;  // "" = not failed
    bool done;
    const char* rest;
  } rows[] = {
      // clang-format off
      {"refused after the password", {"login: ", "Password: ", "\r\nLogin incorrect\r\n"}, "Login incorrect", false, ""},
      {"refusal in pieces", {"login: Password: \r\nLogin inc", "orrect"}, "Login incorrect", false, ""},
      {"refused before the password", {"login: ", "Invalid user\r\n"}, "Invalid", false, ""},
      {"a record after the password", {"login: Password: ", "\r\n", "01/19/26 08:02AM 201\r\n"}, "", true, " \r\n01/19/26 08:02AM 201\r\n"},
      {"a record not whole yet", {"login: Password: ", "01/19/26 08:02"}, "", false, ""},
      // clang-format on
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    LoginScript script(kPanasonic, kFailures);
    script.Start();
    LoginScript::Progress last;
    std::string rest;
    for (const std::string& piece : row.pieces) {
      last = script.Feed(piece);
      rest += last.rest;
      if (!last.failed.empty()) break;
    }
    EXPECT_EQ(last.failed, row.failed);
    EXPECT_EQ(script.done(), row.done);
    EXPECT_EQ(rest, row.rest);
  }
  // Silence after the last step: settled, with what came meanwhile.
  LoginScript quiet(kPanasonic, kFailures);
  quiet.Feed("login: Password: 01/19");
  EXPECT_TRUE(quiet.confirming());
  const LoginScript::Progress settled = quiet.Settle();
  EXPECT_TRUE(settled.done);
  EXPECT_EQ(settled.rest, " 01/19");
}

}  // namespace
}  // namespace velqua_capture
