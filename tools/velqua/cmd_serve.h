// `velqua serve`: the web page over a call store; `velqua user`: the people
// who may open it.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace velqua_cli {

struct ServeOptions {
  std::string db;
  std::string listen;                // "": the configuration's, else 127.0.0.1:8080
  std::string config;                // a serve.toml, or ""
  std::vector<std::string> capture;  // capture configurations, besides the file's
};

struct UserOptions {
  std::string db;
  std::string name;
  std::string role = "viewer";
};

void AddServeCommand(CLI::App& app, ServeOptions& options);
void AddUserCommand(CLI::App& app, UserOptions& options);

// Serves until SIGINT or SIGTERM; 0, or throws (1).
int RunServe(const ServeOptions& options);

// `user add`: the password from the terminal (asked twice, not echoed) or,
// when standard input is not a terminal, its first line.
int RunUserAdd(const UserOptions& options);
int RunUserList(const UserOptions& options);
int RunUserRemove(const UserOptions& options);

}  // namespace velqua_cli
