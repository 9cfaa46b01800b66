// The ways each kind of switch delivers its records.
#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <asio/connect.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/read_until.hpp>
#include <cstdio>
#include <deque>
#include <thread>

#include "emulator.h"

namespace velqua_emulator {
namespace {

using asio::ip::tcp;

const char* const kPanasonicHeading[] = {
    "  Date     Time    Ext CO        Dial Number        Ring Duration  Acc code  CD",
    "--------------------------------------------------------------------------------"};

void Say(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

// After the last record a switch stays up: wait to be stopped.
[[noreturn]] void Linger(const Player& player) {
  Say("played " + std::to_string(player.played()) + " records");
  for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

tcp::acceptor Listen(asio::io_context& io, const Options& o, const char* mode) {
  tcp::acceptor acceptor(io);
  const tcp::endpoint end(asio::ip::make_address(o.host), static_cast<uint16_t>(o.port));
  acceptor.open(end.protocol());
  acceptor.set_option(tcp::acceptor::reuse_address(true));
  acceptor.bind(end);
  acceptor.listen();
  Say(std::string(mode) + ": listening on " + o.host + ":" + std::to_string(o.port));
  return acceptor;
}

// Reads one line of the collector's login; "" when it hangs up.
std::string ReadLine(tcp::socket& socket, std::string* buffer) {
  asio::error_code ec;
  const size_t n = asio::read_until(socket, asio::dynamic_buffer(*buffer), '\n', ec);
  if (ec) return "";
  std::string line = buffer->substr(0, n);
  buffer->erase(0, n);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  return line;
}

bool LogIn(tcp::socket& socket, const Options& o) {
  if (o.user.empty()) return true;  // a port without a login
  std::string buffer;
  const int fd = socket.native_handle();
  if (!Send(fd, "\r\nlogin: ", o.one_byte)) return false;
  const std::string user = ReadLine(socket, &buffer);
  if (!Send(fd, "\r\nPassword: ", o.one_byte)) return false;
  const std::string password = ReadLine(socket, &buffer);
  if (user == o.user && password == o.password) return true;
  Send(fd, "\r\nLogin incorrect\r\n", false);
  Say("panasonic: login refused for user \"" + user + "\"");
  return false;
}

// Serves records to one collector at a time until all are played; `held`
// is a record whose delivery failed, given to the next collector first.
// Returns when everything has been delivered.
void Serve(tcp::acceptor& acceptor, const Options& o, Player& player, bool login,
           const std::string& end, const std::string& heading) {
  std::string held;
  int64_t on_page = 0;
  for (;;) {
    tcp::socket socket = acceptor.accept();
    if (login && !LogIn(socket, o)) continue;
    Say("connected: " + socket.remote_endpoint().address().to_string());
    const int fd = socket.native_handle();
    int64_t sent = 0;
    for (;;) {
      if (held.empty()) {
        if (!player.Next(&held)) return Linger(player);
        if (o.page_lines > 0 && on_page++ % o.page_lines == 0) held = heading + held;
        held += end;
        player.Pace();
      }
      if (!Send(fd, held, o.one_byte)) break;
      held.clear();
      if (o.cut_every > 0 && ++sent % o.cut_every == 0) {
        asio::error_code gone;  // a collector that already left is cut all the same
        socket.shutdown(tcp::socket::shutdown_both, gone);
        Say("cut");
        break;
      }
    }
  }
}

// A switch the collector connects to, on `port` unless told another.
int RunServer(const Options& o, const char* mode, int port, bool login, const std::string& end,
              const std::string& heading) {
  asio::io_context io;
  Options with_port = o;
  if (with_port.port == 0) with_port.port = port;
  tcp::acceptor acceptor = Listen(io, with_port, mode);
  Player player(o);
  Serve(acceptor, o, player, login, end, heading);
  return 0;
}

}  // namespace

int RunPanasonic(const Options& o) {
  return RunServer(o, "panasonic", 2300, true, "\r\n",
                   std::string(kPanasonicHeading[0]) + "\r\n" + kPanasonicHeading[1] + "\r\n");
}

int RunSamsung(const Options& o) {
  const std::string heading =
      std::string("\x0c") + "STN  CO  DIAL NUMBER               DATE   TIME  DURATION\r\n" +
      "========================================================" + std::string(1, '\0');
  return RunServer(o, "samsung", 5100, false, std::string(1, '\0'), heading);
}

// Pushes records to the collector, connecting again whenever the connection
// is lost or cut, and re-sending its last records each time (as an IP Office
// does when it cannot tell which of them arrived).
int RunIpOffice(const Options& o) {
  asio::io_context io;
  Player player(o);
  std::deque<std::string> last;
  std::string record;
  bool more = player.Next(&record);
  for (;;) {
    tcp::socket socket(io);
    asio::error_code ec;
    socket.connect(tcp::endpoint(asio::ip::make_address(o.host), static_cast<uint16_t>(o.port)),
                   ec);
    if (ec) {
      std::this_thread::sleep_for(std::chrono::milliseconds(o.retry_ms));
      continue;
    }
    Say("ipoffice: connected, re-sending " + std::to_string(last.size()) + " records");
    const int fd = socket.native_handle();
    bool lost = false;
    for (const std::string& r : last) lost = lost || !Send(fd, r + "\r\n", o.one_byte);
    if (o.quiet_ms > 0) std::this_thread::sleep_for(std::chrono::milliseconds(o.quiet_ms));
    // A quiet switch for as long as a test wants one, whatever the machine's load.
    while (!last.empty() && !o.hold.empty() && ::access(o.hold.c_str(), F_OK) == 0) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    // The records due while it was disconnected, re-sending or quiet come at
    // the steady rate, not in one burst: a burst larger than the re-send,
    // unread when a collector is killed, would be lost to any collector.
    player.Rebase();
    while (more && !lost) {
      player.Pace();
      last.push_back(record);  // it may be lost with the connection: re-sent next time
      if (static_cast<int64_t>(last.size()) > o.resend) last.pop_front();
      lost = !Send(fd, record + "\r\n", o.one_byte);
      const int64_t sent = player.played();  // this record's number
      more = player.Next(&record);
      if (o.cut_every > 0 && sent % o.cut_every == 0 && !lost) {
        // The collector may have gone between the send and the cut: the
        // connection is over either way, and the records go on next time.
        asio::error_code gone;
        socket.shutdown(tcp::socket::shutdown_both, gone);
        Say("cut");
        lost = true;
      }
    }
    // Says how far the connection got, so that a test can tell which
    // records a lost connection carried beyond the next one's re-send.
    if (lost) {
      Say("ipoffice: connection ended after record " +
          std::to_string(player.played() - (more ? 1 : 0)));
    }
    if (!more && !lost) Linger(player);
  }
}

int RunSerial(const Options& o) {
  int master = -1;
  int slave = -1;
  char name[256] = {};
  if (::openpty(&master, &slave, name, nullptr, nullptr) != 0) {
    std::perror("openpty");
    return 1;
  }
  termios raw{};
  ::tcgetattr(slave, &raw);
  ::cfmakeraw(&raw);
  ::tcsetattr(slave, TCSANOW, &raw);
  if (!o.link.empty()) {
    ::unlink(o.link.c_str());
    if (::symlink(name, o.link.c_str()) != 0) {
      std::perror("symlink");
      return 1;
    }
  }
  Say(std::string("serial: ") + name);
  Player player(o);
  std::string record;
  while (player.Next(&record)) {
    player.Pace();
    Send(master, record + "\r\n", o.one_byte);
  }
  // Stay until the collector has read everything: closing the terminal
  // would throw away what it has not read yet.
  for (int queued = 1; queued > 0;) {
    if (::ioctl(slave, FIONREAD, &queued) != 0) break;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  Linger(player);
}

int RunFile(const Options& o) {
  Player player(o);
  std::string record;
  std::FILE* out = std::fopen(o.output.c_str(), "ab");
  int64_t in_file = 0;
  while (out != nullptr && player.Next(&record)) {
    player.Pace();
    record += "\r\n";
    for (size_t i = 0; i < record.size(); i += o.one_byte ? 1 : record.size()) {
      std::fwrite(record.data() + i, 1, o.one_byte ? 1 : record.size(), out);
      std::fflush(out);
    }
    if (o.rotate_every > 0 && ++in_file % o.rotate_every == 0) {
      std::fclose(out);
      std::rename(o.output.c_str(), (o.output + ".1").c_str());
      out = std::fopen(o.output.c_str(), "ab");
      Say("rotated");
    }
  }
  if (out == nullptr) {
    std::perror(o.output.c_str());
    return 1;
  }
  std::fclose(out);
  Say("played " + std::to_string(player.played()) + " records");
  return 0;
}

}  // namespace velqua_emulator
