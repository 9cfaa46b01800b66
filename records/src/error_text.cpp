#include "velqua/records/error_text.h"

#include <string_view>

#include "velqua/enums.h"
#include "velqua/records/common.h"

namespace velqua_records {

const char* ErrorMeaning(int32_t number) {
  switch (number) {
    case velqua::kErrDesbordamiento:
      return "overflow: a column past 255, or a number too large for the record";
    case velqua::kErrIndiceFueraDeIntervalo:
      return "index out of range";
    case velqua::kErrTiposNoCoinciden:
      return "wrong kind of object";
    case 75:  // the library's own path or file access error
      return "the file cannot be reached";
    case velqua::kErrObjetoNoEstablecido:
      return "no configuration set";
    default:
      break;
  }
  switch (static_cast<uint32_t>(number) - velqua::kBaseErrorObjeto) {
    case velqua::kCodigoErrorPinDB25:
      return "a DB25 pin that cannot be wired";
    case velqua::emErrorConfigNoHay:
      return "the file cannot be reached or its name is not valid";
    case velqua::emErrorNoHayArchivo:
      return "the file cannot be found";
    case velqua::emErrorConfigDatosIncompletos:
      return "the configuration is incomplete (brand, model, record separator or case)";
    case velqua::emErrorConfigExportar:
      return "the configuration cannot be written as a profile file";
    case velqua::emErrorConfigImportar:
      return "the profile file cannot be read as a configuration";
    case velqua::emErrorConfigAbrir:
      return "not a configuration file";
    case velqua::emErrorDesconocido:
      return "unknown library error";
    default:
      return "library error";
  }
}

std::string ErrorText(const velqua::Error& error) {
  std::string text = ErrorMeaning(error.Number());
  // The configuration file errors end their description with a line naming
  // the file (" Archivo :x.cfg", or the bare name after an import's detail).
  const uint32_t code = static_cast<uint32_t>(error.Number()) - velqua::kBaseErrorObjeto;
  const std::u16string& description = error.Description();
  const size_t last = description.rfind(u'\n');
  if (code < velqua::emErrorConfigNoHay || code > velqua::emErrorConfigAbrir ||
      last == std::u16string::npos) {
    return text;
  }
  std::u16string_view file = std::u16string_view(description).substr(last + 1);
  constexpr std::u16string_view kFile = u" Archivo :";
  if (file.substr(0, kFile.size()) == kFile) file.remove_prefix(kFile.size());
  if (!file.empty()) text += ": " + U8(file);
  return text;
}

}  // namespace velqua_records
