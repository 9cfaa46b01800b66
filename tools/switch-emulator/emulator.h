// velqua-emulator: small stand-ins for the switches the capture service
// reads, playing the records of a file the way each kind of switch delivers
// them (a Panasonic TCP port with a login, an IP Office pushing to a
// collector, a Samsung OfficeServ's NUL-ended records, a serial port, a
// file another collector writes). The capture tests run against it, and a
// user can try a capture configuration with it before the real switch.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace velqua_emulator {

struct Options {
  std::string records;    // the records to play, one a line ("" with --count: generated)
  double rate = 10;       // records per second; 0: as fast as possible
  int64_t count = 0;      // records to play, cycling through the file; 0: the file once
  bool one_byte = false;  // deliver one byte per write
  std::string host = "127.0.0.1";
  int port = 0;
  std::string user = "SMDR";
  std::string password = "PCCSMDR";
  int64_t cut_every = 0;     // close the connection after every this many records
  int64_t resend = 5;        // records re-sent after a reconnection (ipoffice)
  int64_t page_lines = 0;    // a page heading every this many records (0: none)
  std::string link;          // serial: a symbolic link to the device made here
  std::string output;        // file: the file appended to
  int64_t rotate_every = 0;  // file: rotate (rename to .1) after this many records
  int retry_ms = 200;        // ipoffice: wait between connection attempts
  int quiet_ms = 0;          // ipoffice: silent this long after each re-send (a quiet switch)
  std::string hold;          // ipoffice: silent after a re-send while this file exists
};

// The records to play, in order: the file's lines (page headings included,
// empty lines dropped), or `count` generated ones when no file is given.
class Player {
 public:
  explicit Player(const Options& options);
  // The next record without its end; false when all have been played.
  bool Next(std::string* record);
  // Waits until the next record is due at the chosen rate.
  void Pace();
  int64_t played() const { return played_; }

 private:
  std::vector<std::string> lines_;
  const Options& options_;
  int64_t played_ = 0;
  size_t at_ = 0;
  std::chrono::steady_clock::time_point start_;
};

// The i-th (0-based) of a sequence of distinct Panasonic KX-TDA pattern A
// records: one a minute from 2026-01-01 00:00, every third incoming, each
// with its own number.
std::string GeneratedRecord(int64_t i);

int RunPanasonic(const Options& options);
int RunIpOffice(const Options& options);
int RunSamsung(const Options& options);
int RunSerial(const Options& options);
int RunFile(const Options& options);

// Writes all of `bytes` (one byte per write with one_byte); false when the
// peer is gone.
bool Send(int fd, const std::string& bytes, bool one_byte);

}  // namespace velqua_emulator
