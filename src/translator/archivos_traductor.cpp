// The unrecognised-call log and the KX-TDA extension list. Both
// files are opened and closed within one operation, and no failure of
// theirs ever leaves the translator.
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/mayusculas.h"
#include "platform/reloj.h"
#include "translator/motor_traductor.h"
#include "translator/texto_traductor.h"
#include "velqua/lineas.h"
#include "velqua/texto.h"

namespace velqua {
namespace {

// "yyyy Mmm dd hh:mm:ss", e.g. "2026 Nov 18 09:05:03".
std::u16string MarcaDeTiempo(const FechaHora& f) {
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

// Round half to even, whatever the floating-point rounding mode.
int32_t RedondeoBancario(double v) {
  const double piso = std::floor(v);
  const double resto = v - piso;
  int64_t n = static_cast<int64_t>(piso);
  if (resto > 0.5 || (resto == 0.5 && n % 2 != 0)) ++n;
  return static_cast<int32_t>(n);
}

}  // namespace

void MotorTraductor::RegistraLlamadaError() {
  if (cadArchLlamadasError.empty()) return;
  try {
    std::u16string entrada = u"\r\n\r\nLlamada no reconocida (";
    entrada += MarcaDeTiempo(udtEntorno->Ahora());
    entrada += u"): \r\n";
    entrada += EsCasoNorstar() ? cadBuffer : cadLinea;
    entrada += u"\r\n";
    // Refused (FIFO, directory, missing folder...): the entry is lost silently.
    udtEntorno->AnexaArchivo(cadArchLlamadasError, AAnsi(entrada));
  } catch (const std::exception&) {
    // Every failure after the name check is swallowed: a log never fails a record.
  }
}

// One line of the extension list, "code;extension" or "code,extension": the
// extension, blanks trimmed, into cadDato when the code matches cadCodigo
// (case aside). Empty lines and lines without a code are passed over.
void MotorTraductor::BuscaEnLineaDeLista(std::string_view bytes, const std::u16string& cadCodigo) {
  if (bytes.empty()) return;
  const std::u16string linea = DesdeAnsi(bytes);
  std::size_t p = linea.find(u';');
  if (p == std::u16string::npos) p = linea.find(u',');
  if (p == std::u16string::npos || p == 0) return;
  const std::u16string_view vista(linea);
  if (plataforma::IgualesSinMayusculas(traductor::SinBlancos(vista.substr(0, p)), cadCodigo)) {
    cadDato.assign(traductor::SinBlancos(vista.substr(p + 1)));
  }
}

void MotorTraductor::BuscaExtensionKXTDA(const std::u16string& cadCodigo) {
  cadDato.clear();
  if (!cadArchListaExtensiones.empty()) {
    try {
      // Only a regular file is read: a FIFO or a device (/dev/zero, a
      // terminal) could block or never end; it counts as no list.
      // Read a block at a time, so that a list larger than memory is read
      // line by line; the first line whose code matches ends the search.
      const std::unique_ptr<LectorArchivo> lector =
          udtEntorno->AbreLectura(cadArchListaExtensiones);
      const auto linea = [&](std::string_view bytes, int64_t) {
        if (cadDato.empty()) BuscaEnLineaDeLista(bytes, cadCodigo);
      };
      CortadorLineas cortador;
      char bloque[4096];
      while (lector != nullptr && cadDato.empty()) {
        const std::size_t n = lector->Lee(bloque, sizeof bloque);
        if (n == 0) break;
        cortador.Alimenta(std::string_view(bloque, n), linea);
      }
      cortador.Termina(linea);
    } catch (const std::exception&) {
      cadDato.clear();  // an unreadable list counts as no list
    }
  }
  if (!cadDato.empty()) return;
  const int32_t n = RedondeoBancario(9999.0 * NumeroAleatorio() + 1.0);
  cadDato = traductor::FormatoCuatroCifras(n);
}

// A number in [0, 1) with 24 random bits, the resolution of a single-precision
// random number: n = 9999 r + 1, rounded half to even, then covers 1 to
// 10000, each extension drawn as "0001" to "9999" or "10000".
double MotorTraductor::NumeroAleatorio() {
  return static_cast<double>(rndGenerador() >> 8) / 16777216.0;
}

}  // namespace velqua
