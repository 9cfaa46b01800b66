// velqua-emulator MODE [options]: plays records the way a switch delivers
// them (see emulator.h and doc/capture.md, "Trying it without a switch").
#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>

#include "emulator.h"

int main(int argc, char** argv) {
  using velqua_emulator::Options;
  CLI::App app{"velqua-emulator: play call records the way a switch delivers them"};
  app.require_subcommand(1);
  Options o;
  int64_t generate = 0;
  auto common = [&o](CLI::App* mode) {
    mode->add_option("-r,--records", o.records, "Records to play, one a line")
        ->check(CLI::ExistingFile);
    mode->add_option("--rate", o.rate, "Records per second (0: as fast as possible)")
        ->capture_default_str();
    mode->add_option("--count", o.count,
                     "Records to play, cycling through the file (without --records: "
                     "generated Panasonic records)");
    mode->add_flag("--one-byte", o.one_byte, "Deliver one byte at a time");
  };
  auto server = [&o, &common](CLI::App* mode) {
    common(mode);
    mode->add_option("--host", o.host, "Address to listen on")->capture_default_str();
    mode->add_option("--port", o.port, "Port to listen on");
    mode->add_option("--cut-every", o.cut_every, "Close the connection after every N records");
    mode->add_option("--page-lines", o.page_lines, "A page heading every N records");
  };
  CLI::App* panasonic =
      app.add_subcommand("panasonic", "A Panasonic KX-TDA/NS SMDR port: TCP (2300) with a login");
  server(panasonic);
  panasonic->add_option("--user", o.user, "The login's user (\"\": no login)")
      ->capture_default_str();
  panasonic->add_option("--password", o.password)->capture_default_str();
  CLI::App* samsung = app.add_subcommand(
      "samsung", "A Samsung OfficeServ: TCP (5100), records ended by NUL, form-feed headings");
  server(samsung);
  CLI::App* ipoffice = app.add_subcommand(
      "ipoffice", "An Avaya IP Office: pushes to the collector, re-sends its last records");
  common(ipoffice);
  ipoffice->add_option("--host", o.host, "Collector's address")->capture_default_str();
  ipoffice->add_option("--port", o.port, "Collector's port")->required();
  ipoffice->add_option("--resend", o.resend, "Records re-sent after each reconnection")
      ->capture_default_str();
  ipoffice->add_option("--cut-every", o.cut_every, "Close the connection after every N records");
  ipoffice->add_option("--retry-ms", o.retry_ms, "Wait between connection attempts")
      ->capture_default_str();
  ipoffice->add_option("--quiet-ms", o.quiet_ms,
                       "Send nothing new for this long after each re-send (a quiet switch)");
  ipoffice->add_option("--hold", o.hold,
                       "After a re-send of records, send nothing new while this file exists");
  CLI::App* serial =
      app.add_subcommand("serial", "A serial SMDR port, through a pseudo-terminal pair");
  common(serial);
  serial->add_option("--link", o.link, "Make this symbolic link to the terminal");
  CLI::App* file = app.add_subcommand("file", "A collector appending records to a file");
  common(file);
  file->add_option("-o,--output", o.output, "The file appended to")->required();
  file->add_option("--rotate-every", o.rotate_every, "Rename the file to FILE.1 every N records");
  CLI::App* gen = app.add_subcommand("generate", "Write N distinct Panasonic records to stdout");
  gen->add_option("count", generate, "How many")->required();
  CLI11_PARSE(app, argc, argv);

  std::signal(SIGPIPE, SIG_IGN);
  try {
    if (panasonic->parsed()) return velqua_emulator::RunPanasonic(o);
    if (samsung->parsed()) return velqua_emulator::RunSamsung(o);
    if (ipoffice->parsed()) return velqua_emulator::RunIpOffice(o);
    if (serial->parsed()) return velqua_emulator::RunSerial(o);
    if (file->parsed()) return velqua_emulator::RunFile(o);
    for (int64_t i = 0; i < generate; ++i) {
      std::printf("%s\r\n", velqua_emulator::GeneratedRecord(i).c_str());
    }
  } catch (const std::exception& e) {
    std::fprintf(stderr, "velqua-emulator: %s\n", e.what());
    return 1;
  }
  return 0;
}
