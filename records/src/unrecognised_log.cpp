#include "unrecognised_log.h"

#include <cstdio>

#include "velqua/records/clock.h"
#include "velqua/records/common.h"
#include "velqua/texto.h"

namespace velqua_records {

void LogUnrecognised(ProgramClock& clock, const std::string& path, const std::string& input,
                     const Row& row, std::u16string_view record, bool utf8) {
  const FechaHora now = clock.Now();
  char stamp[64];
  std::snprintf(stamp, sizeof stamp, "%04d-%02d-%02d %02d:%02d:%02d", now.intAnio, now.intMes,
                now.intDia, now.intHora, now.intMinuto, now.intSegundo);
  std::string entry = "\r\n\r\nUnrecognised call (";
  entry += stamp;
  entry += "; " + input + ", record " + std::to_string(row.number);
  if (!row.error.empty()) entry += "; " + row.error;
  entry += "): \r\n";
  entry += utf8 ? velqua::AUtf8(record) : velqua::AAnsi(record);
  entry += "\r\n";
  clock.AnexaArchivo(U16(path), entry);
}

}  // namespace velqua_records
