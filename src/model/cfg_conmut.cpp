// The configuration object — construction, reset, identity and
// label properties, derived names, the change flag and the notifications.
#include "model/datos_cfg.h"

#include <algorithm>

namespace velqua {
namespace {

// Case names, shown to users as they are (typos included: hosts and saved
// screens show them so). Cases 11 and 12 have none and read as empty.
const char16_t* const kNombresCaso[] = {
    u"No definido",
    u"Estandar",
    u"Caso de Samsung Nx-820",
    u"Caso del Nortel Meridian",
    u"Caso norstar 0x32 SMDR6",
    u"Estandar, duración con resta de fechas.",
    u"Estandar, segundos de la duracion multiplicado por 6.",
    u"Estandar, llamada saliente por defecto.",
    u"Estandar, duración con resta de fechas, llamada saliente por defecto.",
    u"Estandar, segundos de la duracion multiplicado por 6, llamada saliente por defecto.",
    u"Especial, codigo de cuenta y extensión en conmutadores KX-TDA100 y KX-TDA200.",
};

}  // namespace

DatosCfgConmut::DatosCfgConmut() {
  // Every member starts at zero (the member initialisers); the reset then
  // notifies nothing, since the texts are already empty.
  EstableceValoresIniciales();
}

void DatosCfgConmut::EstableceValoresIniciales() {
  udtCfg.emVersionCfg = emVersion3_0;
  // Entry 0 of each wiring array is no pin and is never cleared: a file's
  // value there is carried through a load and a save unchanged.
  std::fill(udtCfg.lnPinesRJ45.begin() + 1, udtCfg.lnPinesRJ45.end(), 0);
  std::fill(udtCfg.lnPinesDB9.begin() + 1, udtCfg.lnPinesDB9.end(), 0);
  std::fill(udtCfg.lnPinesDB25.begin() + 1, udtCfg.lnPinesDB25.end(), 0);
  std::fill(udtCfg.lnPinesReserva.begin() + 1, udtCfg.lnPinesReserva.end(), 0);
  Comentarios(u"");
  Marca(u"");
  Modelo(u"");
  Separador(u"");
  udtCfg.emCasoCfg = emCasoEstandar;
  DATOActivo(emNoParamDato);
  CTEActivo(emNoParamDatoConstante);
  for (RegDATO& r : udtDATO) r.emTipo = emValorNoDefinido;
  for (RegCTE& r : udtCTE) r.emTipo = emValorNoDefinido;
  bolModificado = false;
}

void DatosCfgConmut::Iniciar() {
  EstableceValoresIniciales();
  NotificaConfiguracionCargada();
}

bool DatosCfgConmut::Modificado() const { return bolModificado; }
void DatosCfgConmut::Modificado(bool bolM) { bolModificado = bolM; }

bool DatosCfgConmut::HayConfig() const {
  return udtCfg.emCasoCfg != emNoCaso && udtCfg.emVersionCfg != emNoVersion && !Marca().empty() &&
         !Modelo().empty();
}

int32_t DatosCfgConmut::IDCfg() const { return lnIDCfg; }
void DatosCfgConmut::IDCfg(int32_t lnID) { lnIDCfg = lnID; }

emVersionConfiguracion DatosCfgConmut::Version() const { return udtCfg.emVersionCfg; }

std::u16string DatosCfgConmut::NombreVersion() const {
  switch (udtCfg.emVersionCfg) {
    case emVersion2_0:
      return u"2.0";
    case emVersion3_0:
      return u"3.0";
    default:
      return u"No hay versión";
  }
}

void DatosCfgConmut::Caso(emCasos emC) {
  if (emC == udtCfg.emCasoCfg) return;
  udtCfg.emCasoCfg = emC;
  bolModificado = true;
  NotificaCambios();
}

std::u16string DatosCfgConmut::NombreCaso() const { return ObtNombreCaso(udtCfg.emCasoCfg); }

std::u16string DatosCfgConmut::ObtNombreCaso(emCasos emC) const {
  const auto n = static_cast<int32_t>(std::size(kNombresCaso));
  if (emC < 0 || emC >= n) return u"";
  return kNombresCaso[emC];
}

std::u16string DatosCfgConmut::Marca() const { return QuitaNulos(udtCfg.cadMarca); }

void DatosCfgConmut::Marca(const std::u16string& cadM) {
  if (!EscribeTextoFijo(udtCfg.cadMarca, cadM, kTamMarca)) return;
  NotificaCambioNombreConmutador();
  NotificaCambios();
}

std::u16string DatosCfgConmut::Modelo() const { return QuitaNulos(udtCfg.cadModelo); }

void DatosCfgConmut::Modelo(const std::u16string& cadM) {
  if (!EscribeTextoFijo(udtCfg.cadModelo, cadM, kTamModelo)) return;
  NotificaCambioNombreConmutador();
  NotificaCambios();
}

std::u16string DatosCfgConmut::NombreConmutador() const {
  const std::u16string marca = Marca();
  const std::u16string modelo = Modelo();
  if (marca.empty() || modelo.empty()) return u"Desconocido";
  return marca + u", " + modelo;
}

std::u16string DatosCfgConmut::Comentarios() const { return QuitaNulos(udtCfg.cadComentarios); }

void DatosCfgConmut::Comentarios(const std::u16string& cadC) {
  if (EscribeTextoFijo(udtCfg.cadComentarios, cadC, kTamComentarios)) NotificaCambios();
}

std::u16string DatosCfgConmut::Separador() const { return QuitaNulos(udtCfg.cadSeparador); }

void DatosCfgConmut::Separador(const std::u16string& cadSep) {
  if (EscribeTextoFijo(udtCfg.cadSeparador, cadSep, kTamSeparador)) NotificaCambios();
}

std::u16string DatosCfgConmut::ListaSeparador() const {
  return ListaCodigos(Separador(), kTamSeparador);
}

int16_t DatosCfgConmut::TamMaxSeparador() const { return kTamSeparador; }
int16_t DatosCfgConmut::TamMaxComentarios() const { return kTamComentarios; }

void DatosCfgConmut::AgregaOyente(EventosCfgConmut* oyente) {
  if (oyente != nullptr) oyentes.push_back(oyente);
}

void DatosCfgConmut::QuitaOyente(EventosCfgConmut* oyente) {
  const auto it = std::find(oyentes.begin(), oyentes.end(), oyente);
  if (it != oyentes.end()) oyentes.erase(it);
}

// Delivery walks a copy, so a listener may add or remove listeners while it
// is being notified.
void DatosCfgConmut::NotificaCambioNombreConmutador() {
  const auto copia = oyentes;
  for (EventosCfgConmut* o : copia) o->CambioNombreConmutador();
}

void DatosCfgConmut::NotificaConfiguracionCargada() {
  const auto copia = oyentes;
  for (EventosCfgConmut* o : copia) o->ConfiguracionCargada();
}

void DatosCfgConmut::NotificaCambios() {
  const auto copia = oyentes;
  for (EventosCfgConmut* o : copia) o->Cambios();
}

}  // namespace velqua
