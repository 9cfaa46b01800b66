#include "bench_configs.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <stdexcept>

#include "velqua/texto.h"

namespace velqua_bench {
namespace {

using namespace velqua;

void Campo(clsCfgConmut& cfg, int32_t emClave, int intPos, int intTam, emTipoDato emTipo) {
  cfg.DATOActivo(static_cast<emParamDato>(emClave));
  cfg.DATOPos(static_cast<uint8_t>(intPos));
  cfg.DATOTam(static_cast<uint8_t>(intTam));
  cfg.TipoDatoDATO(emTipo);
}

void Constante(clsCfgConmut& cfg, int32_t emClave, int intPos, const std::u16string& cadTexto) {
  cfg.CTEActivo(static_cast<emParamDatoConstante>(emClave));
  cfg.Constante(cadTexto);
  cfg.CTEPos(static_cast<uint8_t>(intPos));
}

bool EnLista(int32_t k, std::initializer_list<int32_t> lista) {
  for (int32_t x : lista) {
    if (x == k) return true;
  }
  return false;
}

// Column, width and kind of every data-field key in the case-1 layout.
void CampoCaso1(clsCfgConmut& cfg, int32_t k) {
  const emTipoDato N = emValorNumerico;
  const emTipoDato T = emValorCadena;
  switch (k) {
    case emParamFechaDia:
    case emParamDuracionDia:
      return Campo(cfg, k, 1, 2, N);
    case emParamFechaMes:
    case emParamDuracionMes:
      return Campo(cfg, k, 4, 2, N);
    case emParamFechaAnio:
    case emParamDuracionAnio:
      return Campo(cfg, k, 7, 4, N);
    case emParamFechaHoras:
      return Campo(cfg, k, 12, 2, N);
    case emParamFechaMinutos:
      return Campo(cfg, k, 15, 2, N);
    case emParamFechaSegundos:
      return Campo(cfg, k, 18, 2, N);
    case emParamDuracionHoras:
      return Campo(cfg, k, 21, 2, N);
    case emParamDuracionMinutos:
      return Campo(cfg, k, 24, 2, N);
    case emParamDuracionSegundos:
      return Campo(cfg, k, 27, 2, N);
    case emParamRingHoras:
      return Campo(cfg, k, 98, 1, N);  // never a number: 0 hours
    case emParamRingMinutos:
      return Campo(cfg, k, 30, 2, N);
    case emParamRingSegundos:
      return Campo(cfg, k, 33, 2, N);
    case emParamCodigoCuenta:
      return Campo(cfg, k, 77, 10, T);
    default:
      break;
  }
  if ((k >= emParamTelefonoEntrante && k <= emParamTelefonoInterTroncalFinTransferida) ||
      (k >= emParamTelefonoEntranteEnTransferencia &&
       k <= emParamTelefonoInterTroncalEnTransferencia)) {
    return Campo(cfg, k, 51, 25, T);
  }
  if (EnLista(k, {emParamExtension2InterExtension, emParamExtension2InterExtensionInicioTransferida,
                  emParamExtension2InterExtensionFinTransferida,
                  emParamExtension2InterExtensionEnTransferencia})) {
    return Campo(cfg, k, 88, 5, T);
  }
  if (EnLista(k, {emParamTroncal2InterTroncal, emParamTroncal2InterTroncalInicioTransferida,
                  emParamTroncal2InterTroncalFinTransferida,
                  emParamTroncal2InterTroncalEnTransferencia})) {
    return Campo(cfg, k, 94, 3, T);
  }
  if (EnLista(k, {emParamTroncalEntrante, emParamTroncalSaliente, emParamTroncal1InterTroncal,
                  emParamTroncalEntranteInicioTransferida, emParamTroncalEntranteFinTransferida,
                  emParamTroncalSalienteInicioTransferida, emParamTroncalSalienteFinTransferida,
                  emParamTroncal1InterTroncalInicioTransferida,
                  emParamTroncal1InterTroncalFinTransferida, emParamTroncalEntranteEnTransferencia,
                  emParamTroncalSalienteEnTransferencia, emParamTroncal1InterTroncalEnTransferencia,
                  emParamTroncalCodigoCuenta, emParamTroncalTransferida})) {
    return Campo(cfg, k, 47, 3, T);
  }
  Campo(cfg, k, 41, 5, T);  // every extension key
}

// The fields the generated records use come first, so that a configuration
// of the first n keys translates them as fully as n allows.
std::vector<int32_t> OrdenCampos() {
  std::vector<int32_t> orden = {emParamFechaDia,
                                emParamFechaMes,
                                emParamFechaAnio,
                                emParamFechaHoras,
                                emParamFechaMinutos,
                                emParamFechaSegundos,
                                emParamDuracionHoras,
                                emParamDuracionMinutos,
                                emParamDuracionSegundos,
                                emParamRingMinutos,
                                emParamRingSegundos,
                                emParamTelefonoEntrante,
                                emParamTelefonoSaliente,
                                emParamTelefonoInterExtension,
                                emParamTelefonoInterTroncal,
                                emParamTroncalEntrante,
                                emParamExtensionEntrante,
                                emParamTroncalSaliente,
                                emParamExtensionSaliente,
                                emParamExtension1InterExtension,
                                emParamExtension2InterExtension,
                                emParamTroncal1InterTroncal,
                                emParamTroncal2InterTroncal,
                                emParamCodigoCuenta};
  for (int32_t k = emParamFechaDia; k <= emParamExtensionTransferida; ++k) {
    bool ya = false;
    for (int32_t x : orden) ya = ya || x == k;
    if (!ya) orden.push_back(k);
  }
  return orden;
}

void ConstantesCaso1(clsCfgConmut& cfg) {
  Constante(cfg, emDatoCteIdentEntrante, 36, u"I");
  Constante(cfg, emDatoCteIdentSaliente, 36, u"O");
  Constante(cfg, emDatoCteIdentInterExtension, 36, u"X");
  Constante(cfg, emDatoCteIdentInterTroncal, 36, u"T");
  Constante(cfg, emDatoCteIdentCodigoCuenta, 36, u"A");
  for (int32_t k :
       {emDatoCteIdentEntranteInicioTransferida, emDatoCteIdentSalienteInicioTransferida,
        emDatoCteIdentInterExtensionInicioTransferida,
        emDatoCteIdentInterTroncalInicioTransferida}) {
    Constante(cfg, k, 38, u"TS");
  }
  for (int32_t k :
       {emDatoCteIdentEntranteFinTransferida, emDatoCteIdentSalienteFinTransferida,
        emDatoCteIdentInterExtensionFinTransferida, emDatoCteIdentInterTroncalFinTransferida}) {
    Constante(cfg, k, 38, u"TE");
  }
  for (int32_t k :
       {emDatoCteIdentEntranteEnTransferencia, emDatoCteIdentSalienteEnTransferencia,
        emDatoCteIdentInterExtensionEnTransferencia, emDatoCteIdentInterTroncalEnTransferencia}) {
    Constante(cfg, k, 38, u"tx");  // lower case: the comparison ignores it
  }
  Constante(cfg, emDatoCteIdentNoContestada, 38, u"NA");
}

std::u16string U(const std::string& s) { return DesdeAnsi(s); }

// A fixed-width cell: s cut or padded with blanks to n characters.
std::string Celda(const std::string& s, std::size_t n) {
  std::string r = s.substr(0, n);
  r.resize(n, ' ');
  return r;
}

std::string Dos(unsigned v) {
  char b[8];
  std::snprintf(b, sizeof b, "%02u", v % 100);
  return b;
}

// A small deterministic generator, so every run sees the same records.
struct Lcg {
  uint64_t s = 0x9E3779B97F4A7C15ull;
  unsigned operator()(unsigned n) {
    s = s * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<unsigned>((s >> 33) % n);
  }
};

std::string Digitos(Lcg& rnd, std::size_t n) {
  std::string r;
  for (std::size_t i = 0; i < n; ++i) r += static_cast<char>('0' + rnd(10));
  return r;
}

}  // namespace

std::shared_ptr<clsCfgConmut> ConfigCaso1(int intCampos) {
  auto cfg = std::make_shared<clsCfgConmut>();
  cfg->Caso(emCasoEstandar);
  cfg->Marca(u"Bench");
  cfg->Modelo(u"Caso 1, 100 columnas");
  cfg->Separador(u"\r\n");  // GuardarComo needs one; case 1 never reads it
  const std::vector<int32_t> orden = OrdenCampos();
  for (int i = 0; i < intCampos && i < static_cast<int>(orden.size()); ++i) {
    CampoCaso1(*cfg, orden[static_cast<std::size_t>(i)]);
  }
  ConstantesCaso1(*cfg);
  return cfg;
}

std::shared_ptr<clsCfgConmut> ConfigCompleta() {
  auto cfg = ConfigCaso1(kTodosLosCampos);
  cfg->Comentarios(u"Every field and every constant defined, for the file benchmarks.");
  Constante(*cfg, emDatoCteIdentificadorHorarioMatutinoFecha, 20, u"AM");
  Constante(*cfg, emDatoCteIdentificadorHorarioMatutinoDuracion, 29, u"AM");
  const int32_t otras[] = {emDatoCteIdentEntranteAND,       emDatoCteIdentEntranteOR,
                           emDatoCteIdentSalienteAND,       emDatoCteIdentSalienteOR,
                           emDatoCteIdentInterExtensionAND, emDatoCteIdentInterExtensionOR,
                           emDatoCteIdentInterTroncalAND,   emDatoCteIdentInterTroncalOR};
  int intPos = 98;
  for (int32_t k : otras) Constante(*cfg, k, intPos++, u"CONSTANTE DE 20 CARS");
  cfg->ActivaPin(emPuertoDB9, 2, 3);
  cfg->ActivaPin(emPuertoDB9, 3, 2);
  cfg->ActivaPin(emPuertoDB9, 5, 5);
  return cfg;
}

std::vector<std::u16string> RegistrosCaso1(std::size_t intCuantos, std::size_t intLargo) {
  Lcg rnd;
  std::vector<std::u16string> out;
  for (std::size_t i = 0; i < intCuantos; ++i) {
    const unsigned tipo = rnd(20);  // 0-9 O, 10-15 I, 16-17 X, 18 T, 19 A
    const char marca = tipo < 10 ? 'O' : tipo < 16 ? 'I' : tipo < 18 ? 'X' : tipo < 19 ? 'T' : 'A';
    const unsigned atr = rnd(10);
    std::string atributo = atr == 0 ? "TS" : atr == 1 ? "TE" : atr == 2 ? "TX" : "  ";
    if (marca == 'I' && atr == 3) atributo = "NA";
    std::string l;
    l += Dos(1 + rnd(28)) + "/" + Dos(1 + rnd(12)) + "/2026 ";
    l += Dos(rnd(24)) + ":" + Dos(rnd(60)) + ":" + Dos(rnd(60)) + " ";
    l += "00:" + Dos(rnd(60)) + ":" + Dos(rnd(60)) + " ";
    l += (marca == 'I' ? Dos(rnd(2)) + ":" + Dos(rnd(60)) : std::string(5, ' ')) + " ";
    l += std::string(1, marca) + " " + atributo + " ";
    l += Celda("  " + Digitos(rnd, 3), 5) + " " + Digitos(rnd, 3) + " ";
    l += Celda(marca == 'X' ? "" : Digitos(rnd, 7 + rnd(8)), 25) + " ";
    l += Celda(marca == 'A' ? Digitos(rnd, 6) : "", 10) + " ";
    l += Celda(marca == 'X' ? "  " + Digitos(rnd, 3) : "", 5) + " ";
    l += Celda(marca == 'T' ? Digitos(rnd, 3) : "", 3) + " CD ";
    l.resize(100, ' ');
    if (intLargo != 0) l.resize(intLargo, ' ');
    out.push_back(U(l));
  }
  return out;
}

// The bundled Norstar layout, as users get it.
std::shared_ptr<clsCfgConmut> ConfigCaso4() {
  auto cfg = std::make_shared<clsCfgConmut>();
  cfg->Abrir(DesdeUtf8(VELQUA_EXAMPLES "/norstar/norstar.cfg"));
  return cfg;
}

std::vector<std::u16string> RegistrosCaso4() {
  const std::vector<std::vector<std::string>> bloques = {
      {"-------- 02/03/26 08:01:12 LINE = 0003 STN = 7425", "00:00:00 OUTGOING CALL",
       "         DIGITS DIALED 5551212", "00:03:47 CALL RELEASED"},
      {"-------- 02/03/26 08:05:40 LINE = 0083 STN = 7726", "00:00:00 INCOMING CALL RINGING 0:12",
       "00:02:47 CALL RELEASED"},
      {"-------- 02/03/26 08:12:03 LINE = 0083 STN = 7730", "         CALLING NUMBER 6135550199",
       "         NAME SMITH JOHN", "00:00:00 INCOMING CALL RINGING 0:05", "00:00:39 HOLD",
       "00:01:12 UNHOLD", "00:06:31 CALL RELEASED"},
      {"-------- 02/03/26 08:20:55 LINE = 0084 STN = 7426", "00:00:00 NO ANSWER RINGING 0:22"},
      {"-------- 02/03/26 08:31:10 LINE = 0083 STN = 7726", "00:00:00 INCOMING CALL RINGING 0:04",
       "00:01:10 TRANSFERRED"},
      {"-------- 02/03/26 08:32:20 LINE = 0083 STN = 7730", "00:00:00 FROM TRANSFER",
       "00:03:02 CALL RELEASED"},
      {"-------- 02/03/26 08:45:00 LINE = 0005 STN = 7425", "00:00:00 OUTGOING CALL",
       "         DIGITS DIALED 96135550123", "00:00:08 RESTRICTION PASSWORD 4411",
       "00:12:59 CALL RELEASED"},
      {"-------- 02/03/26 09:30:45 LINE = 0084 STN = 7425", "         CALLING NUMBER 4165550142",
       "         NAME ACME SUPPLY", "00:00:00 INCOMING CALL RINGING 0:18",
       "00:15:22 CALL RELEASED"},
  };
  std::vector<std::u16string> out;
  for (const auto& b : bloques) {
    std::string r;
    for (const std::string& l : b) r += (r.empty() ? "" : "\r\n") + l;
    out.push_back(U(r));
  }
  return out;
}

std::shared_ptr<clsCfgConmut> ConfigCaso10() {
  auto cfg = std::make_shared<clsCfgConmut>();
  cfg->Caso(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100);
  Constante(*cfg, emDatoCteIdentEntrante, 27, u"<I>");
  Constante(*cfg, emDatoCteIdentSaliente, 53, u"    ");  // no ring time: outgoing
  Constante(*cfg, emDatoCteIdentEntranteInicioTransferida, 78, u"TR");
  Constante(*cfg, emDatoCteIdentSalienteInicioTransferida, 78, u"TR");
  Constante(*cfg, emDatoCteIdentNoContestada, 78, u"NA");
  Constante(*cfg, emDatoCteIdentificadorHorarioMatutinoFecha, 15, u"AM");
  cfg->CTEActivo(emDatoCteIdentInterExtensionEnTransferencia);
  cfg->Constante(u"<I>");  // the prefix stripped from dialled numbers
  Campo(*cfg, emParamFechaMes, 1, 2, emValorNumerico);
  Campo(*cfg, emParamFechaDia, 4, 2, emValorNumerico);
  Campo(*cfg, emParamFechaAnio, 7, 2, emValorNumerico);
  Campo(*cfg, emParamFechaHoras, 10, 2, emValorNumerico);
  Campo(*cfg, emParamFechaMinutos, 13, 2, emValorNumerico);
  for (int32_t k : {emParamExtensionEntrante, emParamExtensionSaliente,
                    emParamExtensionEntranteInicioTransferida,
                    emParamExtensionSalienteInicioTransferida, emParamCodigoCuenta}) {
    Campo(*cfg, k, 18, 5, emValorCadena);
  }
  for (int32_t k :
       {emParamTroncalEntrante, emParamTroncalSaliente, emParamTroncalEntranteInicioTransferida,
        emParamTroncalSalienteInicioTransferida}) {
    Campo(*cfg, k, 24, 2, emValorCadena);
  }
  for (int32_t k :
       {emParamTelefonoEntrante, emParamTelefonoSaliente, emParamTelefonoEntranteInicioTransferida,
        emParamTelefonoSalienteInicioTransferida}) {
    Campo(*cfg, k, 27, 25, emValorCadena);
  }
  Campo(*cfg, emParamRingMinutos, 53, 1, emValorNumerico);
  Campo(*cfg, emParamRingSegundos, 55, 2, emValorNumerico);
  Campo(*cfg, emParamDuracionHoras, 58, 2, emValorNumerico);
  Campo(*cfg, emParamDuracionMinutos, 61, 2, emValorNumerico);
  Campo(*cfg, emParamDuracionSegundos, 64, 2, emValorNumerico);
  return cfg;
}

std::vector<std::u16string> RegistrosCaso10(std::size_t intCuantos) {
  Lcg rnd;
  const char* const codigos[] = {"*1234", "*5678", "*2468", "*0042"};
  std::vector<std::u16string> out;
  for (std::size_t i = 0; i < intCuantos; ++i) {
    const bool entrante = rnd(3) == 0;
    const bool cuenta = !entrante && i % 8 == 7;
    std::string l = Dos(1 + rnd(12)) + "/" + Dos(1 + rnd(28)) + "/26 ";
    l += Dos(1 + rnd(12)) + ":" + Dos(rnd(60)) + (rnd(2) != 0 ? "AM" : "PM") + " ";
    l += Celda(cuenta ? std::string(codigos[rnd(4)]) : "  " + Digitos(rnd, 3), 5) + " ";
    l += Dos(1 + rnd(8)) + " ";
    l += Celda((entrante ? "<I>" : "") + Digitos(rnd, 7 + rnd(7)), 25) + " ";
    l += (entrante ? "0'" + Dos(rnd(60)) : std::string(4, ' ')) + " ";
    l += "00:" + Dos(rnd(60)) + "'" + Dos(rnd(60)) + " ";
    l += Celda("", 10) + " ";
    l += rnd(10) == 0 ? "TR" : "  ";
    out.push_back(U(l));
  }
  return out;
}

std::string ListaExtensionesCaso10() { return "1234;201\r\n5678;206\r\n2468;208\r\n0042;7425\r\n"; }

std::size_t BytesEntrada(const std::u16string& registro, const std::u16string& separador) {
  std::size_t lineas = 1;
  if (!separador.empty()) {
    for (std::size_t p = registro.find(separador); p != std::u16string::npos;
         p = registro.find(separador, p + separador.size())) {
      ++lineas;
    }
  }
  // The separator's characters stand for the CR LF of the printed lines.
  return registro.size() - (lineas - 1) * separador.size() + 2 * lineas;
}

DirTemporal::DirTemporal() {
  char plantilla[] = "/tmp/velqua-bench-XXXXXX";
  if (::mkdtemp(plantilla) == nullptr) throw std::runtime_error("mkdtemp failed");
  dir_ = plantilla;
}

DirTemporal::~DirTemporal() {
  std::error_code ec;
  std::filesystem::remove_all(dir_, ec);
}

std::string DirTemporal::Ruta(const std::string& nombre) const { return dir_ + "/" + nombre; }

std::u16string DirTemporal::Ruta16(const std::string& nombre) const {
  return DesdeUtf8(Ruta(nombre));
}

}  // namespace velqua_bench
