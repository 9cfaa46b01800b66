// The two drawings with a choice of texts. clsCfgConmut's own drawing
// operations print the library's texts (Spanish titles and headings, pin
// numbers alone); the same drawings can be made with English texts and the
// RS-232 signal name beside each computer DB9 pin, for sites whose staff
// read English. Only the printed texts differ: every surface call, offset,
// colour and text height is the same, except that with signal names the
// DB9 pins of the table stand further left to leave the names room.
#pragma once

#include <cstdint>

#include "velqua/cfg_conmut.h"
#include "velqua/enums.h"
#include "velqua/export.h"
#include "velqua/superficie.h"

namespace velqua {

enum emTextosDibujo : int32_t {
  emTextosBiblioteca = 0,  // the library's texts: what the member operations draw
  emTextosIngles = 1,      // English texts, signal names beside the computer DB9 pins
};

// As cfgConmut.DibujaConfiguracionSMDR(iemPuerto, picDib, sglPosX, sglPosY),
// with the texts `emTextos` chooses. Same contract: reads the wiring only,
// throws what the surface throws.
VELQUA_EXPORT void DibujaConfiguracionSMDR(const clsCfgConmut& cfgConmut, emPuertoSerial iemPuerto,
                                           Superficie& picDib, emTextosDibujo emTextos,
                                           float sglPosX = 0, float sglPosY = 0);

// As clsCfgConmut::DibujaTablaConversionDB9DB25(picDib, sglPosX, sglPosY),
// with the texts `emTextos` chooses.
VELQUA_EXPORT void DibujaTablaConversionDB9DB25(Superficie& picDib, emTextosDibujo emTextos,
                                                float sglPosX = 0, float sglPosY = 0);

}  // namespace velqua
