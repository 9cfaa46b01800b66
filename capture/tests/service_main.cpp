// The capture service as its own process, for the tests that stop it with
// SIGTERM, kill it with SIGKILL or limit its file sizes: what
// `velqua capture --config FILE` runs, without the rest of the program.
#include <cstdio>

#include "velqua/capture/service.h"
#include "velqua/capture/settings.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s CONFIG\n", argv[0]);
    return 2;
  }
  try {
    velqua_capture::Logger log;
    velqua_capture::Service service(velqua_capture::LoadSettings(argv[1]), log);
    return service.Run();
  } catch (const velqua_capture::SettingsError& e) {
    std::fprintf(stderr, "velqua: %s\n", e.what());
    return 1;
  }
}
