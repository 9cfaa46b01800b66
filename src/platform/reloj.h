// The locale's month names, for the unrecognised-call log's timestamps.
#pragma once

#include <cstdint>
#include <string>

namespace velqua {
namespace plataforma {

// The C locale's English abbreviation of month 1-12 ("Jan" ... "Dec");
// "???" outside that range.
std::u16string NombreMesAbreviado(int32_t intMes);

}  // namespace plataforma
}  // namespace velqua
