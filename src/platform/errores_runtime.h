// The standard runtime errors 6, 9, 13 and 91, raised as
// velqua::Error with source "Velqua", and checked integer helpers.
#pragma once

#include <cstdint>

namespace velqua {

[[noreturn]] void LanzaDesbordamiento();          // 6, overflow
[[noreturn]] void LanzaIndiceFueraDeIntervalo();  // 9, subscript out of range
[[noreturn]] void LanzaTiposNoCoinciden();        // 13, type mismatch
[[noreturn]] void LanzaObjetoNoEstablecido();     // 91, object not set

// a + b for 8-bit unsigned operands: a field's or constant's position plus
// its width above 255 overflows the byte the record keeps, error 6.
uint8_t SumaByte(uint8_t a, uint8_t b);
// 16-bit signed checked conversion; error 6 outside -32768..32767.
int16_t AEntero16(int64_t v);
// 32-bit signed checked conversion; error 6 outside the 32-bit range.
int32_t AEntero32(int64_t v);

}  // namespace velqua
