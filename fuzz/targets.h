// The fuzz targets, one function each: the bytes of one input in, 0 out; a
// finding aborts (velqua_fuzz::Hallazgo). They are compiled once into the
// libraries of targets.cmake, which both the libFuzzer programs (with
// entry.cpp) and the test runs' corpus replays link.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velqua_fuzz_abrir {
int Ejecuta(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_importar {
int Ejecuta(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_traductor {
int Ejecuta(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_lector {
int Ejecuta(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_record_form {
int Run(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_guess {
int Run(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_framer {
int Ejecuta(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_login {
int Ejecuta(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_capture_config {
int Ejecuta(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_tariff {
int Ejecuta(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_directory {
int Ejecuta(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_web_cookie {
int Run(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_web_event_id {
int Run(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_web_serve_config {
int Run(const uint8_t* data, size_t size);
}
namespace velqua_fuzz_web_query {
int Run(const uint8_t* data, size_t size);
}
