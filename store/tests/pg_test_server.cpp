#include "pg_test_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <libpq-fe.h>
#include <netinet/in.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <vector>

extern char** environ;

namespace velqua_store_testing {
namespace {

namespace fs = std::filesystem;

// The newest installed server's programs (/usr/lib/postgresql/<version>/bin).
std::string BinDir() {
  std::string best;
  if (fs::exists("/usr/lib/postgresql")) {
    for (const auto& entry : fs::directory_iterator("/usr/lib/postgresql")) {
      const std::string bin = (entry.path() / "bin").string();
      if (fs::exists(bin + "/initdb") && bin > best) best = bin;
    }
  }
  if (best.empty()) {
    throw std::runtime_error("no PostgreSQL server installed (Debian package postgresql)");
  }
  return best;
}

// Runs a program (as the postgres user when we are root), its output
// appended to `log`; returns its exit status.
int Run(std::vector<std::string> args, const std::string& log) {
  if (::geteuid() == 0) args.insert(args.begin(), {"runuser", "-u", "postgres", "--"});
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
  posix_spawn_file_actions_adddup2(&actions, 1, 2);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  pid_t pid = 0;
  const int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) return 127;
  int status = 0;
  ::waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
}

int FreePort() {
  const int s = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (s < 0 || ::bind(s, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      ::getsockname(s, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    throw std::runtime_error("no free loopback port");
  }
  ::close(s);
  return ntohs(address.sin_port);
}

std::string ReadLog(const std::string& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

PgTestServer::PgTestServer() {
  char pattern[] = "/tmp/velqua-pg-XXXXXX";
  if (::mkdtemp(pattern) == nullptr) throw std::runtime_error("cannot make a temporary folder");
  dir_ = pattern;
  if (::geteuid() == 0) {
    const passwd* pg = ::getpwnam("postgres");
    if (pg == nullptr || ::chown(dir_.c_str(), pg->pw_uid, pg->pw_gid) != 0) {
      throw std::runtime_error("no postgres user to run the test server as");
    }
  }
  port_ = FreePort();
  const std::string log = dir_ + "/setup.log";
  if (Run({BinDir() + "/initdb", "-D", dir_ + "/data", "-A", "trust", "-U", "postgres", "-E",
           "UTF8", "--locale=C", "--no-sync"},
          log) != 0) {
    throw std::runtime_error("initdb failed: " + ReadLog(log));
  }
  Start();
}

PgTestServer::~PgTestServer() {
  if (running_) {
    Run({BinDir() + "/pg_ctl", "-D", dir_ + "/data", "-m", "immediate", "-w", "stop"},
        dir_ + "/setup.log");
  }
  std::error_code ignored;
  fs::remove_all(dir_, ignored);
}

void PgTestServer::Start() {
  const std::string options = "-p " + std::to_string(port_) + " -k " + dir_ +
                              " -c listen_addresses=127.0.0.1 -c fsync=off"
                              " -c synchronous_commit=off -c full_page_writes=off";
  if (Run({BinDir() + "/pg_ctl", "-D", dir_ + "/data", "-l", dir_ + "/server.log", "-w", "-t",
           "120", "-o", options, "start"},
          dir_ + "/setup.log") != 0) {
    throw std::runtime_error("the PostgreSQL test server did not start: " +
                             ReadLog(dir_ + "/setup.log") + ReadLog(dir_ + "/server.log"));
  }
  running_ = true;
}

void PgTestServer::Stop() {
  Run({BinDir() + "/pg_ctl", "-D", dir_ + "/data", "-m", "fast", "-w", "stop"},
      dir_ + "/setup.log");
  running_ = false;
}

std::string PgTestServer::NewDatabase() {
  const std::string name = "t" + std::to_string(::getpid()) + "_" + std::to_string(++databases_);
  const std::string base = "postgresql://postgres@127.0.0.1:" + std::to_string(port_) + "/";
  PGconn* conn = PQconnectdb((base + "postgres").c_str());
  PGresult* result = PQexec(conn, ("CREATE DATABASE " + name).c_str());
  const bool made = PQresultStatus(result) == PGRES_COMMAND_OK;
  const std::string error = PQerrorMessage(conn);
  PQclear(result);
  PQfinish(conn);
  if (!made) throw std::runtime_error("cannot make a test database: " + error);
  return base + name;
}

PgTestServer& PgTestServer::Shared() {
  static PgTestServer server;
  return server;
}

std::string TempDir(const std::string& name) {
  const fs::path dir =
      fs::temp_directory_path() / ("velqua-store-" + std::to_string(::getpid()) + "-" + name);
  fs::remove_all(dir);
  fs::create_directories(dir);
  return dir.string();
}

}  // namespace velqua_store_testing
