// Shared helpers of the libFuzzer targets: a fixed environment so
// that every run is deterministic, and a private temporary folder for the
// files the targets hand to the library. Header-only: each target's source includes it.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "velqua/entorno.h"
#include "velqua/texto.h"

namespace velqua_fuzz {

// The environment of every run: 2026-03-10 09:05:03, seed 1, the real
// files, so that every run is deterministic.
inline std::shared_ptr<velqua::Entorno> EntornoFijo() {
  static const std::shared_ptr<velqua::Entorno> entorno =
      std::make_shared<velqua::EntornoFijo>(velqua::FechaHora{2026, 3, 10, 9, 5, 3}, 1);
  return entorno;
}

// A folder of this process under $TMPDIR (or /tmp), removed at exit.
class CarpetaTemporal {
 public:
  static const std::string& Ruta() {
    static CarpetaTemporal carpeta;
    return carpeta.ruta_;
  }
  CarpetaTemporal(const CarpetaTemporal&) = delete;
  CarpetaTemporal& operator=(const CarpetaTemporal&) = delete;

 private:
  CarpetaTemporal() {
    const char* base = std::getenv("TMPDIR");
    std::string plantilla =
        std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/velqua-fuzz-XXXXXX";
    if (mkdtemp(plantilla.data()) == nullptr) std::abort();
    ruta_ = plantilla;
  }
  ~CarpetaTemporal() {
    std::error_code ec;
    std::filesystem::remove_all(ruta_, ec);
  }
  std::string ruta_;
};

// Path of a file in the temporary folder.
inline std::string RutaTemporal(const std::string& nombre) {
  return CarpetaTemporal::Ruta() + "/" + nombre;
}

// The same as a library file name.
inline std::u16string RutaTemporal16(const std::string& nombre) {
  return velqua::DesdeUtf8(RutaTemporal(nombre));
}

// Writes bytes to a file, replacing it.
inline void EscribeArchivo(const std::string& ruta, const uint8_t* datos, size_t tam) {
  std::ofstream out(ruta, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(datos), static_cast<std::streamsize>(tam));
}

// Stops the run with a message: a broken invariant the sanitizers cannot see.
[[noreturn]] inline void Hallazgo(const char* mensaje) {
  std::fprintf(stderr, "velqua fuzz finding: %s\n", mensaje);
  std::abort();
}

}  // namespace velqua_fuzz
