// The profile-file (INI) reader and writer, with the behaviour of the
// Windows functions GetPrivateProfileStringA and WritePrivateProfileStringA,
// so that profile files move between Windows hosts and this library
// unchanged (format: doc/formats/perfil.md):
//  - a file is lines of "[section]" and "key=value"; anything else (comments
//    included) is kept by the writer and ignored by the reader;
//  - sections and keys are found without regard to letter case (ASCII and the
//    Windows-1252 letters), the first section of a name and the first key of a
//    name in it win;
//  - blanks (space, tab) around names and values are removed, and a value
//    enclosed in a matching pair of "'" or "\"" loses the pair;
//  - a write replaces the value of an existing key in place, adds a new key
//    after the last line of its section, and creates the section (at the end)
//    and the file when missing;
//  - a file name without a directory is taken relative to the current
//    directory; names, sections, keys and values are Windows-1252 bytes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace velqua {
namespace perfil {

// One profile file parsed once; lookups are O(1) on average. Names and values
// are views into the file's own bytes, so the memory held is the file's size
// plus one small node per section and key.
class PerfilIni {
 public:
  explicit PerfilIni(std::string cadContenido);
  PerfilIni(const PerfilIni&) = delete;
  PerfilIni& operator=(const PerfilIni&) = delete;
  // The value of the first key named `clave` in the first section named
  // `seccion`, trimmed and unquoted; nullptr when there is none.
  const std::string_view* Valor(std::string_view seccion, std::string_view clave) const;

  // Case folding of one Windows-1252 byte (exposed for the writer).
  static unsigned char Pliega(unsigned char c);
  struct HashPlegado {
    size_t operator()(std::string_view s) const;
  };
  struct IgualPlegado {
    bool operator()(std::string_view a, std::string_view b) const;
  };

 private:
  using Claves = std::unordered_map<std::string_view, std::string_view, HashPlegado, IgualPlegado>;
  std::string contenido_;
  std::unordered_map<std::string_view, Claves, HashPlegado, IgualPlegado> secciones_;
};

// While an object of this class lives, the reads of its thread parse each
// file once and answer later reads of the same file from memory, as long as
// the file keeps its identity (device, inode, size, modification time) and
// no write of this thread touched it. Importar holds one for its duration,
// so that reading key after key stays linear in the file's size. Sessions
// nest; the innermost one is used.
class SesionLecturaPerfil {
 public:
  SesionLecturaPerfil();
  ~SesionLecturaPerfil();
  SesionLecturaPerfil(const SesionLecturaPerfil&) = delete;
  SesionLecturaPerfil& operator=(const SesionLecturaPerfil&) = delete;

  struct Estado;  // the cached file (private to perfil_ini.cpp)

 private:
  std::unique_ptr<Estado> estado_;
  Estado* anterior_;
};

// GetPrivateProfileStringA: copies the value of `lpKeyName` in `lpAppName`
// (or lpDefault, "" when null) into lpReturnedString, at most nSize - 1
// bytes followed by a 0 byte, and returns the number of bytes copied before
// that 0. A missing or unreadable file, a directory, a missing section or
// key all give the default. nSize 0 or a null buffer, section, key or file
// name give 0 and copy nothing.
uint32_t GetPrivateProfileStringA(const char* lpAppName, const char* lpKeyName,
                                  const char* lpDefault, char* lpReturnedString, uint32_t nSize,
                                  const char* lpFileName);

// WritePrivateProfileStringA: sets the key's value as described above and
// rewrites the file. Returns non-zero on success, 0 when the file cannot be
// read or written (a directory, a missing folder, no permission) or an
// argument is null or the file name empty.
int32_t WritePrivateProfileStringA(const char* lpAppName, const char* lpKeyName,
                                   const char* lpString, const char* lpFileName);

}  // namespace perfil
}  // namespace velqua
