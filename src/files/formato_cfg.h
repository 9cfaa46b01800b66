// Layout of the binary configuration file, shared by the reader
// (LeeArchivoV3, LeeArchivoV2) and the writer (GuardarComo). See
// doc/formats/archivo_v3.md and doc/formats/archivo_v2.md.
//
// Integers are little-endian two's complement; a text of width W is W bytes of
// Windows-1252, one byte per character, U+0000 as 0x00. No padding anywhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "model/datos_cfg.h"

namespace velqua {
namespace formato_cfg {

// ---- version 3: 660-byte header, then 10-byte and 30-byte records ----
constexpr size_t kTamI32 = 4;
constexpr size_t kTamI16 = 2;
// The fixed text widths of the configuration record, as byte counts.
constexpr size_t kBytesMarca = static_cast<size_t>(kTamMarca);
constexpr size_t kBytesModelo = static_cast<size_t>(kTamModelo);
constexpr size_t kBytesComentarios = static_cast<size_t>(kTamComentarios);
constexpr size_t kBytesSeparador = static_cast<size_t>(kTamSeparador);
constexpr size_t kBytesTextoCte = static_cast<size_t>(kTamTextoCte);

constexpr size_t kOffVersion = 0;
constexpr size_t kOffMarca = kOffVersion + kTamI32;                    // 4
constexpr size_t kOffModelo = kOffMarca + kBytesMarca;                 // 54
constexpr size_t kOffComentarios = kOffModelo + kBytesModelo;          // 104
constexpr size_t kOffSeparador = kOffComentarios + kBytesComentarios;  // 354
constexpr size_t kOffCaso = kOffSeparador + kBytesSeparador;           // 364
constexpr size_t kOffPinesRJ45 = kOffCaso + kTamI32;                   // 368
constexpr size_t kOffPinesDB9 = kOffPinesRJ45 + 10 * kTamI32;          // 408
constexpr size_t kOffPinesDB25 = kOffPinesDB9 + 10 * kTamI32;          // 448
constexpr size_t kOffPinesReserva = kOffPinesDB25 + 26 * kTamI32;      // 552
constexpr size_t kOffDATOCompletos = kOffPinesReserva + 26 * kTamI32;  // 656
constexpr size_t kOffCTECompletos = kOffDATOCompletos + kTamI16;       // 658
constexpr size_t kTamCabeceraV3 = kOffCTECompletos + kTamI16;          // 660

static_assert(kOffModelo == 54 && kOffComentarios == 104 && kOffSeparador == 354);
static_assert(kOffCaso == 364 && kOffPinesRJ45 == 368 && kOffPinesDB9 == 408);
static_assert(kOffPinesDB25 == 448 && kOffPinesReserva == 552 && kOffDATOCompletos == 656);
static_assert(kTamCabeceraV3 == 660, "the version-3 header is 660 bytes");

// Data-field record (RegDATO).
constexpr size_t kOffDatoParam = 0;
constexpr size_t kOffDatoTipo = 4;
constexpr size_t kOffDatoPos = 8;
constexpr size_t kOffDatoTam = 9;
constexpr size_t kTamRegDATO = 10;
static_assert(kOffDatoTam + 1 == kTamRegDATO, "a data-field record is 10 bytes");

// Constant record (RegCTE).
constexpr size_t kOffCteParam = 0;
constexpr size_t kOffCteTipo = 4;
constexpr size_t kOffCtePos = 8;
constexpr size_t kOffCteTam = 9;
constexpr size_t kOffCteTexto = 10;
constexpr size_t kTamRegCTE = kOffCteTexto + kBytesTextoCte;
static_assert(kTamRegCTE == 30, "a constant record is 30 bytes");

// Version written in every version-3 file, and the range of cases a reader
// accepts (12, emCasoAD_TES, is deliberately outside it).
constexpr int32_t kVersionV3 = 3;
constexpr int32_t kCasoMinimoV3 = 1;
constexpr int32_t kCasoMaximoV3 = 11;

// ---- version 2: one record of exactly 786 bytes (read only) ----
constexpr size_t kV2OffMayor = 0;
constexpr size_t kV2OffMenor = 1;
constexpr size_t kV2OffCaso = 2;  // handling case minus 1
constexpr size_t kV2OffMarca = 8;
constexpr size_t kV2TamMarca = 50;
constexpr size_t kV2OffModelo = kV2OffMarca + kV2TamMarca;  // 58
constexpr size_t kV2TamModelo = 50;
constexpr size_t kV2OffComentarios = kV2OffModelo + kV2TamModelo;  // 108
constexpr size_t kV2TamComentarios = 255;
constexpr size_t kV2OffNoUsado = kV2OffComentarios + kV2TamComentarios;  // 363
constexpr size_t kV2TamNoUsado = 255;
constexpr size_t kV2OffSeparador = kV2OffNoUsado + kV2TamNoUsado;  // 618
constexpr size_t kV2TamSeparador = 12;
constexpr size_t kV2OffPares = kV2OffSeparador + kV2TamSeparador;   // 630
constexpr size_t kV2NumPares = 33;                                  // (column, width) u8 pairs
constexpr size_t kV2OffConstantes = kV2OffPares + 2 * kV2NumPares;  // 696
constexpr size_t kV2NumConstantes = 10;
constexpr size_t kV2TamTextoCte = 8;
constexpr size_t kV2TamEntradaCte = 1 + kV2TamTextoCte;  // column, then text
constexpr size_t kTamArchivoV2 = kV2OffConstantes + kV2NumConstantes * kV2TamEntradaCte;
constexpr uint8_t kV2Mayor = 2;
constexpr uint8_t kV2Menor = 0;

static_assert(kV2OffModelo == 58 && kV2OffComentarios == 108 && kV2OffNoUsado == 363);
static_assert(kV2OffSeparador == 618 && kV2OffPares == 630 && kV2OffConstantes == 696);
static_assert(kTamArchivoV2 == 786, "a version-2 file is 786 bytes");

// ---- little-endian coding ----
inline void PonI32(uint8_t* p, int32_t v) {
  const auto u = static_cast<uint32_t>(v);
  p[0] = static_cast<uint8_t>(u);
  p[1] = static_cast<uint8_t>(u >> 8);
  p[2] = static_cast<uint8_t>(u >> 16);
  p[3] = static_cast<uint8_t>(u >> 24);
}

inline int32_t LeeI32(const uint8_t* p) {
  const uint32_t u =
      uint32_t{p[0]} | (uint32_t{p[1]} << 8) | (uint32_t{p[2]} << 16) | (uint32_t{p[3]} << 24);
  return static_cast<int32_t>(u);  // two's complement (C++20 guarantees; all our compilers do)
}

inline void PonI16(uint8_t* p, int16_t v) {
  const auto u = static_cast<uint16_t>(v);
  p[0] = static_cast<uint8_t>(u);
  p[1] = static_cast<uint8_t>(u >> 8);
}

inline int16_t LeeI16(const uint8_t* p) {
  return static_cast<int16_t>(static_cast<uint16_t>(p[0] | (p[1] << 8)));
}

// A text of width intTam: the first intTam characters of cadTexto as
// Windows-1252 ("?" for a character the code page lacks), 0x00 beyond it.
void PonTexto(uint8_t* p, const std::u16string& cadTexto, size_t intTam);
// intTam bytes as intTam characters; 0x00 becomes U+0000.
std::u16string LeeTexto(const uint8_t* p, size_t intTam);

// Whole records. CodificaCabecera writes h as it is; the caller puts the
// version it wants in h.emVersionCfg.
void CodificaCabecera(const RegCfg& h, uint8_t* p);
RegCfg DecodificaCabecera(const uint8_t* p);
void CodificaDATO(const RegDATO& r, uint8_t* p);
RegDATO DecodificaDATO(const uint8_t* p);
void CodificaCTE(const RegCTE& r, uint8_t* p);
RegCTE DecodificaCTE(const uint8_t* p);

}  // namespace formato_cfg
}  // namespace velqua
