#include "cmd_serve.h"

#include <pthread.h>
#include <termios.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <thread>

#include "cli_common.h"
#include "velqua/store/users.h"
#include "velqua/web/server.h"
#include "velqua/web/users.h"
#ifdef VELQUA_CLI_HAS_CAPTURE
#include "velqua/capture/status.h"
#include "velqua/capture/status_report.h"
#endif

namespace velqua_cli {
namespace {

const char* const kDbHelp = "Store: a SQLite file or postgresql://user@host:port/dbname";

// One line of the terminal with its echo off (the password is not shown).
std::string AskHidden(const char* prompt) {
  std::fprintf(stderr, "%s", prompt);
  termios old{};
  tcgetattr(STDIN_FILENO, &old);
  termios quiet = old;
  quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  tcsetattr(STDIN_FILENO, TCSANOW, &quiet);
  std::string line;
  std::getline(std::cin, line);
  tcsetattr(STDIN_FILENO, TCSANOW, &old);
  std::fprintf(stderr, "\n");
  return line;
}

std::string ReadPassword() {
  if (isatty(STDIN_FILENO)) {
    const std::string first = AskHidden("Password: ");
    if (AskHidden("Password again: ") != first) throw CliError("the passwords differ");
    return first;
  }
  std::string line;
  if (!std::getline(std::cin, line)) throw CliError("no password on standard input");
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

}  // namespace

void AddServeCommand(CLI::App& app, ServeOptions& options) {
  CLI::App* cmd = app.add_subcommand("serve", "Serve the web page over a call store");
  cmd->add_option("--db", options.db, kDbHelp)->required();
  cmd->add_option("--listen", options.listen,
                  "host:port to listen on (default 127.0.0.1:8080; another address than "
                  "loopback needs users)");
  cmd->add_option("--config", options.config, "A serve.toml (listen, TLS, limits)");
  cmd->add_option("--capture", options.capture,
                  "A capture service's configuration whose status the page shows (repeatable)");
}

void AddUserCommand(CLI::App& app, UserOptions& options) {
  CLI::App* cmd = app.add_subcommand("user", "The people who may open the web page");
  cmd->require_subcommand(1);
  CLI::App* add = cmd->add_subcommand(
      "add", "Add a user, or set a user's role and password (asked on the terminal)");
  add->add_option("name", options.name, "User name")->required();
  add->add_option("--role", options.role, "admin or viewer")
      ->check(CLI::IsMember({"admin", "viewer"}))
      ->capture_default_str();
  CLI::App* list = cmd->add_subcommand("list", "List the users and their roles");
  CLI::App* remove = cmd->add_subcommand("remove", "Remove a user");
  remove->add_option("name", options.name, "User name")->required();
  for (CLI::App* sub : {add, list, remove}) {
    sub->add_option("--db", options.db, kDbHelp)->required();
  }
}

int RunServe(const ServeOptions& options) {
  velqua_web::ServeOptions o;
  o.db = options.db;
  if (!options.config.empty()) velqua_web::LoadServeConfig(options.config, o);
  if (!options.listen.empty()) o.listen = options.listen;
  for (const std::string& config : options.capture) o.capture.push_back(config);
#ifdef VELQUA_CLI_HAS_CAPTURE
  o.capture_status = [](const std::string& config) {
    return velqua_capture::CaptureStatusJson(config, velqua_capture::NowMicros());
  };
#endif
  // The server's threads inherit the blocked signals; this thread waits.
  sigset_t stop;
  sigemptyset(&stop);
  sigaddset(&stop, SIGINT);
  sigaddset(&stop, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop, nullptr);
  velqua_web::Server server(o);
  std::printf("velqua serve: %s (store %s)\n", server.url().c_str(), o.db.c_str());
  std::fflush(stdout);
  std::thread serving([&] { server.Run(); });
  int signal = 0;
  sigwait(&stop, &signal);
  server.Stop();
  serving.join();
  return 0;
}

int RunUserAdd(const UserOptions& options) {
  const std::unique_ptr<velqua_store::Store> store = velqua_store::OpenStore(options.db, false);
  velqua_web::AddUser(*store, options.name, options.role, ReadPassword());
  std::printf("user %s (%s) saved\n", options.name.c_str(), options.role.c_str());
  return 0;
}

int RunUserList(const UserOptions& options) {
  const std::unique_ptr<velqua_store::Store> store = velqua_store::OpenStore(options.db, false);
  for (const velqua_store::User& u : velqua_store::ListUsers(*store)) {
    std::printf("%s\t%s\t%s\n", u.name.c_str(), u.role.c_str(), u.created_utc.c_str());
  }
  return 0;
}

int RunUserRemove(const UserOptions& options) {
  const std::unique_ptr<velqua_store::Store> store = velqua_store::OpenStore(options.db, false);
  if (!velqua_store::RemoveUser(*store, options.name)) {
    throw CliError("no user '" + options.name + "' in " + store->name());
  }
  std::printf("user %s removed\n", options.name.c_str());
  return 0;
}

}  // namespace velqua_cli
