// The unrecognised-call log and the KX-TDA extension list. Both
// files are opened and closed within one operation, and no failure of
// theirs ever leaves the translator.
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

#include "platform/archivos.h"
#include "platform/mayusculas.h"
#include "platform/reloj.h"
#include "translator/texto_traductor.h"
#include "velqua/texto.h"
#include "velqua/traductor.h"

namespace velqua {
namespace {

// "yyyy Mmm dd hh:mm:ss" from the clock seam, e.g. "2026 Nov 18 09:05:03".
std::u16string MarcaDeTiempo() {
  const plataforma::FechaHora f = plataforma::RelojActual().Ahora();
  char cifras[32];
  std::snprintf(cifras, sizeof cifras, "%04d", static_cast<int>(f.intAnio));
  std::u16string cad = DesdeAnsi(cifras);
  cad += u' ';
  cad += plataforma::NombreMesAbreviado(f.intMes);
  std::snprintf(cifras, sizeof cifras, " %02d %02d:%02d:%02d", static_cast<int>(f.intDia),
                static_cast<int>(f.intHora), static_cast<int>(f.intMinuto),
                static_cast<int>(f.intSegundo));
  return cad + DesdeAnsi(cifras);
}

// The bytes of a file descriptor one at a time, read a block at a time
// (what getc does for a FILE, without the system calls stdio adds to an
// open). Closes the descriptor at the end of the scope. A read error counts
// as the end of the file, as for getc.
class LectorBytes {
 public:
  explicit LectorBytes(int fd) : fd_(fd) {}
  ~LectorBytes() {
    if (fd_ >= 0) close(fd_);
  }
  LectorBytes(const LectorBytes&) = delete;
  LectorBytes& operator=(const LectorBytes&) = delete;

  bool Abierto() const { return fd_ >= 0; }
  // The next byte (0 to 255), or EOF.
  int Lee() {
    if (pos_ == fin_ && !Llena()) return EOF;
    return static_cast<unsigned char>(bloque_[pos_++]);
  }
  // Gives back the byte the last Lee returned.
  void Devuelve() { --pos_; }

 private:
  bool Llena() {
    ssize_t n = 0;
    do {
      n = read(fd_, bloque_, sizeof bloque_);
    } while (n < 0 && errno == EINTR);
    if (n <= 0) return false;
    pos_ = 0;
    fin_ = static_cast<std::size_t>(n);
    return true;
  }

  int fd_;
  char bloque_[4096];
  std::size_t pos_ = 0;
  std::size_t fin_ = 0;
};

// Reads one line ending in CR LF, a lone CR or a lone LF (doc/translator.md);
// false at the end of the file.
bool LeeLinea(LectorBytes& in, std::string& linea) {
  linea.clear();
  int c = in.Lee();
  if (c == EOF) return false;
  while (c != EOF && c != '\r' && c != '\n') {
    linea.push_back(static_cast<char>(c));
    c = in.Lee();
  }
  if (c == '\r') {
    const int siguiente = in.Lee();
    if (siguiente != '\n' && siguiente != EOF) in.Devuelve();
  }
  return true;
}

// Closes a FILE when the scope ends, on every way out.
struct CierraArchivo {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using Archivo = std::unique_ptr<std::FILE, CierraArchivo>;

// Round half to even, whatever the floating-point rounding mode.
int32_t RedondeoBancario(double v) {
  const double piso = std::floor(v);
  const double resto = v - piso;
  int64_t n = static_cast<int64_t>(piso);
  if (resto > 0.5 || (resto == 0.5 && n % 2 != 0)) ++n;
  return static_cast<int32_t>(n);
}

}  // namespace

void clsTraductor::RegistraLlamadaError() {
  if (cadArchLlamadasError.empty()) return;
  try {
    // Refused (FIFO, directory, missing folder...): the entry is lost silently.
    const Archivo out(plataforma::AbreAnexar(cadArchLlamadasError));
    if (!out) return;
    std::u16string entrada = u"\r\n\r\nLlamada no reconocida (";
    entrada += MarcaDeTiempo();
    entrada += u"): \r\n";
    entrada += EsCasoNorstar() ? cadBuffer : cadLinea;
    entrada += u"\r\n";
    const std::string bytes = AAnsi(entrada);
    std::fwrite(bytes.data(), 1, bytes.size(), out.get());
  } catch (const std::exception&) {
    // Every failure after the name check is swallowed: a log never fails a record.
  }
}

void clsTraductor::BuscaExtensionKXTDA(const std::u16string& cadCodigo) {
  cadDato.clear();
  if (!cadArchListaExtensiones.empty()) {
    try {
      // Only a regular file is read: a FIFO or a device (/dev/zero, a
      // terminal) could block or never end; it counts as no list.
      LectorBytes in(plataforma::AbreDescriptorLectura(cadArchListaExtensiones));
      std::string bytes;
      while (in.Abierto() && cadDato.empty() && LeeLinea(in, bytes)) {
        if (bytes.empty()) continue;
        const std::u16string linea = DesdeAnsi(bytes);
        std::size_t p = linea.find(u';');
        if (p == std::u16string::npos) p = linea.find(u',');
        if (p == std::u16string::npos || p == 0) continue;
        const std::u16string_view vista(linea);
        if (plataforma::IgualesSinMayusculas(traductor::SinBlancos(vista.substr(0, p)),
                                             cadCodigo)) {
          cadDato.assign(traductor::SinBlancos(vista.substr(p + 1)));
        }
      }
    } catch (const std::exception&) {
      cadDato.clear();  // an unreadable list counts as no list
    }
  }
  if (!cadDato.empty()) return;
  const int32_t n = RedondeoBancario(9999.0 * NumeroAleatorio() + 1.0);
  cadDato = traductor::FormatoCuatroCifras(n);
}

// A number in [0, 1) with 24 random bits, the resolution of a single-precision
// random number: n = 9999 r + 1 then covers 1 to 10000 as hosts expect.
double clsTraductor::NumeroAleatorio() {
  return static_cast<double>(rndGenerador() >> 8) / 16777216.0;
}

}  // namespace velqua
