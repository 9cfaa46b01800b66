// The configuration object — construction, reset, identity and
// label properties, derived names, the change flag and the notifications.
#include "velqua/cfg_conmut.h"

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

clsCfgConmut::clsCfgConmut() {
  // Every member starts at zero (the member initialisers); the reset then
  // notifies nothing, since the texts are already empty.
  EstableceValoresIniciales();
}

void clsCfgConmut::EstableceValoresIniciales() {
  udtCfg.emVersionCfg = emVersion3_0;
  // Entry 0 of each wiring array is no pin and is never cleared: files keep
  // whatever an earlier version stored there.
  std::fill(udtCfg.lnPinesRJ45.begin() + 1, udtCfg.lnPinesRJ45.end(), 0);
  std::fill(udtCfg.lnPinesDB9.begin() + 1, udtCfg.lnPinesDB9.end(), 0);
  std::fill(udtCfg.lnPinesDB25.begin() + 1, udtCfg.lnPinesDB25.end(), 0);
  std::fill(udtCfg.lnPinesReserva.begin() + 1, udtCfg.lnPinesReserva.end(), 0);
  Comentarios(u"");
  Marca(u"");
  Modelo(u"");
  Separador(u"");
  udtCfg.emCasoCfg = emCasoEstandar;
  emDATOActivo = emNoParamDato;
  emCTEActivo = emNoParamDatoConstante;
  for (RegDATO& r : udtDATO) r.emTipo = emValorNoDefinido;
  for (RegCTE& r : udtCTE) r.emTipo = emValorNoDefinido;
  bolModificado = false;
}

void clsCfgConmut::Iniciar() {
  EstableceValoresIniciales();
  NotificaConfiguracionCargada();
}

bool clsCfgConmut::Modificado() const { return bolModificado; }
void clsCfgConmut::Modificado(bool bolM) { bolModificado = bolM; }

bool clsCfgConmut::HayConfig() const {
  return udtCfg.emCasoCfg != emNoCaso && udtCfg.emVersionCfg != emNoVersion && !Marca().empty() &&
         !Modelo().empty();
}

int32_t clsCfgConmut::IDCfg() const { return lnIDCfg; }
void clsCfgConmut::IDCfg(int32_t lnID) { lnIDCfg = lnID; }

emVersionConfiguracion clsCfgConmut::Version() const { return udtCfg.emVersionCfg; }

std::u16string clsCfgConmut::NombreVersion() const {
  switch (udtCfg.emVersionCfg) {
    case emVersion2_0:
      return u"2.0";
    case emVersion3_0:
      return u"3.0";
    default:
      return u"No hay versión";
  }
}

void clsCfgConmut::Caso(emCasos emC) {
  if (emC == udtCfg.emCasoCfg) return;
  udtCfg.emCasoCfg = emC;
  bolModificado = true;
  NotificaCambios();
}

std::u16string clsCfgConmut::NombreCaso() const { return ObtNombreCaso(udtCfg.emCasoCfg); }

std::u16string clsCfgConmut::ObtNombreCaso(emCasos emC) const {
  const auto n = static_cast<int32_t>(std::size(kNombresCaso));
  if (emC < 0 || emC >= n) return u"";
  return kNombresCaso[emC];
}

std::u16string clsCfgConmut::Marca() const { return QuitaNulos(udtCfg.cadMarca); }

void clsCfgConmut::Marca(const std::u16string& cadM) {
  if (!EscribeTextoFijo(udtCfg.cadMarca, cadM, kTamMarca)) return;
  NotificaCambioNombreConmutador();
  NotificaCambios();
}

std::u16string clsCfgConmut::Modelo() const { return QuitaNulos(udtCfg.cadModelo); }

void clsCfgConmut::Modelo(const std::u16string& cadM) {
  if (!EscribeTextoFijo(udtCfg.cadModelo, cadM, kTamModelo)) return;
  NotificaCambioNombreConmutador();
  NotificaCambios();
}

std::u16string clsCfgConmut::NombreConmutador() const {
  const std::u16string marca = Marca();
  const std::u16string modelo = Modelo();
  if (marca.empty() || modelo.empty()) return u"Desconocido";
  return marca + u", " + modelo;
}

std::u16string clsCfgConmut::Comentarios() const { return QuitaNulos(udtCfg.cadComentarios); }

void clsCfgConmut::Comentarios(const std::u16string& cadC) {
  if (EscribeTextoFijo(udtCfg.cadComentarios, cadC, kTamComentarios)) NotificaCambios();
}

std::u16string clsCfgConmut::Separador() const { return QuitaNulos(udtCfg.cadSeparador); }

void clsCfgConmut::Separador(const std::u16string& cadSep) {
  if (EscribeTextoFijo(udtCfg.cadSeparador, cadSep, kTamSeparador)) NotificaCambios();
}

std::u16string clsCfgConmut::ListaSeparador() const {
  return ListaCodigos(Separador(), kTamSeparador);
}

int16_t clsCfgConmut::TamMaxSeparador() const { return kTamSeparador; }
int16_t clsCfgConmut::TamMaxComentarios() const { return kTamComentarios; }

void clsCfgConmut::AgregaOyente(EventosCfgConmut* oyente) {
  if (oyente != nullptr) oyentes.push_back(oyente);
}

void clsCfgConmut::QuitaOyente(EventosCfgConmut* oyente) {
  const auto it = std::find(oyentes.begin(), oyentes.end(), oyente);
  if (it != oyentes.end()) oyentes.erase(it);
}

// Delivery walks a copy, so a listener may add or remove listeners while it
// is being notified.
void clsCfgConmut::NotificaCambioNombreConmutador() {
  const auto copia = oyentes;
  for (EventosCfgConmut* o : copia) o->CambioNombreConmutador();
}

void clsCfgConmut::NotificaConfiguracionCargada() {
  const auto copia = oyentes;
  for (EventosCfgConmut* o : copia) o->ConfiguracionCargada();
}

void clsCfgConmut::NotificaCambios() {
  const auto copia = oyentes;
  for (EventosCfgConmut* o : copia) o->Cambios();
}

}  // namespace velqua
