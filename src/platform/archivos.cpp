#include "platform/archivos.h"

#include <fcntl.h>
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

namespace {

// Opens with O_NONBLOCK and keeps the descriptor when `acepta` takes its
// type; -1 otherwise.
int AbreDescriptor(const std::u16string& cadArch, int banderas, bool (*acepta)(mode_t)) {
  const std::string nombre = NombreSistema(cadArch);
  if (nombre.empty() || nombre.find('\0') != std::string::npos) return -1;
  const int fd = open(nombre.c_str(), banderas | O_NONBLOCK | O_CLOEXEC, 0666);
  if (fd < 0) return -1;
  struct stat st {};
  if (fstat(fd, &st) != 0 || !acepta(st.st_mode)) {
    close(fd);
    return -1;
  }
  return fd;
}

// AbreDescriptor, then blocking back on, wrapped in a FILE.
std::FILE* AbreSinEsperar(const std::u16string& cadArch, int banderas, const char* modo,
                          bool (*acepta)(mode_t)) {
  const int fd = AbreDescriptor(cadArch, banderas, acepta);
  if (fd < 0) return nullptr;
  fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
  std::FILE* f = fdopen(fd, modo);
  if (f == nullptr) close(fd);
  return f;
}

bool EsRegular(mode_t m) { return S_ISREG(m); }
bool EsRegularODispositivo(mode_t m) { return S_ISREG(m) || S_ISCHR(m); }

}  // namespace

int AbreDescriptorLectura(const std::u16string& cadArch) {
  return AbreDescriptor(cadArch, O_RDONLY, EsRegular);
}

std::FILE* AbreAnexar(const std::u16string& cadArch) {
  return AbreSinEsperar(cadArch, O_WRONLY | O_APPEND | O_CREAT, "ab", EsRegularODispositivo);
}

bool BorraArchivo(const std::u16string& cadArch) {
  const std::string nombre = NombreSistema(cadArch);
  if (nombre.empty() || nombre.find('\0') != std::string::npos) return false;
  return unlink(nombre.c_str()) == 0;  // never a directory
}

}  // namespace plataforma
}  // namespace velqua
