#include "capture_test.h"

#include <netinet/in.h>
#include <sys/socket.h>
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

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

}  // namespace velqua_capture_test
