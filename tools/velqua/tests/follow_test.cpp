// `velqua translate --follow` as a user runs it on a switch's log (a real
// child process): a file that does not exist yet is waited for, as tail -F
// does, and a live table keeps its columns as rows arrive one at a time.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "capture_test.h"

extern char** environ;

namespace velqua_cli {
namespace {

using velqua_capture_test::ReadFile;

bool WaitFor(const std::function<bool()>& done) {
  return velqua_capture_test::WaitFor(done, std::chrono::seconds(30));  // a loaded machine
}

// The program following `log` with `format`, its output and errors in files.
class Follower {
 public:
  Follower(const std::string& name, const std::string& format)
      : dir_(velqua_capture_test::TempDir("follow-" + name)) {
    std::vector<std::string> args = {VELQUA_PROGRAM, "--now", "2026-03-10 09:00:00",
                                     "translate",    "-c",    "hicom",
                                     "--format",     format,  "--follow",
                                     log()};
    std::vector<char*> argv;
    for (std::string& a : args) argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, out().c_str(), O_WRONLY | O_CREAT, 0644);
    posix_spawn_file_actions_addopen(&actions, 2, err().c_str(), O_WRONLY | O_CREAT, 0644);
    EXPECT_EQ(posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
  }
  ~Follower() {
    if (pid_ > 0) Stop();
  }

  std::string log() const { return dir_ + "/smdr.log"; }
  std::string out() const { return dir_ + "/out.txt"; }
  std::string err() const { return dir_ + "/err.txt"; }
  void Append(const std::string& records) const {
    std::ofstream(log(), std::ios::app | std::ios::binary) << records;
  }
  size_t OutputLines() const {
    const std::string text = ReadFile(out());
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
  }
  // SIGINT, as a user ends it; the exit status.
  int Stop() {
    ::kill(pid_, SIGINT);
    int status = 0;
    ::waitpid(pid_, &status, 0);
    pid_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }

 private:
  std::string dir_;
  pid_t pid_ = 0;
};

const std::string kFirst =
    "09.03.26 08:03:12   1     21 00:04 00:02:35 089123456                         1\r\n";
const std::string kSecond =
    "09.03.26 10:36:45   2     21       01:02:17 00442071234567             12.60  2\r\n";

TEST(Follow, AFileThatDoesNotExistYetIsWaitedFor) {
  Follower follower("missing", "csv");
  ASSERT_TRUE(WaitFor([&] {
    return ReadFile(follower.err()).find("waiting for") != std::string::npos;
  })) << ReadFile(follower.err());
  follower.Append(kFirst + kSecond);
  EXPECT_TRUE(WaitFor([&] { return follower.OutputLines() == 3; })) << ReadFile(follower.out());
  EXPECT_EQ(follower.Stop(), 0);
  const std::string err = ReadFile(follower.err());
  EXPECT_EQ(err, "velqua: waiting for '" + follower.log() +
                     "' to appear\nvelqua: 2 records read, 2 translated, 0 unrecognised\n");
}

// The column where each cell of a table line starts, read from the rule line
// under the headings ("--  ----  ..."), and the cells' texts at them.
std::vector<size_t> RuleColumns(const std::string& rule) {
  std::vector<size_t> starts;
  for (size_t i = 0; i < rule.size(); ++i) {
    if (rule[i] == '-' && (i == 0 || rule[i - 1] == ' ')) starts.push_back(i);
  }
  return starts;
}

TEST(Follow, ALiveTableKeepsItsColumns) {
  Follower follower("table", "table");
  follower.Append(kFirst);
  ASSERT_TRUE(WaitFor([&] { return follower.OutputLines() == 3; })) << ReadFile(follower.out());
  follower.Append(kSecond);  // a longer duration and dialled number, a charge
  ASSERT_TRUE(WaitFor([&] { return follower.OutputLines() == 4; })) << ReadFile(follower.out());
  EXPECT_EQ(follower.Stop(), 0);
  std::vector<std::string> lines;
  std::stringstream text(ReadFile(follower.out()));
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  ASSERT_EQ(lines.size(), 4u);
  const std::vector<size_t> columns = RuleColumns(lines[1]);
  ASSERT_EQ(columns.size(), 14u);
  // Both rows start their dialled number (column 8) and extension (9) where
  // the rule says, although the first row alone sized the table.
  for (size_t row : {2u, 3u}) {
    SCOPED_TRACE(lines[row]);
    for (size_t column : {7u, 8u}) {
      EXPECT_EQ(lines[row].at(columns[column] - 1), ' ');
      EXPECT_NE(lines[row].at(columns[column]), ' ');
    }
  }
  EXPECT_EQ(lines[3].substr(columns[7], 14), "00442071234567");
}

}  // namespace
}  // namespace velqua_cli
