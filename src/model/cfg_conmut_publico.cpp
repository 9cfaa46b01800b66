// clsCfgConmut: every public operation handed to the representation
// (src/model/datos_cfg.h), where the model, file and wiring code lives.
#include <memory>

#include "model/datos_cfg.h"
#include "velqua/cfg_conmut.h"
#include "velqua/textos_dibujo.h"

namespace velqua {

clsCfgConmut::clsCfgConmut() : udtDatos(std::make_unique<DatosCfgConmut>()) {}
clsCfgConmut::~clsCfgConmut() = default;

void clsCfgConmut::Iniciar() { udtDatos->Iniciar(); }
bool clsCfgConmut::Modificado() const { return udtDatos->Modificado(); }
void clsCfgConmut::Modificado(bool bolM) { udtDatos->Modificado(bolM); }
bool clsCfgConmut::HayConfig() const { return udtDatos->HayConfig(); }
int32_t clsCfgConmut::IDCfg() const { return udtDatos->IDCfg(); }
void clsCfgConmut::IDCfg(int32_t lnID) { udtDatos->IDCfg(lnID); }
emVersionConfiguracion clsCfgConmut::Version() const { return udtDatos->Version(); }
std::u16string clsCfgConmut::NombreVersion() const { return udtDatos->NombreVersion(); }
emCasos clsCfgConmut::Caso() const { return udtDatos->Caso(); }
void clsCfgConmut::Caso(emCasos emC) { udtDatos->Caso(emC); }
std::u16string clsCfgConmut::NombreCaso() const { return udtDatos->NombreCaso(); }
std::u16string clsCfgConmut::ObtNombreCaso(emCasos emC) const {
  return udtDatos->ObtNombreCaso(emC);
}
std::u16string clsCfgConmut::Marca() const { return udtDatos->Marca(); }
void clsCfgConmut::Marca(const std::u16string& cadM) { udtDatos->Marca(cadM); }
std::u16string clsCfgConmut::Modelo() const { return udtDatos->Modelo(); }
void clsCfgConmut::Modelo(const std::u16string& cadM) { udtDatos->Modelo(cadM); }
std::u16string clsCfgConmut::NombreConmutador() const { return udtDatos->NombreConmutador(); }
std::u16string clsCfgConmut::Comentarios() const { return udtDatos->Comentarios(); }
void clsCfgConmut::Comentarios(const std::u16string& cadC) { udtDatos->Comentarios(cadC); }
std::u16string clsCfgConmut::Separador() const { return udtDatos->Separador(); }
void clsCfgConmut::Separador(const std::u16string& cadSep) { udtDatos->Separador(cadSep); }
std::u16string clsCfgConmut::ListaSeparador() const { return udtDatos->ListaSeparador(); }
int16_t clsCfgConmut::TamMaxSeparador() const { return udtDatos->TamMaxSeparador(); }
int16_t clsCfgConmut::TamMaxComentarios() const { return udtDatos->TamMaxComentarios(); }
emParamDato clsCfgConmut::DATOActivo() const { return udtDatos->DATOActivo(); }
void clsCfgConmut::DATOActivo(emParamDato emCual) { udtDatos->DATOActivo(emCual); }
emParamDatoConstante clsCfgConmut::CTEActivo() const { return udtDatos->CTEActivo(); }
void clsCfgConmut::CTEActivo(emParamDatoConstante emCual) { udtDatos->CTEActivo(emCual); }
bool clsCfgConmut::HayDATO() const { return udtDatos->HayDATO(); }
bool clsCfgConmut::HayCTE() const { return udtDatos->HayCTE(); }
emTipoDato clsCfgConmut::TipoDatoDATO() const { return udtDatos->TipoDatoDATO(); }
void clsCfgConmut::TipoDatoDATO(emTipoDato emCual) { udtDatos->TipoDatoDATO(emCual); }
emTipoDato clsCfgConmut::TipoDatoCTE() const { return udtDatos->TipoDatoCTE(); }
uint8_t clsCfgConmut::DATOPos() const { return udtDatos->DATOPos(); }
void clsCfgConmut::DATOPos(uint8_t btPos) { udtDatos->DATOPos(btPos); }
uint8_t clsCfgConmut::CTEPos() const { return udtDatos->CTEPos(); }
void clsCfgConmut::CTEPos(uint8_t btPos) { udtDatos->CTEPos(btPos); }
uint8_t clsCfgConmut::DATOTam() const { return udtDatos->DATOTam(); }
void clsCfgConmut::DATOTam(uint8_t btTam) { udtDatos->DATOTam(btTam); }
uint8_t clsCfgConmut::CTETam() const { return udtDatos->CTETam(); }
void clsCfgConmut::CTETam(uint8_t btTam) { udtDatos->CTETam(btTam); }
std::u16string clsCfgConmut::Constante() const { return udtDatos->Constante(); }
void clsCfgConmut::Constante(const std::u16string& cadCte) { udtDatos->Constante(cadCte); }
void clsCfgConmut::ActivaPin(emPuertoSerial iemPuerto, int16_t intPinVector,
                             int16_t intPinConectar) {
  udtDatos->ActivaPin(iemPuerto, intPinVector, intPinConectar);
}
void clsCfgConmut::DesactivaPin(emPuertoSerial iemPuerto, int16_t intPinVector,
                                int16_t intPinDesconectar) {
  udtDatos->DesactivaPin(iemPuerto, intPinVector, intPinDesconectar);
}
bool clsCfgConmut::PinesConectados(emPuertoSerial iemPuerto, int16_t intPinConmut,
                                   int16_t intPinPC) const {
  return udtDatos->PinesConectados(iemPuerto, intPinConmut, intPinPC);
}
bool clsCfgConmut::HayConfiguracionSMDR(emPuertoSerial iemPuerto) const {
  return udtDatos->HayConfiguracionSMDR(iemPuerto);
}
void clsCfgConmut::LimpiaConfiguracionSMDR(emPuertoSerial iemPuerto) {
  udtDatos->LimpiaConfiguracionSMDR(iemPuerto);
}
void clsCfgConmut::DibujaConfiguracionSMDR(emPuertoSerial iemPuerto, Superficie& picDib,
                                           float sglPosX, float sglPosY) const {
  udtDatos->DibujaConfiguracionSMDR(iemPuerto, picDib, emTextosBiblioteca, sglPosX, sglPosY);
}
void clsCfgConmut::DibujaTablaConversionDB9DB25(Superficie& picDib, float sglPosX,
                                                float sglPosY) const {
  velqua::DibujaTablaConversionDB9DB25(picDib, emTextosBiblioteca, sglPosX, sglPosY);
}
void clsCfgConmut::Abrir(const std::u16string& cadArch) { udtDatos->Abrir(cadArch); }
void clsCfgConmut::GuardarComo(const std::u16string& cadArch) { udtDatos->GuardarComo(cadArch); }
void clsCfgConmut::Importar(const std::u16string& cadArch) { udtDatos->Importar(cadArch); }
void clsCfgConmut::Exportar(const std::u16string& cadArch) { udtDatos->Exportar(cadArch); }
void clsCfgConmut::AgregaOyente(EventosCfgConmut* oyente) { udtDatos->AgregaOyente(oyente); }
void clsCfgConmut::QuitaOyente(EventosCfgConmut* oyente) { udtDatos->QuitaOyente(oyente); }

// Walked through the key indexes, so the order is the keys' whatever order
// the records were taken in.
std::vector<CampoDATO> clsCfgConmut::ListaDATO() const {
  const DatosCfgConmut& d = *udtDatos;
  std::vector<CampoDATO> out;
  for (int32_t k = emPrimerParamDato + 1; k < emUltimoParamDato; ++k) {
    const int16_t i = d.BuscaDATO(k);
    if (i == 0) continue;
    const RegDATO& r = d.udtDATO[static_cast<size_t>(i - 1)];
    if (DatosCfgConmut::ValidaDATO(r)) out.push_back({r.emParam, r.emTipo, r.btPos, r.btTam});
  }
  return out;
}

std::vector<CampoCTE> clsCfgConmut::ListaCTE() const {
  const DatosCfgConmut& d = *udtDatos;
  std::vector<CampoCTE> out;
  for (int32_t k = emPrimerParamDatoConstante + 1; k < emUltimoParamDatoConstante; ++k) {
    const int16_t i = d.BuscaCTE(k);
    if (i == 0) continue;
    const RegCTE& r = d.udtCTE[static_cast<size_t>(i - 1)];
    if (DatosCfgConmut::ValidaCTE(r)) {
      out.push_back({r.emParam, r.btPos, r.btTam, DatosCfgConmut::QuitaNulos(r.cadTexto)});
    }
  }
  return out;
}

}  // namespace velqua
