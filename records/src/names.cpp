// Names of the library's enumerations, exactly as spelled in
// include/velqua/enums.h: the JSON form of a configuration and the program's
// output name every key, case, type and attribute by its enumeration member.
#include "velqua/records/names.h"

#include <cstddef>

#include "enum_names.h"
#include "velqua/enums.h"

namespace velqua_records {

const char* EnumNameOf(EnumKind kind, int32_t value) {
  const Table table = TableOf(kind);
  for (size_t i = 0; i < table.count; ++i) {
    if (table.entries[i].value == value) return table.entries[i].name;
  }
  return nullptr;
}

bool EnumValueOf(EnumKind kind, std::string_view name, int32_t* value) {
  const Table table = TableOf(kind);
  for (size_t i = 0; i < table.count; ++i) {
    if (name == table.entries[i].name) {
      *value = table.entries[i].value;
      return true;
    }
  }
  return false;
}

const char* TypeWord(int32_t tipo) {
  switch (tipo) {
    case velqua::emValorNumerico:
      return "numeric";
    case velqua::emValorConstante:
      return "constant";
    case velqua::emValorCadena:
      return "string";
    default:
      return nullptr;
  }
}

const char* CallTypeWord(int32_t type) {
  static const char* const kWords[] = {"unrecognised",   "incoming",     "outgoing",   "internal",
                                       "trunk-to-trunk", "account-code", "transferred"};
  return type >= 0 && type < 7 ? kWords[type] : "";
}

const char* AttributeWord(int32_t attribute) {
  static const char* const kWords[] = {"none", "transfer-start", "in-transfer", "transfer-end",
                                       "unanswered"};
  return attribute >= 0 && attribute < 5 ? kWords[attribute] : "";
}

}  // namespace velqua_records
