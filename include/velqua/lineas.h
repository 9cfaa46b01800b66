// Cutting bytes into lines, the one rule of every reader of lines in the
// library and in the layers above it: CR LF, LF and a lone CR each end a
// line, a CR LF split between two pieces counting once, and the last line
// needs no end. Bytes come in pieces cut anywhere; each complete line goes
// out with the offset of its first byte in the input. Every other byte (NUL,
// TAB, bytes past 127) is text. Header only: nothing here is exported from
// the shared library, so it adds nothing to its interface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace velqua {

// The index of the first CR or LF in `bytes`, or its size when it has none.
// Two vectorised memchr calls rather than a loop over the bytes.
inline std::size_t FinDeLinea(std::string_view bytes) {
  const char* p = bytes.data();
  const void* lf = std::memchr(p, '\n', bytes.size());
  const std::size_t k =
      lf != nullptr ? static_cast<std::size_t>(static_cast<const char*>(lf) - p) : bytes.size();
  const void* cr = std::memchr(p, '\r', k);
  return cr != nullptr ? static_cast<std::size_t>(static_cast<const char*>(cr) - p) : k;
}

class CortadorLineas {
 public:
  // The next piece: `linea(texto, posicion)` is called for each line it
  // completes, without its line end (the text is valid during the call
  // only); an unfinished last line waits for the next piece.
  template <typename AlLinea>
  void Alimenta(std::string_view bytes, AlLinea&& linea) {
    while (!bytes.empty()) {
      if (bolTrasCr) {
        bolTrasCr = false;
        if (bytes.front() == '\n') {  // the LF of a CR LF cut between pieces
          bytes.remove_prefix(1);
          ++intPosicion;
          continue;
        }
      }
      const std::size_t fin = FinDeLinea(bytes);
      if (fin == bytes.size()) {
        cadPendiente.append(bytes);
        return;
      }
      bolTrasCr = bytes[fin] == '\r';
      const int64_t inicio = intPosicion;
      intPosicion += static_cast<int64_t>(cadPendiente.size() + fin) + 1;
      if (cadPendiente.empty()) {
        linea(bytes.substr(0, fin), inicio);
      } else {
        cadPendiente.append(bytes.data(), fin);
        linea(std::string_view(cadPendiente), inicio);
        cadPendiente.clear();
      }
      bytes.remove_prefix(fin + 1);
    }
  }

  // The end of the input: the unfinished last line, if any, goes out.
  template <typename AlLinea>
  void Termina(AlLinea&& linea) {
    if (cadPendiente.empty()) return;
    const int64_t inicio = intPosicion;
    intPosicion += static_cast<int64_t>(cadPendiente.size());
    linea(std::string_view(cadPendiente), inicio);
    cadPendiente.clear();
  }

 private:
  std::string cadPendiente;  // an unfinished line
  int64_t intPosicion = 0;   // of the next line's first byte in the input
  bool bolTrasCr = false;    // the last line ended with a CR: an LF next belongs to it
};

}  // namespace velqua
