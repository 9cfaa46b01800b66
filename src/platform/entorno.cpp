// The real environment (system clock, operating system files) and the
// in-memory one.
#include "velqua/entorno.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <utility>

#include "platform/archivos.h"

namespace velqua {
namespace {

// A descriptor read with read(2), closed at the end.
class LectorDescriptor : public LectorArchivo {
 public:
  explicit LectorDescriptor(int fd) : fd_(fd) {}
  ~LectorDescriptor() override { close(fd_); }
  LectorDescriptor(const LectorDescriptor&) = delete;
  LectorDescriptor& operator=(const LectorDescriptor&) = delete;
  std::size_t Lee(char* chrDestino, std::size_t intMax) override {
    ssize_t n = 0;
    do {
      n = read(fd_, chrDestino, intMax);
    } while (n < 0 && errno == EINTR);
    return n > 0 ? static_cast<std::size_t>(n) : 0;
  }

 private:
  int fd_;
};

// A copy of a text, read as a file.
class LectorTexto : public LectorArchivo {
 public:
  explicit LectorTexto(std::string cadBytes) : cadBytes_(std::move(cadBytes)) {}
  std::size_t Lee(char* chrDestino, std::size_t intMax) override {
    const std::size_t n = std::min(intMax, cadBytes_.size() - intPos_);
    std::memcpy(chrDestino, cadBytes_.data() + intPos_, n);
    intPos_ += n;
    return n;
  }

 private:
  std::string cadBytes_;
  std::size_t intPos_ = 0;
};

class EntornoReal : public Entorno {
 public:
  // The local time of the last second read, per thread: the translator reads
  // the clock for every record whose switch prints a two-digit year or no
  // date or time, and localtime_r was about 7% of such a record. The same
  // second gives the same local time (glibc reads the time zone once).
  FechaHora Ahora() const override {
    thread_local std::time_t segundo = -1;
    thread_local FechaHora f;
    const std::time_t ahora = std::time(nullptr);
    if (ahora == segundo) return f;
    std::tm local{};
    localtime_r(&ahora, &local);
    f = {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
         local.tm_hour,        local.tm_min,     local.tm_sec};
    segundo = ahora;
    return f;
  }

  uint32_t Semilla() const override {
    const auto ticks = std::chrono::high_resolution_clock::now().time_since_epoch().count();
    return static_cast<uint32_t>(ticks) ^ static_cast<uint32_t>(ticks >> 32);
  }

  std::unique_ptr<LectorArchivo> AbreLectura(const std::u16string& cadArch) override {
    const int fd = plataforma::AbreDescriptorLectura(cadArch);
    if (fd < 0) return nullptr;
    return std::make_unique<LectorDescriptor>(fd);
  }

  bool AnexaArchivo(const std::u16string& cadArch, std::string_view cadBytes) override {
    std::FILE* f = plataforma::AbreAnexar(cadArch);
    if (f == nullptr) return false;
    const bool bolEscrito = std::fwrite(cadBytes.data(), 1, cadBytes.size(), f) == cadBytes.size();
    return std::fclose(f) == 0 && bolEscrito;
  }

  bool RenombraArchivo(const std::u16string& cadOrigen, const std::u16string& cadDestino) override {
    const std::string origen = plataforma::NombreSistema(cadOrigen);
    const std::string destino = plataforma::NombreSistema(cadDestino);
    if (origen.find('\0') != std::string::npos || destino.find('\0') != std::string::npos) {
      return false;
    }
    return std::rename(origen.c_str(), destino.c_str()) == 0;
  }

