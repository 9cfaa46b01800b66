// Abrir and GuardarComo: the version-3 reader and writer and the version-2
// reader. Layout constants: files/formato_cfg.h.
//
// Bad input is bounded by construction: the readers never allocate from a
// count in the file; every record is read only when it lies wholly inside the
// file's length, so a header promising 32767 records costs at most the file.
#include <array>
#include <cstdio>
#include <fstream>
#include <vector>

#include "files/errores_archivo.h"
#include "files/formato_cfg.h"
#include "files/recorte.h"
#include "model/datos_cfg.h"
#include "platform/archivos.h"
#include "velqua/error.h"

namespace velqua {
namespace {

using namespace formato_cfg;  // NOLINT(google-build-using-namespace): layout constants

// The standard runtime error of a file that cannot be opened or read. It
// never reaches a caller: Abrir turns every failure inside a reader into 1505.
[[noreturn]] void LanzaErrorAccesoArchivo() {
  throw Error(75, u"Velqua", u"Error de acceso a la ruta o el archivo");
}

// A file opened for binary reading; closed on every way out of a reader.
class ArchivoLectura {
 public:
  explicit ArchivoLectura(const std::u16string& cadArch)
      : f_(plataforma::NombreSistema(cadArch), std::ios::binary) {
    if (!f_) LanzaErrorAccesoArchivo();
    f_.seekg(0, std::ios::end);
    const std::streamoff fin = f_.tellg();
    if (fin < 0) LanzaErrorAccesoArchivo();
    largo_ = static_cast<uint64_t>(fin);
    f_.seekg(0, std::ios::beg);
  }
  uint64_t Largo() const { return largo_; }
  // Reads n bytes at the current offset; a short read is a runtime failure.
  void Lee(uint8_t* p, size_t n) {
    f_.read(reinterpret_cast<char*>(p), static_cast<std::streamsize>(n));
    if (static_cast<size_t>(f_.gcount()) != n) LanzaErrorAccesoArchivo();
  }

