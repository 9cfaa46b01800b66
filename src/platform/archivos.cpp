#include "platform/archivos.h"

#include <sys/stat.h>

#include <unistd.h>

#include "velqua/texto.h"

namespace velqua {
namespace plataforma {

std::string NombreSistema(const std::u16string& cadArch) { return AUtf8(cadArch); }

bool TieneAtributoArchivo(const std::u16string& cadArch) {
  struct stat st {};
  const std::string nombre = NombreSistema(cadArch);
  if (nombre.empty() || nombre.find('\0') != std::string::npos) return false;
  return stat(nombre.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

int64_t LongitudArchivo(const std::u16string& cadArch) {
  struct stat st {};
  const std::string nombre = NombreSistema(cadArch);
  if (nombre.find('\0') != std::string::npos) return -1;
  if (stat(nombre.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return -1;
  return static_cast<int64_t>(st.st_size);
}

bool BorraArchivo(const std::u16string& cadArch) {
  const std::string nombre = NombreSistema(cadArch);
  if (nombre.empty() || nombre.find('\0') != std::string::npos) return false;
  return unlink(nombre.c_str()) == 0;  // never a directory
}

}  // namespace plataforma
}  // namespace velqua
