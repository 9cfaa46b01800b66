// Checked integer helpers: each fails with the runtime error 6 (overflow,
// velqua/error.h) where the stored type cannot hold the result.
#pragma once

#include <cstdint>

#include "velqua/error.h"

namespace velqua {

// a + b for 8-bit unsigned operands: a field's or constant's position plus
// its width above 255 overflows the byte the record keeps, error 6.
uint8_t SumaByte(uint8_t a, uint8_t b);
// 16-bit signed checked conversion; error 6 outside -32768..32767.
int16_t AEntero16(int64_t v);
// 32-bit signed checked conversion; error 6 outside the 32-bit range.
int32_t AEntero32(int64_t v);

}  // namespace velqua
