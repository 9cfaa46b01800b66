// The environment a translator works in: the clock, the random generator's
// seed and the files it reads and appends to. A host passes one in
// (clsTraductor's constructor or EstableceEntorno); nothing of it is
// installed for the whole process, so translators on different threads may
// each have their own. EntornoSistema is the real one; EntornoMemoria keeps
// its clock and files in memory, for tests and for hosts that replay records
// at a known instant.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "velqua/export.h"

namespace velqua {

// A local date and time of day.
struct FechaHora {
  int32_t intAnio = 0;     // e.g. 2026
  int32_t intMes = 0;      // 1 to 12
  int32_t intDia = 0;      // 1 to 31
  int32_t intHora = 0;     // 0 to 23
  int32_t intMinuto = 0;   // 0 to 59
  int32_t intSegundo = 0;  // 0 to 59
};

// A file open for reading, closed when destroyed.
class VELQUA_EXPORT LectorArchivo {
 public:
  virtual ~LectorArchivo() = default;
  // The next bytes, at most intMax, into chrDestino; 0 at the end of the
  // file, and on a read error (the content ends there).
  virtual std::size_t Lee(char* chrDestino, std::size_t intMax) = 0;
};

class VELQUA_EXPORT Entorno {
 public:
  virtual ~Entorno() = default;

  // ---- Clock ----
  // The current local date and time: a record's missing date or time
  // components, the log's timestamps.
  virtual FechaHora Ahora() const = 0;
  // A seed for the random-extension generator, asked at construction and
  // at each binding of an account-code configuration.
  virtual uint32_t Semilla() const = 0;

  // ---- Files, by name (UTF-16; the real environment passes UTF-8 names
  // to the operating system). None of them throws. ----
  // Opens a regular file for reading, to be read a block at a time (a list
  // may be larger than memory should hold); nullptr when the file is missing
  // or not a regular file (a FIFO or a device could block or never end).
  virtual std::unique_ptr<LectorArchivo> AbreLectura(const std::u16string& cadArch) = 0;
  // Appends bytes to a file, created when missing; a regular file or a
  // character device (/dev/null) is accepted, anything else refused: false.
  virtual bool AnexaArchivo(const std::u16string& cadArch, std::string_view cadBytes) = 0;
  // Replaces cadDestino by cadOrigen; false when it could not.
  virtual bool RenombraArchivo(const std::u16string& cadOrigen,
                               const std::u16string& cadDestino) = 0;
  // Length in bytes of a regular file; -1 when missing or not a regular file.
  virtual int64_t LongitudArchivo(const std::u16string& cadArch) = 0;
};

// The real environment: the system's local time, a seed from the
// high-resolution clock, the operating system's files. Shared and stateless,
// so any number of threads may use it at once.
VELQUA_EXPORT std::shared_ptr<Entorno> EntornoSistema();

// A fixed instant and seed, settable, with the files of another environment
// (nullptr: the real one): for hosts that replay records at a known instant,
// and for tests. Safe to share between threads.
class VELQUA_EXPORT EntornoFijo : public Entorno {
 public:
  explicit EntornoFijo(FechaHora udtAhora, uint32_t lnSemilla = 1,
                       std::shared_ptr<Entorno> udtArchivos = nullptr);

  FechaHora Ahora() const override;
  uint32_t Semilla() const override { return lnSemilla; }
  std::unique_ptr<LectorArchivo> AbreLectura(const std::u16string& cadArch) override;
  bool AnexaArchivo(const std::u16string& cadArch, std::string_view cadBytes) override;
  bool RenombraArchivo(const std::u16string& cadOrigen, const std::u16string& cadDestino) override;
  int64_t LongitudArchivo(const std::u16string& cadArch) override;

  // Moves the clock.
  void EstableceAhora(FechaHora udtAhora);

 private:
  mutable std::mutex mtxAhora;
  FechaHora udtAhora;
  const uint32_t lnSemilla;
  const std::shared_ptr<Entorno> udtArchivos;
};

// An environment in memory: a fixed instant and seed, and files kept in a
// map (names compared exactly). Safe to share between threads.
class VELQUA_EXPORT EntornoMemoria : public Entorno {
 public:
  explicit EntornoMemoria(FechaHora udtAhora = {2000, 1, 1, 0, 0, 0}, uint32_t lnSemilla = 1);

  FechaHora Ahora() const override;
  uint32_t Semilla() const override;
  std::unique_ptr<LectorArchivo> AbreLectura(const std::u16string& cadArch) override;
  bool AnexaArchivo(const std::u16string& cadArch, std::string_view cadBytes) override;
  bool RenombraArchivo(const std::u16string& cadOrigen, const std::u16string& cadDestino) override;
  int64_t LongitudArchivo(const std::u16string& cadArch) override;

  // Moves the clock.
  void EstableceAhora(FechaHora udtAhora);
  // Creates or replaces a file.
  void EscribeArchivo(const std::u16string& cadArch, std::string cadBytes);
  // The content of a file, "" when there is none.
  std::string Contenido(const std::u16string& cadArch) const;

 private:
  mutable std::mutex mtxEstado;
  FechaHora udtAhora;
  uint32_t lnSemilla;
  std::map<std::u16string, std::string> udtArchivos;
};

}  // namespace velqua
