// clsTraductor: every public operation handed to the translator's state
// (src/translator/motor_traductor.h), where the work is done.
#include <memory>
#include <utility>

#include "translator/motor_traductor.h"
#include "velqua/traductor.h"

namespace velqua {

clsTraductor::clsTraductor() : udtMotor(std::make_unique<MotorTraductor>(EntornoSistema())) {}
clsTraductor::clsTraductor(std::shared_ptr<Entorno> udtEntorno)
    : udtMotor(std::make_unique<MotorTraductor>(std::move(udtEntorno))) {}
void clsTraductor::EstableceEntorno(std::shared_ptr<Entorno> udtEntorno) {
  udtMotor->EstableceEntorno(std::move(udtEntorno));
}
clsTraductor::~clsTraductor() = default;
clsTraductor::clsTraductor(clsTraductor&&) noexcept = default;
clsTraductor& clsTraductor::operator=(clsTraductor&&) noexcept = default;

std::u16string clsTraductor::ArchivoListaExtensionesKXTDA() const {
  return udtMotor->ArchivoListaExtensionesKXTDA();
}
void clsTraductor::ArchivoListaExtensionesKXTDA(const std::u16string& cadArch) {
  udtMotor->ArchivoListaExtensionesKXTDA(cadArch);
}
std::u16string clsTraductor::ArchivoLlamadasError() const {
  return udtMotor->ArchivoLlamadasError();
}
void clsTraductor::ArchivoLlamadasError(const std::u16string& cadArch) {
  udtMotor->ArchivoLlamadasError(cadArch);
}
std::u16string clsTraductor::BufferMultiplesLineas() const {
  return udtMotor->BufferMultiplesLineas();
}
void clsTraductor::BufferMultiplesLineas(const std::u16string& cadB) {
  udtMotor->BufferMultiplesLineas(cadB);
}
std::u16string clsTraductor::LlamadaActual() const { return udtMotor->LlamadaActual(); }
void clsTraductor::LlamadaActual(const std::u16string& cadL) { udtMotor->LlamadaActual(cadL); }
void clsTraductor::Conmutador(std::shared_ptr<clsCfgConmut> iclsCmt) {
  udtMotor->Conmutador(std::move(iclsCmt));
}
bool clsTraductor::HayLlamada() const { return udtMotor->HayLlamada(); }
bool clsTraductor::HayBufferMultiplesLineas() const { return udtMotor->HayBufferMultiplesLineas(); }
emTipoLlamadaTraductor clsTraductor::TipoLlamadaDetectada() const {
  return udtMotor->TipoLlamadaDetectada();
}
emAtributoTraductor clsTraductor::Atributo() const { return udtMotor->Atributo(); }
int16_t clsTraductor::Dia() { return udtMotor->Dia(); }
int16_t clsTraductor::Mes() { return udtMotor->Mes(); }
int16_t clsTraductor::Anio() { return udtMotor->Anio(); }
int32_t clsTraductor::Hora() { return udtMotor->Hora(); }
int32_t clsTraductor::Duracion() { return udtMotor->Duracion(); }
int32_t clsTraductor::Ring() { return udtMotor->Ring(); }
std::u16string clsTraductor::Marcacion() { return udtMotor->Marcacion(); }
std::u16string clsTraductor::Extension() { return udtMotor->Extension(); }
std::u16string clsTraductor::Troncal() { return udtMotor->Troncal(); }
std::u16string clsTraductor::ExtensionReceptor() { return udtMotor->ExtensionReceptor(); }
std::u16string clsTraductor::TroncalReceptor() { return udtMotor->TroncalReceptor(); }
std::u16string clsTraductor::CodigoCuenta() { return udtMotor->CodigoCuenta(); }
bool clsTraductor::HayConstanteLlamada(emParamDatoConstante emParamCte) {
  return udtMotor->HayConstanteLlamada(emParamCte);
}
int16_t clsTraductor::BuscaLinea(const std::u16string& cadVal) {
  return udtMotor->BuscaLinea(cadVal);
}

}  // namespace velqua
