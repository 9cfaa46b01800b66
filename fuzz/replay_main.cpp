// A main() for the fuzz targets without libFuzzer: runs
// every file named on the command line, and every file inside every folder
// named there, through LLVMFuzzerTestOneInput, in name order. Exit status 0
// when all ran; a finding aborts as it would under libFuzzer.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* datos, size_t tam);

namespace {

std::vector<std::filesystem::path> Archivos(int argc, char** argv) {
  std::vector<std::filesystem::path> archivos;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path ruta(argv[i]);
    if (std::filesystem::is_directory(ruta)) {
      for (const auto& e : std::filesystem::directory_iterator(ruta)) {
        if (e.is_regular_file()) archivos.push_back(e.path());
      }
    } else {
      archivos.push_back(ruta);
    }
  }
  std::sort(archivos.begin(), archivos.end());
  return archivos;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::filesystem::path> archivos = Archivos(argc, argv);
  for (const auto& ruta : archivos) {
    std::ifstream in(ruta, std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "cannot read %s\n", ruta.string().c_str());
      return 1;
    }
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                  std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  }
  std::printf("replayed %zu inputs\n", archivos.size());
  return archivos.empty() ? 1 : 0;
}
