// Messages, numbers and description forms of the file errors.
#include "files/errores_archivo.h"

#include <utility>

#include "model/datos_cfg.h"
#include "velqua/enums.h"
#include "velqua/error.h"

namespace velqua {
namespace archivos {

std::u16string MensajeErrorConfig(int32_t lnCodigo) {
  switch (lnCodigo) {
    case emErrorConfigNoHay:
      return u"No es posible acceder al archivo o el nombre del archivo no es válido.";
    case emErrorNoHayArchivo:
      return u"No es posible encontrar el archivo deseado.";
    case emErrorConfigDatosIncompletos:
      return u"Los datos de la configuración no estan completos.\r\n"
             u"Verifica la marca, modelo, el separador de llamadas o el caso establecido.";
    case emErrorConfigExportar:
      return u"Ocurrio un error en los datos al intentar exportar la configuración.";
    case emErrorConfigImportar:
      return u"Error de importación en la configuración.";
    case emErrorConfigAbrir:
      return u"No es posible abrir al archivo de configuración, no se reconoce.";
    default:  // 0, 1506 and every other value
      return u"Error desconocido.";
  }
}

std::u16string DescripcionConArchivo(const std::u16string& cadMensaje,
                                     const std::u16string& cadArch) {
  return cadMensaje + u"\r\n Archivo :" + cadArch;
}

std::u16string DescripcionConDetalle(const std::u16string& cadMensaje,
                                     const std::u16string& cadDetalle,
                                     const std::u16string& cadArch) {
  return cadMensaje + u"\r\n" + cadDetalle + u"\r\n" + cadArch;
}

void LanzaErrorConfig(int32_t lnCodigo, const char16_t* cadFuente, std::u16string cadDescripcion) {
  throw Error(NumeroErrorObjeto(lnCodigo), cadFuente, std::move(cadDescripcion));
}

}  // namespace archivos

std::u16string DatosCfgConmut::ObtMensajeError(int32_t lnCodigo) {
  return archivos::MensajeErrorConfig(lnCodigo);
}

}  // namespace velqua
