// The data-field and constant tables and the active-key protocol.
//
// Records are never removed or reordered; intIndiceDATO / intIndiceCTE map
// each valid key to its one record (0 = none), so a lookup is O(1). The maps
// are updated whenever a record changes key (CambiaClaveDATO / CambiaClaveCTE),
// which happens only when a record is taken (AgregaDATO / AgregaCTE).
#include <cstdint>

#include "errors/errores_runtime.h"
#include "model/datos_cfg.h"

namespace velqua {
namespace {

constexpr int16_t kMaxRegistros = INT16_MAX;  // 16-bit count and indices

}  // namespace

// ---- lookups: BuscaDATO, BuscaCTE, ValidaDATO, ValidaCTE are inline in the header ----

// ---- taking records ----

void DatosCfgConmut::CambiaClaveDATO(int16_t intIndice, int32_t emNueva) {
  RegDATO& r = udtDATO[static_cast<size_t>(intIndice - 1)];
  if (EsClaveDATO(r.emParam) && intIndiceDATO[static_cast<size_t>(r.emParam)] == intIndice) {
    intIndiceDATO[static_cast<size_t>(r.emParam)] = 0;
  }
  r.emParam = static_cast<emParamDato>(emNueva);
  if (EsClaveDATO(emNueva)) intIndiceDATO[static_cast<size_t>(emNueva)] = intIndice;
}

void DatosCfgConmut::CambiaClaveCTE(int16_t intIndice, int32_t emNueva) {
  RegCTE& r = udtCTE[static_cast<size_t>(intIndice - 1)];
  if (EsClaveCTE(r.emParam) && intIndiceCTE[static_cast<size_t>(r.emParam)] == intIndice) {
    intIndiceCTE[static_cast<size_t>(r.emParam)] = 0;
  }
  r.emParam = static_cast<emParamDatoConstante>(emNueva);
  if (EsClaveCTE(emNueva)) intIndiceCTE[static_cast<size_t>(emNueva)] = intIndice;
}

int16_t DatosCfgConmut::AgregaDATO() {
  int16_t elegido = 0;
  // A 32-bit counter: a 16-bit one would wrap past 32767 and never end.
  for (int32_t i = 1; i <= intNumDATO; ++i) {
    const RegDATO& r = udtDATO[static_cast<size_t>(i - 1)];
    if (r.emParam == DATOActivo() || r.emTipo == emValorNoDefinido) {
      elegido = static_cast<int16_t>(i);
      break;
    }
  }
  if (elegido == 0) {
    if (intNumDATO == kMaxRegistros) LanzaDesbordamiento();  // nothing changed yet
    udtDATO.emplace_back();
    elegido = ++intNumDATO;
  }
  CambiaClaveDATO(elegido, DATOActivo());
  udtDATO[static_cast<size_t>(elegido - 1)].emTipo = emValorNumerico;
  return elegido;
}

int16_t DatosCfgConmut::AgregaCTE() {
  int16_t elegido = 0;
  for (int32_t i = 1; i <= intNumCTE; ++i) {
    const RegCTE& r = udtCTE[static_cast<size_t>(i - 1)];
    if (r.emParam == CTEActivo() || r.emTipo == emValorNoDefinido) {
      elegido = static_cast<int16_t>(i);
      break;
    }
  }
  if (elegido == 0) {
    if (intNumCTE == kMaxRegistros) LanzaDesbordamiento();
    udtCTE.emplace_back();
    elegido = ++intNumCTE;
  }
  CambiaClaveCTE(elegido, CTEActivo());
  udtCTE[static_cast<size_t>(elegido - 1)].emTipo = emValorConstante;
  return elegido;
}

int16_t DatosCfgConmut::DATOParaEscribir() {
  const int16_t i = BuscaDATO(DATOActivo());
  return i != 0 ? i : AgregaDATO();
}

int16_t DatosCfgConmut::CTEParaEscribir() {
  const int16_t i = BuscaCTE(CTEActivo());
  return i != 0 ? i : AgregaCTE();
}

void DatosCfgConmut::CuentaCompletos() {
  int16_t d = 0;
  int16_t c = 0;
  for (const RegDATO& r : udtDATO) d = static_cast<int16_t>(d + (ValidaDATO(r) ? 1 : 0));
  for (const RegCTE& r : udtCTE) c = static_cast<int16_t>(c + (ValidaCTE(r) ? 1 : 0));
  udtCfg.intDATOCompletos = d;
  udtCfg.intCTECompletos = c;
}

// ---- data-field properties ----

void DatosCfgConmut::TipoDatoDATO(emTipoDato emCual) {
  RegDATO& r = udtDATO[static_cast<size_t>(DATOParaEscribir() - 1)];
  if (r.emTipo == emCual) return;
  r.emTipo = emCual;  // emValorNoDefinido frees the record
  bolModificado = true;
  NotificaCambios();
}

void DatosCfgConmut::DATOPos(uint8_t btPos) {
  RegDATO& r = udtDATO[static_cast<size_t>(DATOParaEscribir() - 1)];
  if (r.btPos == btPos) return;  // a free record stays free
  r.btPos = btPos;
  if (r.emTipo == emValorNoDefinido) r.emTipo = emValorNumerico;
  bolModificado = true;
  NotificaCambios();
}

void DatosCfgConmut::DATOTam(uint8_t btTam) {
  RegDATO& r = udtDATO[static_cast<size_t>(DATOParaEscribir() - 1)];
  if (r.btTam == btTam) return;
  r.btTam = btTam;
  if (r.emTipo == emValorNoDefinido) r.emTipo = emValorNumerico;
  bolModificado = true;
  NotificaCambios();
}

// ---- constant properties ----

std::u16string DatosCfgConmut::Constante() const {
  const int16_t i = BuscaCTE(CTEActivo());
  return i != 0 ? QuitaNulos(udtCTE[static_cast<size_t>(i - 1)].cadTexto) : std::u16string();
}

void DatosCfgConmut::DerivaTipoCTE(RegCTE& udtC) {
  udtC.emTipo = emValorConstante;
  if (!ValidaCTE(udtC)) udtC.emTipo = emValorNoDefinido;
}

void DatosCfgConmut::EscribeByteCTE(uint8_t RegCTE::*campo, uint8_t btValor) {
  const int16_t i = CTEParaEscribir();
  RegCTE& r = udtCTE[static_cast<size_t>(i - 1)];
  if (r.*campo != btValor) {
    r.*campo = btValor;
    bolModificado = true;
    NotificaCambios();  // sent before the type is derived: a listener sees the old type
  }
  DerivaTipoCTE(udtCTE[static_cast<size_t>(i - 1)]);
}

void DatosCfgConmut::CTEPos(uint8_t btPos) { EscribeByteCTE(&RegCTE::btPos, btPos); }
void DatosCfgConmut::CTETam(uint8_t btTam) { EscribeByteCTE(&RegCTE::btTam, btTam); }

void DatosCfgConmut::Constante(const std::u16string& cadCte) {
  const int16_t i = CTEParaEscribir();
  std::u16string p;
  RellenaConNulos(p, cadCte, kTamTextoCte);
  if (p != udtCTE[static_cast<size_t>(i - 1)].cadTexto) {
    udtCTE[static_cast<size_t>(i - 1)].cadTexto = p;
    bolModificado = true;
    NotificaCambios();
  }
  RegCTE& r = udtCTE[static_cast<size_t>(i - 1)];
  r.btTam = static_cast<uint8_t>(QuitaNulos(r.cadTexto).size());  // 0 to 20; no change signal
  DerivaTipoCTE(r);
}

}  // namespace velqua
