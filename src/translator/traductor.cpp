// Translator state, binding and line intake.
#include "translator/motor_traductor.h"

#include "errors/errores_runtime.h"

namespace velqua {

MotorTraductor::MotorTraductor(std::shared_ptr<Entorno> udtEntorno_)
    : udtEntorno(udtEntorno_ ? std::move(udtEntorno_) : EntornoSistema()),
      rndGenerador(udtEntorno->Semilla()) {}

void MotorTraductor::EstableceEntorno(std::shared_ptr<Entorno> udtEntorno_) {
  udtEntorno = udtEntorno_ ? std::move(udtEntorno_) : EntornoSistema();
}

void MotorTraductor::FaltaConfiguracion() { LanzaObjetoNoEstablecido(); }

std::u16string MotorTraductor::ArchivoListaExtensionesKXTDA() const {
  return cadArchListaExtensiones;
}

void MotorTraductor::ArchivoListaExtensionesKXTDA(const std::u16string& cadArch) {
  cadArchListaExtensiones = cadArch;
}

std::u16string MotorTraductor::ArchivoLlamadasError() const { return cadArchLlamadasError; }

void MotorTraductor::ArchivoLlamadasError(const std::u16string& cadArch) {
  cadArchLlamadasError = cadArch;
}

std::u16string MotorTraductor::BufferMultiplesLineas() const { return cadBuffer; }

void MotorTraductor::BufferMultiplesLineas(const std::u16string& cadB) {
  OlvidaLineas();
  cadBuffer = cadB;
}

std::u16string MotorTraductor::LlamadaActual() const {
  if (!clsCmt) return std::u16string();
  return EsCasoNorstar() ? cadBuffer : cadLinea;
}

bool MotorTraductor::HayLlamada() const { return !cadLinea.empty(); }

bool MotorTraductor::HayBufferMultiplesLineas() const { return !cadBuffer.empty(); }

emTipoLlamadaTraductor MotorTraductor::TipoLlamadaDetectada() const { return emTipoLlamada; }

emAtributoTraductor MotorTraductor::Atributo() const { return emAtributoLlamada; }

void MotorTraductor::Conmutador(std::shared_ptr<clsCfgConmut> iclsCmt) {
  OlvidaDuracion();
  OlvidaLineas();
  clsCmt.reset();
  udtCfg = nullptr;
  if (!iclsCmt) return;
  clsCmt = std::move(iclsCmt);
  udtCfg = &clsCmt->Representacion();
  const emCasos emC = udtCfg->Caso();
  if (emC == emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100 ||
      emC == emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto) {
    rndGenerador.seed(udtEntorno->Semilla());
  }
}

// The intake: store, detect type and attribute, test the duration (not for
// account-code records; -1 is unreadable except in case 3 and for an
// unanswered incoming call), and log what stays unrecognised.
void MotorTraductor::LlamadaActual(const std::u16string& cadL) {
  OlvidaDuracion();  // a new record: the kept duration was of the old one
  if (!clsCmt) {
    emTipoLlamada = emTradNoIdentificada;
    return;
  }
  if (EsCasoNorstar()) {
    OlvidaLineas();
    cadBuffer = cadL;
  } else {
    cadLinea = cadL;
  }
  DetectaTipoLlamada();
  DetectaAtributo();
  if (emTipoLlamada == emTradCodigoCuenta) return;
  if (Duracion() < 0) {
    const bool bolMeridian = udtCfg->Caso() == emCasoNortelMeridian01;
    const bool bolNoContestada =
        emTipoLlamada == emTradEntrante && emAtributoLlamada == emATRNoContestada;
    if (!bolMeridian && !bolNoContestada) emTipoLlamada = emTradNoIdentificada;
  }
  if (emTipoLlamada == emTradNoIdentificada && (!cadLinea.empty() || !cadBuffer.empty())) {
    RegistraLlamadaError();
  }
}

}  // namespace velqua