 private:
  std::ifstream f_;
  uint64_t largo_ = 0;
};

// A version-2 separator or constant may be stored between single quotes (so
// that blanks survive): drop a leading "'", then a trailing "'".
std::u16string Desentrecomilla(std::u16string cad) {
  if (!cad.empty() && cad.front() == u'\'') cad.erase(0, 1);
  if (!cad.empty() && cad.back() == u'\'') cad.pop_back();
  return cad;
}

// The data-field conversion of a version-2 file, in writing order: the pair
// index and the key that takes it. Several keys share a pair: version 2 had
// one column per datum, whatever the call type or transfer step.
struct ConversionV2 {
  uint8_t btPar;
  emParamDato emClave;
};

constexpr ConversionV2 kConversionDatosV2[] = {
    {0, emParamFechaDia},
    {1, emParamFechaMes},
    {2, emParamFechaAnio},
    {3, emParamFechaHoras},
    {4, emParamFechaMinutos},
    {5, emParamFechaSegundos},
    {6, emParamTelefonoEntrante},
    {6, emParamTelefonoEntranteInicioTransferida},
    {6, emParamTelefonoEntranteFinTransferida},
    {7, emParamTelefonoSaliente},
    {7, emParamTelefonoSalienteInicioTransferida},
    {7, emParamTelefonoSalienteFinTransferida},
    {8, emParamTelefonoInterExtension},
    {8, emParamTelefonoInterExtensionInicioTransferida},
    {8, emParamTelefonoInterExtensionFinTransferida},
    {9, emParamTelefonoInterTroncal},
    {9, emParamTelefonoInterTroncalInicioTransferida},
    {9, emParamTelefonoInterTroncalFinTransferida},
    {10, emParamTroncalEntrante},
    {11, emParamExtensionSaliente},
    {12, emParamExtension1InterExtension},
    {13, emParamTroncal1InterTroncal},
    {14, emParamExtensionEntrante},
    {15, emParamTroncalSaliente},
    {16, emParamExtension2InterExtension},
    {17, emParamTroncal2InterTroncal},
    {18, emParamTroncalEntranteInicioTransferida},
    {19, emParamExtensionSalienteInicioTransferida},
    {20, emParamExtension1InterExtensionInicioTransferida},
    {21, emParamTroncal1InterTroncalInicioTransferida},
    {18, emParamTroncalEntranteFinTransferida},
    {19, emParamExtensionSalienteFinTransferida},
    {20, emParamExtension1InterExtensionFinTransferida},
    {21, emParamTroncal1InterTroncalFinTransferida},
    {22, emParamExtensionEntranteInicioTransferida},
    {23, emParamTroncalSalienteInicioTransferida},
    {24, emParamExtension2InterExtensionInicioTransferida},
    {25, emParamTroncal2InterTroncalInicioTransferida},
    {22, emParamExtensionEntranteFinTransferida},
    {23, emParamTroncalSalienteFinTransferida},
    {24, emParamExtension2InterExtensionFinTransferida},
    {25, emParamTroncal2InterTroncalFinTransferida},
    {26, emParamDuracionDia},
    {27, emParamDuracionMes},
    {28, emParamDuracionAnio},
    {29, emParamDuracionHoras},
    {30, emParamDuracionMinutos},
    {31, emParamDuracionSegundos},
    {32, emParamCodigoCuenta},
};

// The constant conversion of a version-2 file: entry index and key. Entry 3
// depends on the case and is handled apart (kEntradaCasoV2).
struct ConversionCteV2 {
  uint8_t btEntrada;
  emParamDatoConstante emClave;
};

constexpr uint8_t kEntradaCasoV2 = 3;
constexpr ConversionCteV2 kConversionCtesV2[] = {
    {0, emDatoCteIdentificadorHorarioMatutinoFecha},
    {1, emDatoCteIdentEntranteFinTransferida},
    {1, emDatoCteIdentSalienteFinTransferida},
    {2, emDatoCteIdentEntrante},
    {kEntradaCasoV2, emDatoCteIdentEntranteAND},  // emDatoCteIdentEntranteOR unless case 1
    {4, emDatoCteIdentSaliente},
    {5, emDatoCteIdentSalienteAND},
    {6, emDatoCteIdentInterExtension},
    {7, emDatoCteIdentInterExtensionAND},
    {8, emDatoCteIdentInterTroncal},
    {9, emDatoCteIdentInterTroncalAND},
};

}  // namespace

// ---- Abrir ----

void DatosCfgConmut::Abrir(const std::u16string& cadArch) {
  int32_t lnCodigo = emNoErrorConfig;
  const auto falla = [&]() {
    archivos::LanzaErrorConfig(lnCodigo, archivos::kFuenteAbrir,
                               archivos::DescripcionConArchivo(ObtMensajeError(lnCodigo), cadArch));
  };
  if (archivos::Recorta(cadArch).empty()) falla();

  lnCodigo = emErrorNoHayArchivo;
  if (!plataforma::TieneAtributoArchivo(cadArch)) falla();

  lnCodigo = emErrorConfigAbrir;
  bool bolLeido = false;
  try {
    LeeArchivoV3(cadArch, bolLeido);
    if (!bolLeido) LeeArchivoV2(cadArch, bolLeido);
  } catch (...) {  // any runtime failure inside the readers
    falla();
  }
  if (!bolLeido) falla();
  bolModificado = false;
  NotificaConfiguracionCargada();
}

void DatosCfgConmut::LeeArchivoV3(const std::u16string& cadArch, bool& bolLeido) {
  bolLeido = false;
  if (plataforma::LongitudArchivo(cadArch) < static_cast<int64_t>(kTamCabeceraV3)) return;
  ArchivoLectura f(cadArch);
  std::array<uint8_t, kTamCabeceraV3> cab{};
  if (f.Largo() < kTamCabeceraV3) return;  // shrank since its length was read
  f.Lee(cab.data(), cab.size());
  const uint64_t largo = f.Largo();

  RegCfg h = DecodificaCabecera(cab.data());
  if (h.emVersionCfg != kVersionV3 || h.emCasoCfg < kCasoMinimoV3 || h.emCasoCfg > kCasoMaximoV3) {
    return;
  }
  // Separator, brand and model must not be empty; blanks count as content,
  // only U+0000 is removed.
  if (QuitaNulos(h.cadSeparador).empty() || QuitaNulos(h.cadMarca).empty() ||
      QuitaNulos(h.cadModelo).empty()) {
    return;
  }

  EstableceValoresIniciales();
  udtCfg = h;  // whole: entry 0 of the wiring, the reserve and both counts
  const int16_t intDatos = h.intDATOCompletos;
  const int16_t intCtes = h.intCTECompletos;
  uint64_t off = kTamCabeceraV3;
  for (int16_t i = 0; i < intDatos; ++i) {
    if (off + kTamRegDATO > largo) break;
    std::array<uint8_t, kTamRegDATO> b{};
    f.Lee(b.data(), b.size());
    const RegDATO r = DecodificaDATO(b.data());
    if (ValidaDATO(r)) {
      DATOActivo(r.emParam);
      DATOPos(r.btPos);
      DATOTam(r.btTam);
      TipoDatoDATO(r.emTipo);
    }
    off += kTamRegDATO;
  }
  for (int16_t i = 0; i < intCtes; ++i) {
    if (off + kTamRegCTE > largo) break;
    std::array<uint8_t, kTamRegCTE> b{};
    f.Lee(b.data(), b.size());
    const RegCTE r = DecodificaCTE(b.data());
    if (ValidaCTE(r)) {  // the stored type and width are not applied
      CTEActivo(r.emParam);
      CTEPos(r.btPos);
      Constante(r.cadTexto);
    }
    off += kTamRegCTE;
  }
  bolLeido = true;
}

void DatosCfgConmut::LeeArchivoV2(const std::u16string& cadArch, bool& bolLeido) {
  bolLeido = false;
  if (plataforma::LongitudArchivo(cadArch) != static_cast<int64_t>(kTamArchivoV2)) return;
  std::array<uint8_t, kTamArchivoV2> b{};
  {
    ArchivoLectura f(cadArch);  // closed at once after the one record
    if (f.Largo() < kTamArchivoV2) LanzaErrorAccesoArchivo();
    f.Lee(b.data(), b.size());
  }
  if (b[kV2OffMayor] != kV2Mayor || b[kV2OffMenor] != kV2Menor) return;

  EstableceValoresIniciales();
  udtCfg.emVersionCfg = emVersion2_0;
  udtCfg.emCasoCfg = static_cast<emCasos>(b[kV2OffCaso] + 1);  // no range test
  Comentarios(LeeTexto(&b[kV2OffComentarios], kV2TamComentarios));
  Marca(archivos::Recorta(LeeTexto(&b[kV2OffMarca], kV2TamMarca)));
  Modelo(archivos::Recorta(LeeTexto(&b[kV2OffModelo], kV2TamModelo)));
  Separador(Desentrecomilla(archivos::Recorta(LeeTexto(&b[kV2OffSeparador], kV2TamSeparador))));

  if (udtCfg.emCasoCfg == emCasoSamsungNX_820) {
    CTEActivo(emDatoCteIdentEntranteInicioTransferida);
    CTEPos(42);
    Constante(u"x");
    CTEActivo(emDatoCteIdentSalienteInicioTransferida);
    CTEPos(42);
    Constante(u"x");
  }
  for (const ConversionV2& c : kConversionDatosV2) {
    const size_t k = kV2OffPares + size_t{2} * c.btPar;
    DATOActivo(c.emClave);
    DATOPos(b[k]);
    DATOTam(b[k + 1]);
    TipoDatoDATO(emValorNumerico);
  }
  for (const ConversionCteV2& c : kConversionCtesV2) {
    const size_t k = kV2OffConstantes + kV2TamEntradaCte * c.btEntrada;
    emParamDatoConstante emClave = c.emClave;
    if (c.btEntrada == kEntradaCasoV2 && udtCfg.emCasoCfg != emCasoEstandar) {
      emClave = emDatoCteIdentEntranteOR;
    }
    CTEActivo(emClave);
    CTEPos(b[k]);
    Constante(Desentrecomilla(archivos::Recorta(LeeTexto(&b[k + 1], kV2TamTextoCte))));
  }
  bolLeido = true;
}

// ---- GuardarComo ----

void DatosCfgConmut::GuardarComo(const std::u16string& cadArch) {
  const auto falla = [&](int32_t lnCodigo) {
    archivos::LanzaErrorConfig(lnCodigo, archivos::kFuenteGuardarComo, ObtMensajeError(lnCodigo));
  };
  if (archivos::Recorta(cadArch).empty()) falla(emErrorNoHayArchivo);
  if (udtCfg.emCasoCfg == emNoCaso || Marca().empty() || Modelo().empty() || Separador().empty()) {
    falla(emErrorConfigDatosIncompletos);
  }
  CuentaCompletos();

  // The whole file is composed in memory (at most 660 + 10 x 67 + 30 x 28
  // bytes: a valid key has at most one record) and written in one piece.
  const auto intDatos = static_cast<size_t>(udtCfg.intDATOCompletos);
  const auto intCtes = static_cast<size_t>(udtCfg.intCTECompletos);
  std::vector<uint8_t> bytes(kTamCabeceraV3 + kTamRegDATO * intDatos + kTamRegCTE * intCtes);
  RegCfg h = udtCfg;
  h.emVersionCfg = static_cast<emVersionConfiguracion>(kVersionV3);  // the member keeps its own
  CodificaCabecera(h, bytes.data());
  size_t off = kTamCabeceraV3;
  size_t n = 0;
  for (const RegDATO& r : udtDATO) {
    if (n == intDatos) break;
    if (!ValidaDATO(r)) continue;
    CodificaDATO(r, &bytes[off]);
    off += kTamRegDATO;
    ++n;
  }
  n = 0;
  for (const RegCTE& r : udtCTE) {
    if (n == intCtes) break;
    if (!ValidaCTE(r)) continue;
    CodificaCTE(r, &bytes[off]);
    off += kTamRegCTE;
    ++n;
  }

  // From here on no failure is reported: once the checks pass, GuardarComo
  // does not fail (a file that cannot be written is left as it is).
  plataforma::BorraArchivo(cadArch);
  const std::string nombre = plataforma::NombreSistema(cadArch);
  if (nombre.find('\0') == std::string::npos) {  // a U+0000 would name another file
    std::ofstream f(nombre, std::ios::binary | std::ios::trunc);
    if (f) f.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(off));
  }
  bolModificado = false;
}

}  // namespace velqua
