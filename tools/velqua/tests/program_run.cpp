#include "program_run.h"

#include <sys/wait.h>

#include <cstdio>

#include "capture_test.h"

namespace velqua_cli {

ProgramRun Velqua(const std::vector<std::string>& args) {
  static int serial = 0;
  const std::string err_file =
      velqua_capture_test::TempDir("program-stderr") + "/" + std::to_string(++serial);
  std::string command = "'" VELQUA_PROGRAM "'";
  for (const std::string& a : args) command += " '" + a + "'";
  command += " 2>'" + err_file + "'";
  ProgramRun r;
  std::FILE* pipe = ::popen(command.c_str(), "r");
  char buffer[4096];
  for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) r.out.append(buffer, n);
  const int status = ::pclose(pipe);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  r.err = velqua_capture_test::ReadFile(err_file);
  return r;
}

}  // namespace velqua_cli
