#include "capture_test.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace velqua_capture_test {

std::string TempDir(const std::string& name) {
  static std::atomic<int> serial{0};
  const std::string dir = std::string(VELQUA_CAPTURE_TEST_TMP) + "/" + name + "-" +
                          std::to_string(::getpid()) + "-" + std::to_string(++serial);
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir;
}

int FreePort() {
  const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (fd < 0 || ::bind(fd, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
      ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("no free port");
  }
  ::close(fd);
  return ntohs(address.sin_port);
}

bool WaitFor(const std::function<bool()>& done, std::chrono::milliseconds deadline) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!done()) {
    if (std::chrono::steady_clock::now() > end) return done();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

::testing::AssertionResult WaitForText(const std::string& path, const std::string& text) {
  if (WaitFor([&] { return ReadFile(path).find(text) != std::string::npos; })) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << path << " never said \"" << text << "\":\n"
                                       << ReadFile(path);
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

Child::Child(const std::vector<std::string>& args, const std::string& stderr_file) {
  int fds[2];
  if (::pipe(fds) != 0) throw std::runtime_error("pipe");
  const pid_t parent = ::getpid();
  pid_ = ::fork();
  if (pid_ == 0) {
    // A test killed (a timeout's SIGKILL) takes its children with it: an
    // orphan would hold the test's output open and its runner would wait.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(127);
    ::dup2(fds[1], 1);
    if (!stderr_file.empty()) {
      const int err = ::open(stderr_file.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
      ::dup2(err, 2);
    }
    ::close(fds[0]);
    std::vector<char*> argv;
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    ::execv(argv[0], argv.data());
    ::_exit(127);
  }
  ::close(fds[1]);
  out_ = fds[0];
  reader_ = std::thread([this] {
    std::string partial;
    char buffer[4096];
    ssize_t n;
    while ((n = ::read(out_, buffer, sizeof buffer)) > 0) {
      partial.append(buffer, static_cast<size_t>(n));
      for (size_t end; (end = partial.find('\n')) != std::string::npos;) {
        std::lock_guard<std::mutex> lock(mutex_);
        lines_.push_back(partial.substr(0, end));
        partial.erase(0, end + 1);
      }
    }
  });
}

Child::~Child() {
  Stop(SIGKILL);
  if (reader_.joinable()) reader_.join();
  if (out_ >= 0) ::close(out_);
}

std::string Child::WaitLine(const std::string& prefix, std::chrono::milliseconds deadline) {
  std::string found;
  WaitFor(
      [&] {
        std::lock_guard<std::mutex> lock(mutex_);
        for (const std::string& line : lines_) {
          if (line.rfind(prefix, 0) == 0) {
            found = line;
            return true;
          }
        }
        return false;
      },
      deadline);
  return found;
}

int Child::Stop(int signal) {
  if (pid_ <= 0) return -1;
  ::kill(pid_, signal);
  int status = 0;
  ::waitpid(pid_, &status, 0);
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace velqua_capture_test