  int64_t LongitudArchivo(const std::u16string& cadArch) override {
    return plataforma::LongitudArchivo(cadArch);
  }
};

}  // namespace

std::shared_ptr<Entorno> EntornoSistema() {
  static const std::shared_ptr<Entorno> kReal = std::make_shared<EntornoReal>();
  return kReal;
}

EntornoFijo::EntornoFijo(FechaHora udtAhora_, uint32_t lnSemilla_,
                         std::shared_ptr<Entorno> udtArchivos_)
    : udtAhora(udtAhora_),
      lnSemilla(lnSemilla_),
      udtArchivos(udtArchivos_ ? std::move(udtArchivos_) : EntornoSistema()) {}

FechaHora EntornoFijo::Ahora() const {
  const std::lock_guard<std::mutex> bloqueo(mtxAhora);
  return udtAhora;
}

void EntornoFijo::EstableceAhora(FechaHora udtAhora_) {
  const std::lock_guard<std::mutex> bloqueo(mtxAhora);
  udtAhora = udtAhora_;
}

std::unique_ptr<LectorArchivo> EntornoFijo::AbreLectura(const std::u16string& cadArch) {
  return udtArchivos->AbreLectura(cadArch);
}

bool EntornoFijo::AnexaArchivo(const std::u16string& cadArch, std::string_view cadBytes) {
  return udtArchivos->AnexaArchivo(cadArch, cadBytes);
}

bool EntornoFijo::RenombraArchivo(const std::u16string& cadOrigen,
                                  const std::u16string& cadDestino) {
  return udtArchivos->RenombraArchivo(cadOrigen, cadDestino);
}

int64_t EntornoFijo::LongitudArchivo(const std::u16string& cadArch) {
  return udtArchivos->LongitudArchivo(cadArch);
}

EntornoMemoria::EntornoMemoria(FechaHora udtAhora_, uint32_t lnSemilla_)
    : udtAhora(udtAhora_), lnSemilla(lnSemilla_) {}

FechaHora EntornoMemoria::Ahora() const {
  const std::lock_guard<std::mutex> bloqueo(mtxEstado);
  return udtAhora;
}

uint32_t EntornoMemoria::Semilla() const {
  const std::lock_guard<std::mutex> bloqueo(mtxEstado);
  return lnSemilla;
}

std::unique_ptr<LectorArchivo> EntornoMemoria::AbreLectura(const std::u16string& cadArch) {
  const std::lock_guard<std::mutex> bloqueo(mtxEstado);
  const auto it = udtArchivos.find(cadArch);
  if (it == udtArchivos.end()) return nullptr;
  return std::make_unique<LectorTexto>(it->second);
}

bool EntornoMemoria::AnexaArchivo(const std::u16string& cadArch, std::string_view cadBytes) {
  if (cadArch.empty()) return false;
  const std::lock_guard<std::mutex> bloqueo(mtxEstado);
  udtArchivos[cadArch].append(cadBytes);
  return true;
}

bool EntornoMemoria::RenombraArchivo(const std::u16string& cadOrigen,
                                     const std::u16string& cadDestino) {
  const std::lock_guard<std::mutex> bloqueo(mtxEstado);
  const auto it = udtArchivos.find(cadOrigen);
  if (it == udtArchivos.end() || cadDestino.empty()) return false;
  std::string cadBytes = std::move(it->second);
  udtArchivos.erase(it);
  udtArchivos[cadDestino] = std::move(cadBytes);
  return true;
}

int64_t EntornoMemoria::LongitudArchivo(const std::u16string& cadArch) {
  const std::lock_guard<std::mutex> bloqueo(mtxEstado);
  const auto it = udtArchivos.find(cadArch);
  return it != udtArchivos.end() ? static_cast<int64_t>(it->second.size()) : -1;
}

void EntornoMemoria::EstableceAhora(FechaHora udtAhora_) {
  const std::lock_guard<std::mutex> bloqueo(mtxEstado);
  udtAhora = udtAhora_;
}

void EntornoMemoria::EscribeArchivo(const std::u16string& cadArch, std::string cadBytes) {
  const std::lock_guard<std::mutex> bloqueo(mtxEstado);
  udtArchivos[cadArch] = std::move(cadBytes);
}

std::string EntornoMemoria::Contenido(const std::u16string& cadArch) const {
  const std::lock_guard<std::mutex> bloqueo(mtxEstado);
  const auto it = udtArchivos.find(cadArch);
  return it != udtArchivos.end() ? it->second : std::string();
}

}  // namespace velqua
