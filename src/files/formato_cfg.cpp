// Encoding and decoding of the version-3 header and records.
#include "files/formato_cfg.h"

#include <array>

#include "velqua/texto.h"

namespace velqua {
namespace formato_cfg {
namespace {

template <size_t N>
void PonPines(uint8_t* p, const std::array<int32_t, N>& a) {
  for (size_t i = 0; i < N; ++i) PonI32(p + i * kTamI32, a[i]);
}

template <size_t N>
void LeePines(const uint8_t* p, std::array<int32_t, N>& a) {
  for (size_t i = 0; i < N; ++i) a[i] = LeeI32(p + i * kTamI32);
}

}  // namespace

void PonTexto(uint8_t* p, const std::u16string& cadTexto, size_t intTam) {
  for (size_t i = 0; i < intTam; ++i) {
    p[i] = i < cadTexto.size() ? CodigoAnsi(cadTexto[i]) : uint8_t{0};
  }
}

std::u16string LeeTexto(const uint8_t* p, size_t intTam) {
  std::u16string s(intTam, u'\0');
  for (size_t i = 0; i < intTam; ++i) s[i] = CaracterAnsi(p[i]);
  return s;
}

void CodificaCabecera(const RegCfg& h, uint8_t* p) {
  PonI32(p + kOffVersion, h.emVersionCfg);
  PonTexto(p + kOffMarca, h.cadMarca, kBytesMarca);
  PonTexto(p + kOffModelo, h.cadModelo, kBytesModelo);
  PonTexto(p + kOffComentarios, h.cadComentarios, kBytesComentarios);
  PonTexto(p + kOffSeparador, h.cadSeparador, kBytesSeparador);
  PonI32(p + kOffCaso, h.emCasoCfg);
  PonPines(p + kOffPinesRJ45, h.lnPinesRJ45);
  PonPines(p + kOffPinesDB9, h.lnPinesDB9);
  PonPines(p + kOffPinesDB25, h.lnPinesDB25);
  PonPines(p + kOffPinesReserva, h.lnPinesReserva);
  PonI16(p + kOffDATOCompletos, h.intDATOCompletos);
  PonI16(p + kOffCTECompletos, h.intCTECompletos);
}

RegCfg DecodificaCabecera(const uint8_t* p) {
  RegCfg h;
  h.emVersionCfg = static_cast<emVersionConfiguracion>(LeeI32(p + kOffVersion));
  h.cadMarca = LeeTexto(p + kOffMarca, kBytesMarca);
  h.cadModelo = LeeTexto(p + kOffModelo, kBytesModelo);
  h.cadComentarios = LeeTexto(p + kOffComentarios, kBytesComentarios);
  h.cadSeparador = LeeTexto(p + kOffSeparador, kBytesSeparador);
  h.emCasoCfg = static_cast<emCasos>(LeeI32(p + kOffCaso));
  LeePines(p + kOffPinesRJ45, h.lnPinesRJ45);
  LeePines(p + kOffPinesDB9, h.lnPinesDB9);
  LeePines(p + kOffPinesDB25, h.lnPinesDB25);
  LeePines(p + kOffPinesReserva, h.lnPinesReserva);
  h.intDATOCompletos = LeeI16(p + kOffDATOCompletos);
  h.intCTECompletos = LeeI16(p + kOffCTECompletos);
  return h;
}

void CodificaDATO(const RegDATO& r, uint8_t* p) {
  PonI32(p + kOffDatoParam, r.emParam);
  PonI32(p + kOffDatoTipo, r.emTipo);
  p[kOffDatoPos] = r.btPos;
  p[kOffDatoTam] = r.btTam;
}

RegDATO DecodificaDATO(const uint8_t* p) {
  RegDATO r;
  r.emParam = static_cast<emParamDato>(LeeI32(p + kOffDatoParam));
  r.emTipo = static_cast<emTipoDato>(LeeI32(p + kOffDatoTipo));
  r.btPos = p[kOffDatoPos];
  r.btTam = p[kOffDatoTam];
  return r;
}

void CodificaCTE(const RegCTE& r, uint8_t* p) {
  PonI32(p + kOffCteParam, r.emParam);
  PonI32(p + kOffCteTipo, r.emTipo);
  p[kOffCtePos] = r.btPos;
  p[kOffCteTam] = r.btTam;
  PonTexto(p + kOffCteTexto, r.cadTexto, kBytesTextoCte);
}

RegCTE DecodificaCTE(const uint8_t* p) {
  RegCTE r;
  r.emParam = static_cast<emParamDatoConstante>(LeeI32(p + kOffCteParam));
  r.emTipo = static_cast<emTipoDato>(LeeI32(p + kOffCteTipo));
  r.btPos = p[kOffCtePos];
  r.btTam = p[kOffCteTam];
  r.cadTexto = LeeTexto(p + kOffCteTexto, kBytesTextoCte);
  return r;
}

}  // namespace formato_cfg
}  // namespace velqua
