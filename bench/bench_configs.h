// Configurations and generated records shared by the benchmarks.
//
// Case 1: a fixed-column layout of 100-character lines (layout below); case 4:
// the Nortel Norstar multi-line layout of examples/norstar; case 10: the
// Panasonic KX-TDA "pattern A" layout of examples/kx-tda, with account codes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velqua/cfg_conmut.h"

namespace velqua_bench {

// Case 1 layout, 1-based columns (100 characters a line):
//   1-10 date DD/MM/YYYY   12-19 time HH:MM:SS   21-28 duration HH:MM:SS
//   30-34 ring MM:SS (blank on outgoing calls)    36 type mark I O X T A
//   38-39 attribute mark TS TE TX NA              41-45 extension
//   47-49 trunk   51-75 dialled number   77-86 account code
//   88-92 receiving extension   94-96 receiving trunk   98-100 "CD "
constexpr int kTodosLosCampos = 67;      // keys 2 to 68
constexpr int kTodasLasConstantes = 28;  // keys 2 to 29

// A case-1 configuration with the first intCampos fields of a priority list
// (the 24 fields the records use come first) and the 17 constants the
// records need. The morning marks stay undefined (a 24-hour clock).
std::shared_ptr<velqua::clsCfgConmut> ConfigCaso1(int intCampos = kTodosLosCampos);

// Every field (67) and every constant (28) defined: the largest
// configuration a file can hold that the translator uses.
std::shared_ptr<velqua::clsCfgConmut> ConfigCompleta();

// intCuantos distinct case-1 records of 100 characters (a mix of outgoing,
// incoming, inter-extension, trunk-to-trunk and account-code calls, some in
// transfer), each padded with blanks or cut to intLargo characters when
// intLargo is not 0.
std::vector<std::u16string> RegistrosCaso1(std::size_t intCuantos, std::size_t intLargo = 0);

// Case 4: configuration (separator CR LF) and complete multi-line calls.
std::shared_ptr<velqua::clsCfgConmut> ConfigCaso4();
std::vector<std::u16string> RegistrosCaso4();

// Case 10: configuration and 80-character records; one in eight carries an
// account code ("*1234") in place of the extension.
std::shared_ptr<velqua::clsCfgConmut> ConfigCaso10();
std::vector<std::u16string> RegistrosCaso10(std::size_t intCuantos);
// The extension list text for the account codes of RegistrosCaso10.
std::string ListaExtensionesCaso10();

// Input bytes of a record as the switch prints it: one byte a character and
// CR LF after every line.
std::size_t BytesEntrada(const std::u16string& registro, const std::u16string& separador);

// A directory under /tmp for the files of one benchmark process, removed by
// its destructor.
class DirTemporal {
 public:
  DirTemporal();
  ~DirTemporal();
  DirTemporal(const DirTemporal&) = delete;
  DirTemporal& operator=(const DirTemporal&) = delete;
  std::string Ruta(const std::string& nombre) const;
  std::u16string Ruta16(const std::string& nombre) const;

 private:
  std::string dir_;
};

}  // namespace velqua_bench
