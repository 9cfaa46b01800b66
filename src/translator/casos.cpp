// Switch-specific rules: the multi-line record of the Nortel
// Norstar (case 4) and the account-code extension of the KX-TDA (cases 10, 11).
#include "translator/motor_traductor.h"
#include "translator/texto_traductor.h"

namespace velqua {
namespace {

// Keywords of the multi-line record; a keyword line is the first line that
// contains the keyword, letter case ignored.
constexpr char16_t kCabecera[] = u"--------";
constexpr char16_t kLiberada[] = u"CALL RELEASED";
constexpr char16_t kTransferida[] = u"TRANSFERRED";
constexpr char16_t kNoContesta[] = u"NO ANSWER";
constexpr char16_t kSaliente[] = u"OUTGOING CALL";
constexpr char16_t kEntrante[] = u"INCOMING CALL";
constexpr char16_t kDesdeTransferencia[] = u"FROM TRANSFER";

}  // namespace

// The type, from the keyword lines: every keyword other than the header must
// lie after it (a greater BuscaLinea place is a later line). The released
// line, else the transferred one, else an unanswered one decides.
void MotorTraductor::DetectaTipoNorstar() {
  emTipoLlamada = emTradNoIdentificada;
  const int16_t h = BuscaLineaClave(kCabecera);
  if (h == 0) return;
  const int16_t intLiberada = BuscaLineaClave(kLiberada);
  if (intLiberada != 0) {
    if (h < intLiberada) DireccionNorstar(h);
    return;
  }
  const int16_t intTransferida = BuscaLineaClave(kTransferida);
  if (intTransferida != 0) {
    if (h < intTransferida) DireccionNorstar(h);
    return;
  }
  const int16_t intNoContesta = BuscaLineaClave(kNoContesta);
  if (intNoContesta != 0 && h < intNoContesta) emTipoLlamada = emTradEntrante;
}

// The direction test of an answered or transferred call: the first of the
// outgoing, incoming and from-transfer lines present, after the header.
void MotorTraductor::DireccionNorstar(int16_t intCabecera) {
  const int16_t intSaliente = BuscaLineaClave(kSaliente);
  if (intSaliente != 0) {
    if (intCabecera < intSaliente) emTipoLlamada = emTradSaliente;
    return;
  }
  const int16_t intEntrante = BuscaLineaClave(kEntrante);
  if (intEntrante != 0) {
    if (intCabecera < intEntrante) emTipoLlamada = emTradEntrante;
    return;
  }
  const int16_t intDesde = BuscaLineaClave(kDesdeTransferencia);
  if (intDesde != 0 && intCabecera < intDesde) emTipoLlamada = emTradTransferida;
}

// The attribute, from the transfer keywords, whatever the type.
void MotorTraductor::DetectaAtributoNorstar() {
  if (BuscaLineaClave(kDesdeTransferencia) != 0) {
    emAtributoLlamada = BuscaLineaClave(kTransferida) != 0 ? emATREnTR : emATRFinTR;
  } else if (BuscaLineaClave(kTransferida) != 0) {
    emAtributoLlamada = emATRIniTR;
  } else {
    emAtributoLlamada = emATRNoAtributo;
  }
}

// Field lines for the time components. Selects the line of the
// component's key in case 4 (SeleccionaLineaNorstar, inline, asks for the
// case first) and tells whether the component is 0 without reading a field
// (a duration of an unanswered call).
bool MotorTraductor::LineaNorstar(emParamDato emParamDat) {
  switch (emParamDat) {
    case emParamFechaHoras:
    case emParamFechaMinutos:
    case emParamFechaSegundos:
      BuscaLineaClave(kCabecera);
      return false;
    case emParamDuracionHoras:
    case emParamDuracionMinutos:
    case emParamDuracionSegundos:
      if (BuscaLineaClave(kNoContesta) != 0) return true;
      if (BuscaLineaClave(kLiberada) == 0) BuscaLineaClave(kTransferida);
      return false;
    default:
      return false;  // ring time: the line left by the previous search
  }
}

// Extension of an outgoing call in cases 10 and 11: a leading "*" marks an
// account code, mapped back to an extension through the list file.
void MotorTraductor::ExtensionKXTDA() {
  traductor::QuitaBlancos(cadDato);
  if (cadDato.empty() || cadDato[0] != u'*') return;
  BuscaExtensionKXTDA(cadDato.substr(1));
}

// CodigoCuenta in cases 10 and 11 (cadDato not empty): the code after a
// leading "*", not trimmed again; the empty text without the star.
void MotorTraductor::CodigoCuentaKXTDA() {
  traductor::QuitaBlancos(cadDato);
  if (!cadDato.empty() && cadDato[0] == u'*') {
    cadDato.erase(0, 1);
  } else {
    cadDato.clear();
  }
}

}  // namespace velqua
