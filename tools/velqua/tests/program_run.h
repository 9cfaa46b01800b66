// The program run as a user runs it, from the tests of what an administrator
// does on a site.
#ifndef VELQUA_TOOLS_TESTS_PROGRAM_RUN_H_
#define VELQUA_TOOLS_TESTS_PROGRAM_RUN_H_

#include <string>
#include <vector>

namespace velqua_cli {

struct ProgramRun {
  int status = -1;
  std::string out, err;
  std::string FirstLine() const { return out.substr(0, out.find('\n')); }
};

// Runs the program with `args`; its exit status, standard output and error.
ProgramRun Velqua(const std::vector<std::string>& args);

}  // namespace velqua_cli

#endif  // VELQUA_TOOLS_TESTS_PROGRAM_RUN_H_
