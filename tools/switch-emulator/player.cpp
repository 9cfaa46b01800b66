#include <cstdio>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

#include "emulator.h"

namespace velqua_emulator {

Player::Player(const Options& options) : options_(options) {
  if (!options.records.empty()) {
    std::ifstream in(options.records, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + options.records);
    std::string line;
    while (std::getline(in, line)) {
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (!line.empty()) lines_.push_back(line);
    }
    if (lines_.empty()) throw std::runtime_error(options.records + " holds no record");
  }
  start_ = std::chrono::steady_clock::now();
}

bool Player::Next(std::string* record) {
  const int64_t total = options_.count > 0 ? options_.count : static_cast<int64_t>(lines_.size());
  if (played_ >= total) return false;
  if (lines_.empty()) {
    *record = GeneratedRecord(played_);
  } else {
    *record = lines_[at_];
    at_ = (at_ + 1) % lines_.size();
  }
  ++played_;
  return true;
}

void Player::Pace() {
  if (options_.rate <= 0) return;
  const auto due = start_ + std::chrono::microseconds(static_cast<int64_t>(
                                1e6 * static_cast<double>(played_) / options_.rate));
  std::this_thread::sleep_until(due);
}

void Player::Rebase() {
  if (options_.rate <= 0) return;
  start_ = std::chrono::steady_clock::now() -
           std::chrono::microseconds(
               static_cast<int64_t>(1e6 * static_cast<double>(played_) / options_.rate));
}

std::string GeneratedRecord(int64_t i) {
  std::time_t when = 1767225600 + i * 60;  // 2026-01-01 00:00 UTC, one a minute
  std::tm t{};
  gmtime_r(&when, &t);
  const int hour12 = t.tm_hour % 12 == 0 ? 12 : t.tm_hour % 12;
  const bool incoming = i % 3 == 1;
  char number[32];
  std::snprintf(number, sizeof number, "%s0%09lld", incoming ? "<I>" : "",
                static_cast<long long>(100000000 + i % 900000000));
  char ring[8] = "    ";
  if (incoming) std::snprintf(ring, sizeof ring, "0'%02d", static_cast<int>(i % 60));
  char line[128];
  std::snprintf(line, sizeof line, "%02d/%02d/%02d %02d:%02d%s %5d %02d %-25s %s %02d:%02d'%02d",
                t.tm_mon + 1, t.tm_mday, t.tm_year % 100, hour12, t.tm_min,
                t.tm_hour < 12 ? "AM" : "PM", 200 + static_cast<int>(i % 100),
                1 + static_cast<int>(i % 8), number, ring, static_cast<int>(i / 3600 % 2),
                static_cast<int>(i / 60 % 60), static_cast<int>(i % 60));
  return line;
}

bool Send(int fd, const std::string& bytes, bool one_byte) {
  size_t at = 0;
  while (at < bytes.size()) {
    const size_t n = one_byte ? 1 : bytes.size() - at;
    const ssize_t put = ::send(fd, bytes.data() + at, n, MSG_NOSIGNAL);
    if (put < 0 && errno == ENOTSOCK) {
      const ssize_t w = ::write(fd, bytes.data() + at, n);  // a pseudo-terminal or a file
      if (w <= 0) return false;
      at += static_cast<size_t>(w);
      continue;
    }
    if (put <= 0) return false;
    at += static_cast<size_t>(put);
  }
  return true;
}

}  // namespace velqua_emulator
