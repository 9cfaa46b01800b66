// The field cutter and the numeric properties (date, time of day,
// duration, ring time).
#include <algorithm>

#include "errors/errores_runtime.h"
#include "translator/motor_traductor.h"
#include "translator/texto_traductor.h"

namespace velqua {
namespace {

using traductor::EsDigito;

// Days from 1970-01-01 to the civil date y-m-d, for any m and d (Howard
// Hinnant's days_from_civil, extended so that a day beyond the month's end
// runs into the next month).
int64_t DiasDesdeCivil(int64_t y, int64_t m, int64_t d) {
  y -= m <= 2 ? 1 : 0;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468 + (d - 1);
}

// Seconds from 1970-01-01 00:00:00 to the date-time, with carry in every part.
int64_t Instante(int64_t y, int64_t mo, int64_t d, int64_t h, int64_t mi, int64_t s) {
  return DiasDesdeCivil(y, mo, d) * 86400 + h * 3600 + mi * 60 + s;
}

}  // namespace

// ExtraeDato up to the cut: the field's slice of cadLinea (empty when the
// field is missing or starts past the line's end) and, in *bolNumerico,
// whether only its digits count.
// Inlined into its two callers: one call a field.
[[gnu::always_inline]] inline std::u16string_view MotorTraductor::CorteDato(emParamDato emParamDat,
                                                                            bool* bolNumerico) {
  // HayDATO, DATOPos, DATOTam and TipoDatoDATO, read from the one record.
  const RegDATO* r = Cfg().SeleccionaDATO(emParamDat);
  *bolNumerico = false;
  if (r == nullptr || !DatosCfgConmut::ValidaDATO(*r)) return {};
  const uint8_t btPos = r->btPos;
  const uint8_t btTam = r->btTam;
  if (btPos + btTam > 255) SumaByte(btPos, btTam);  // error 6
  if (btPos > cadLinea.size()) return {};
  *bolNumerico = r->emTipo == emValorNumerico;
  return std::u16string_view(cadLinea).substr(btPos - 1u, btTam);
}

std::u16string_view MotorTraductor::ExtraeDato(emParamDato emParamDat) {
  bool bolNumerico = false;
  const std::u16string_view trozo = CorteDato(emParamDat, &bolNumerico);
  if (!bolNumerico) return trozo;
  std::size_t n = 0;  // only the digits; a field is at most 255 characters
  for (char16_t c : trozo) {
    if (EsDigito(c)) chrCifras[n++] = c;
  }
  return std::u16string_view(chrCifras, n);
}

// ValorSiNumero(ExtraeDato(emParamDat)) without building the digits: a
// numeric field is its digits alone, so its value is that of its first four
// digits, or -1 when it has none.
int32_t MotorTraductor::ValorDato(emParamDato emParamDat) {
  bool bolNumerico = false;
  const std::u16string_view trozo = CorteDato(emParamDat, &bolNumerico);
  if (!bolNumerico) return traductor::ValorSiNumero(trozo);
  int32_t v = 0;
  int32_t intCifras = 0;
  for (char16_t c : trozo) {
    if (!EsDigito(c)) continue;
    if (intCifras < 4) v = v * 10 + (c - u'0');
    ++intCifras;
  }
  return intCifras == 0 ? -1 : v;
}

int16_t MotorTraductor::ObtDia(emParamDato emParamDat) {
  if (EsCasoNorstar()) BuscaLineaClave(u"--------");
  const int32_t v = ValorDato(emParamDat);
  if (v >= 1 && v <= 31) return static_cast<int16_t>(v);
  return AEntero16(udtEntorno->Ahora().intDia);
}

int16_t MotorTraductor::ObtMes(emParamDato emParamDat) {
  if (EsCasoNorstar()) BuscaLineaClave(u"--------");
  const int32_t v = ValorDato(emParamDat);
  if (v >= 1 && v <= 12) return static_cast<int16_t>(v);
  return AEntero16(udtEntorno->Ahora().intMes);
}

int16_t MotorTraductor::ObtAnio(emParamDato emParamDat) {
  if (EsCasoNorstar()) BuscaLineaClave(u"--------");
  const std::u16string_view cadCampo = ExtraeDato(emParamDat);
  const int32_t v = traductor::ValorSiNumero(cadCampo);  // -1: not a number
  {
    const std::size_t largo = std::min<std::size_t>(cadCampo.size(), 4);
    if (v >= 0 && largo == 4) return static_cast<int16_t>(v);
    if (v >= 0 && largo <= 2) {
      const int32_t intAnioActual = udtEntorno->Ahora().intAnio;
      return AEntero16(v + intAnioActual - intAnioActual % 100);
    }
  }
  return AEntero16(udtEntorno->Ahora().intAnio);
}

int16_t MotorTraductor::Dia() { return ObtDia(emParamFechaDia); }

int16_t MotorTraductor::Mes() { return ObtMes(emParamFechaMes); }

int16_t MotorTraductor::Anio() { return ObtAnio(emParamFechaAnio); }

// ObtHoras and ObtMinutos after the line selection; emActual names the
// component of the current time used when bolHoraActual is true. The clock
// is read only then: it is the costly part of a read.
int16_t MotorTraductor::ObtComponenteHora(emParamDato emParamDat, bool bolHoraActual,
                                          int32_t FechaHora::*emActual) {
  const int32_t v = ValorDato(emParamDat);
  if (v >= 0) return static_cast<int16_t>(v);
  return bolHoraActual ? AEntero16(udtEntorno->Ahora().*emActual) : int16_t{-1};
}

int16_t MotorTraductor::ObtHoras(emParamDato emParamDat, bool bolHoraActual) {
  if (SeleccionaLineaNorstar(emParamDat)) return 0;
  return ObtComponenteHora(emParamDat, bolHoraActual, &FechaHora::intHora);
}

int16_t MotorTraductor::ObtMinutos(emParamDato emParamDat, bool bolHoraActual) {
  if (SeleccionaLineaNorstar(emParamDat)) return 0;
  return ObtComponenteHora(emParamDat, bolHoraActual, &FechaHora::intMinuto);
}

int16_t MotorTraductor::ObtSegundos(emParamDato emParamDat, bool bolHoraActual) {
  if (SeleccionaLineaNorstar(emParamDat)) return 0;
  {
    const int32_t v = ValorDato(emParamDat);
    if (v >= 0) {
      // Case 6 prints tenths of a minute in the seconds column; case 9 does not.
      const bool bolDecimas =
          emParamDat == emParamDuracionSegundos && Cfg().Caso() == emCasoEstandarDecimasMinuto;
      return AEntero16(bolDecimas ? int64_t{v} * 6 : v);
    }
  }
  return bolHoraActual ? AEntero16(udtEntorno->Ahora().intSegundo) : int16_t{-1};
}

// The morning rule of Hora: a 12-hour clock with a morning mark. Without the
// mark an hour below 12 is an afternoon hour, the clock's fallback hour too
// (intended: a line without the morning mark is an afternoon line, whatever
// gave its hour); with the mark, hour 12 is midnight.
int16_t MotorTraductor::AplicaMatutino(int16_t intHoras, emParamDatoConstante emMarca) {
  const RegCTE* r = Cfg().SeleccionaCTE(emMarca);
  if (r == nullptr || !DatosCfgConmut::ValidaCTE(*r)) return intHoras;  // HayCTE
  const bool bolManana = HayConstanteLlamada(emMarca);
  if (!bolManana && intHoras < 12) return static_cast<int16_t>(intHoras + 12);
  if (bolManana && intHoras == 12) return 0;
  return intHoras;
}

int32_t MotorTraductor::Hora() {
  int16_t h = ObtHoras(emParamFechaHoras, true);
  const int16_t m = ObtMinutos(emParamFechaMinutos, true);
  const int16_t s = ObtSegundos(emParamFechaSegundos, true);
  h = AplicaMatutino(h, emDatoCteIdentificadorHorarioMatutinoFecha);
  return AEntero32(int64_t{h} * 3600 + int64_t{m} * 60 + s);
}

// Duracion and Ring: the hours column is optional, minutes and seconds not.
int32_t MotorTraductor::TiempoEnSegundos(emParamDato emHoras, emParamDato emMinutos,
                                         emParamDato emSegundos) {
  int16_t h = ObtHoras(emHoras, false);
  const int16_t m = ObtMinutos(emMinutos, false);
  const int16_t s = ObtSegundos(emSegundos, false);
  if (h < 0) h = 0;
  if (m < 0 || s < 0) return -1;
  return AEntero32(int64_t{h} * 3600 + int64_t{m} * 60 + s);
}

int32_t MotorTraductor::Duracion() {
  const emCasos emC = Cfg().Caso();
  if (emC == emCasoEstandarRestaFechasDuracion ||
      emC == emCasoEstandarRestaFechasDuracionConSalienteDefecto) {
    return DuracionRestaFechas();
  }
  if (emC == emCasoNortelNorstar0x32SMDR6) {
    return TiempoEnSegundos(emParamDuracionHoras, emParamDuracionMinutos, emParamDuracionSegundos);
  }
  if (DuracionIgual(emC)) {
    Cfg().SeleccionaDATO(emParamDuracionSegundos);  // as the three cuts leave it
    return udtDuracion.intValor;
  }
  const int32_t intValor =
      TiempoEnSegundos(emParamDuracionHoras, emParamDuracionMinutos, emParamDuracionSegundos);
  GuardaDuracion(emC, intValor);
  return intValor;
}

namespace {

constexpr emParamDato kCamposDuracion[3] = {emParamDuracionHoras, emParamDuracionMinutos,
                                            emParamDuracionSegundos};

bool MismoRegistro(const RegDATO& a, const RegDATO& b) {
  return a.emParam == b.emParam && a.emTipo == b.emTipo && a.btPos == b.btPos && a.btTam == b.btTam;
}

}  // namespace

// The record ExtraeDato reads for the k-th duration key, or an empty record
// (which it treats as the missing one) when there is none.
RegDATO MotorTraductor::RegistroDuracion(std::size_t k) const {
  const DatosCfgConmut& cfg = Cfg();
  const int16_t i = cfg.BuscaDATO(kCamposDuracion[k]);
  return i != 0 ? cfg.udtDATO[static_cast<std::size_t>(i - 1)] : RegDATO{};
}

// The three cuts of a minutes-and-seconds duration depend only on cadLinea,
// the case (6 reads tenths) and the three records: with all of them equal,
// the value is the same.
bool MotorTraductor::DuracionIgual(emCasos emC) const {
  if (!udtDuracion.bolVigente || udtDuracion.emCaso != emC) return false;
  for (std::size_t k = 0; k < 3; ++k) {
    if (!MismoRegistro(udtDuracion.udtCampos[k], RegistroDuracion(k))) return false;
  }
  return true;
}

void MotorTraductor::GuardaDuracion(emCasos emC, int32_t intValor) {
  for (std::size_t k = 0; k < 3; ++k) udtDuracion.udtCampos[k] = RegistroDuracion(k);
  udtDuracion.emCaso = emC;
  udtDuracion.intValor = intValor;
  udtDuracion.bolVigente = true;
}

int32_t MotorTraductor::Ring() {
  return TiempoEnSegundos(emParamRingHoras, emParamRingMinutos, emParamRingSegundos);
}

int32_t MotorTraductor::DuracionRestaFechas() {
  const int16_t d = ObtDia(emParamFechaDia);
  const int16_t mo = ObtMes(emParamFechaMes);
  const int16_t y = ObtAnio(emParamFechaAnio);
  int16_t h = ObtHoras(emParamFechaHoras, true);
  const int16_t mi = ObtMinutos(emParamFechaMinutos, true);
  const int16_t s = ObtSegundos(emParamFechaSegundos, true);
  h = AplicaMatutino(h, emDatoCteIdentificadorHorarioMatutinoFecha);
  const int16_t d2 = ObtDia(emParamDuracionDia);
  const int16_t mo2 = ObtMes(emParamDuracionMes);
  const int16_t y2 = ObtAnio(emParamDuracionAnio);  // read, then replaced by y
  int16_t h2 = ObtHoras(emParamDuracionHoras, true);
  const int16_t mi2 = ObtMinutos(emParamDuracionMinutos, true);
  const int16_t s2 = ObtSegundos(emParamDuracionSegundos, true);
  h2 = AplicaMatutino(h2, emDatoCteIdentificadorHorarioMatutinoDuracion);
  static_cast<void>(y2);  // the end is always taken in the start's year
  const int64_t inicio = Instante(y, mo, d, h, mi, s);
  const int64_t fin = Instante(y, mo2, d2, h2, mi2, s2);
  return AEntero32(fin - inicio);
}

}  // namespace velqua
