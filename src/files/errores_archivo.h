// The errors of the four file operations — the message of each
// emErroresConfig code, the four source texts, the three description forms.
#pragma once

#include <cstdint>
#include <string>

namespace velqua {
namespace archivos {

// Source texts, one per operation, whatever the code. "clsConfigConmut" is
// not the class's name, and is kept: hosts match these texts.
constexpr const char16_t* kFuenteAbrir = u"clsConfigConmut.Abrir";
constexpr const char16_t* kFuenteGuardarComo = u"clsConfigConmut.GuardarComo";
constexpr const char16_t* kFuenteImportar = u"clsConfigConmut.Importar";
constexpr const char16_t* kFuenteExportar = u"clsConfigConmut.Exportar";

// The message of an emErroresConfig code, as ObtMensajeError returns it;
// "Error desconocido." for any code outside 1500 to 1505. Never fails.
std::u16string MensajeErrorConfig(int32_t lnCodigo);

// Description form "with file" (Abrir): message, CR LF, " Archivo :", cadArch.
std::u16string DescripcionConArchivo(const std::u16string& cadMensaje,
                                     const std::u16string& cadArch);

// Description form "with detail and file" (Importar): message, CR LF, detail,
// CR LF, cadArch.
std::u16string DescripcionConDetalle(const std::u16string& cadMensaje,
                                     const std::u16string& cadDetalle,
                                     const std::u16string& cadArch);

// Throws velqua::Error with number 0x80040000 + lnCodigo (NumeroErrorObjeto),
// the source and the description. No help file, no help context.
[[noreturn]] void LanzaErrorConfig(int32_t lnCodigo, const char16_t* cadFuente,
                                   std::u16string cadDescripcion);

}  // namespace archivos
}  // namespace velqua
