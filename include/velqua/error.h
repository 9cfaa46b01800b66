// The one exception type of Velqua, with number, source and description.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "velqua/export.h"

namespace velqua {

// Object-error base of the library's own errors: number = base + code.
constexpr uint32_t kBaseErrorObjeto = 0x80040000u;

// Standard runtime errors: raised with their own number, no base added, and
// source "Velqua", so that a host tells them from the library's own errors.
constexpr int32_t kErrDesbordamiento = 6;          // overflow of an integer operation
constexpr int32_t kErrIndiceFueraDeIntervalo = 9;  // array index out of range
constexpr int32_t kErrTiposNoCoinciden = 13;       // type mismatch
constexpr int32_t kErrObjetoNoEstablecido = 91;    // object not set
// Code of the DB25 pin 1 error of ActivaPin/DesactivaPin (pin 1 is ground).
constexpr int32_t kCodigoErrorPinDB25 = 1205;

// The number of a library error of code `code`: 0x80040000 + code as a signed
// 32-bit value (code 1505 gives 0x800405E1 = -2147219999).
constexpr int32_t NumeroErrorObjeto(int32_t code) {
  const uint32_t sum = kBaseErrorObjeto + static_cast<uint32_t>(code);
  return sum >= 0x80000000u ? static_cast<int32_t>(sum - 0x80000000u) + INT32_MIN
                            : static_cast<int32_t>(sum);
}

// Every failure of the library is thrown as velqua::Error; a surface's own
// exceptions pass through the drawings unchanged.
class VELQUA_EXPORT Error : public std::exception {
 public:
  // Keeps the three as given; what() gives the UTF-8 of the description.
  Error(int32_t number, std::u16string source, std::u16string description);
  // e.g. 0x800405E1 as int32_t, or 6, 9, 13, 91.
  int32_t Number() const noexcept;
  // e.g. u"clsConfigConmut.Abrir", or u"Velqua" for the runtime errors.
  const std::u16string& Source() const noexcept;
  // The Spanish description, composed as hosts display it (e.g. the message,
  // CR LF, " Archivo :" and the name for Abrir).
  const std::u16string& Description() const noexcept;
  // UTF-8 of Description().
  const char* what() const noexcept override;

 private:
  int32_t number_;
  std::u16string source_;
  std::u16string description_;
  std::string what_;
};

// The standard runtime errors as velqua::Error, with their Spanish
// descriptions: what the library raises for an overflow, an index out of
// range, a wrong object, a missing one; a binding raises them for the same
// faults in its own arguments.
[[noreturn]] VELQUA_EXPORT void LanzaDesbordamiento();          // 6
[[noreturn]] VELQUA_EXPORT void LanzaIndiceFueraDeIntervalo();  // 9
[[noreturn]] VELQUA_EXPORT void LanzaTiposNoCoinciden();        // 13
[[noreturn]] VELQUA_EXPORT void LanzaObjetoNoEstablecido();     // 91

}  // namespace velqua
