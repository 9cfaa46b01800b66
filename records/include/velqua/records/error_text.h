// Library errors in English. The core library describes its errors in
// Spanish; a user of the program, the store and the capture service reads
// them in English, chosen by the error's number, while the number, the
// source and the library's own description stay available for support staff
// and the hosts that search for them.
#pragma once

#include <cstdint>
#include <string>

#include "velqua/error.h"

namespace velqua_records {

// What a library error number means, in English ("not a configuration
// file"); "library error" for a number the library does not document.
const char* ErrorMeaning(int32_t number);

// The English line of an error: its meaning, and for a configuration file
// error the file the library names on its description's last line
// (" Archivo :x.cfg"), e.g. "not a configuration file: x.cfg".
std::string ErrorText(const velqua::Error& error);

}  // namespace velqua_records
