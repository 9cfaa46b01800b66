// Translator state, binding and line intake.
#include "velqua/traductor.h"

#include "platform/errores_runtime.h"
#include "platform/reloj.h"

namespace velqua {

clsTraductor::clsTraductor() : rndGenerador(plataforma::RelojActual().SemillaTemporizador()) {}

void clsTraductor::FaltaConfiguracion() { LanzaObjetoNoEstablecido(); }

std::u16string clsTraductor::ArchivoListaExtensionesKXTDA() const {
  return cadArchListaExtensiones;
}

void clsTraductor::ArchivoListaExtensionesKXTDA(const std::u16string& cadArch) {
  cadArchListaExtensiones = cadArch;
}

std::u16string clsTraductor::ArchivoLlamadasError() const { return cadArchLlamadasError; }

void clsTraductor::ArchivoLlamadasError(const std::u16string& cadArch) {
  cadArchLlamadasError = cadArch;
}

std::u16string clsTraductor::BufferMultiplesLineas() const { return cadBuffer; }

void clsTraductor::BufferMultiplesLineas(const std::u16string& cadB) {
  OlvidaLineas();
  cadBuffer = cadB;
}

std::u16string clsTraductor::LlamadaActual() const {
  if (!clsCmt) return std::u16string();
  return EsCasoNorstar() ? cadBuffer : cadLinea;
}

bool clsTraductor::HayLlamada() const { return !cadLinea.empty(); }

bool clsTraductor::HayBufferMultiplesLineas() const { return !cadBuffer.empty(); }

emTipoLlamadaTraductor clsTraductor::TipoLlamadaDetectada() const { return emTipoLlamada; }

emAtributoTraductor clsTraductor::Atributo() const { return emAtributoLlamada; }

void clsTraductor::Conmutador(std::shared_ptr<clsCfgConmut> iclsCmt) {
  OlvidaDuracion();
  OlvidaLineas();
  clsCmt.reset();
  if (!iclsCmt) return;
  clsCmt = std::move(iclsCmt);
  const emCasos emC = clsCmt->Caso();
  if (emC == emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100 ||
      emC == emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto) {
    rndGenerador.seed(plataforma::RelojActual().SemillaTemporizador());
  }
}

// The intake: store, detect type and attribute, test the duration (not for
// account-code records; -1 is unreadable except in case 3 and for an
// unanswered incoming call), and log what stays unrecognised.
void clsTraductor::LlamadaActual(const std::u16string& cadL) {
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
    const bool bolMeridian = clsCmt->Caso() == emCasoNortelMeridian01;
    const bool bolNoContestada =
        emTipoLlamada == emTradEntrante && emAtributoLlamada == emATRNoContestada;
    if (!bolMeridian && !bolNoContestada) emTipoLlamada = emTradNoIdentificada;
  }
  if (emTipoLlamada == emTradNoIdentificada && (!cadLinea.empty() || !cadBuffer.empty())) {
    RegistraLlamadaError();
  }
}

}  // namespace velqua
