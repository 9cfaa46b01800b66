// Files by name: names are UTF-16 in the library and UTF-8 for the operating
// system.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace velqua {
namespace plataforma {

// The operating system's name of a file: UTF-8 of cadArch.
std::string NombreSistema(const std::u16string& cadArch);

// The archive attribute Abrir requires: every existing regular file has it;
// a directory or a missing path has not, so Abrir refuses them with 1501.
bool TieneAtributoArchivo(const std::u16string& cadArch);

// Length in bytes of an existing regular file, -1 when it cannot be read.
int64_t LongitudArchivo(const std::u16string& cadArch);

// Opens a file for reading only when it is a regular file, as a descriptor
// (the caller closes it; read it with read()): the open never waits
// (O_NONBLOCK, which changes nothing for a regular file) and a FIFO,
// socket, device or directory is refused, so neither a blocked open nor an
// endless device can hang the caller (the list file never makes an
// operation fail, which includes never hanging it). -1 when refused.
int AbreDescriptorLectura(const std::u16string& cadArch);

// Opens a file for appending (created when missing) without ever waiting: a
// FIFO, socket or directory is refused; regular files and character devices
// (/dev/null, /dev/stderr) are accepted. nullptr when refused: the log
// entry is then lost, as for a file that cannot be opened.
std::FILE* AbreAnexar(const std::u16string& cadArch);

// Deletes a file; false when it could not be deleted (missing, among others).
bool BorraArchivo(const std::u16string& cadArch);

}  // namespace plataforma
}  // namespace velqua
