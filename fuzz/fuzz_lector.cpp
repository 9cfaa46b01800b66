// Fuzz target (4): the record reader of velqua_records
// (velqua/records/record_reader.h): LineReader splits a byte stream on CR LF, LF and a lone
// CR; CallGatherer gathers the lines of Norstar multi-line calls (case 4).
// Invariants checked against a plain reference:
//  - the lines equal those of a one-pass split of the whole input, and each
//    line's offset is that of its first byte; the reader ends at the input's end;
//  - joining the gathered calls with the separator gives the lines joined
//    with the separator (nothing dropped, reordered or duplicated);
//  - a call of more than one line never exceeds CallGatherer::kMaxCallSize.
// The first byte chooses the separator and whether the input is preceded by
// a line of padding that puts the rest across the reader's 64 KiB refill.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "targets.h"
#include "velqua/records/record_reader.h"

namespace velqua_fuzz_lector {

// The reference split: CR LF, LF or CR end a line; no line after a final end.
// Each line's offset is that of its first byte.
inline std::vector<std::string> Referencia(const std::string& s, std::vector<int64_t>* offsets) {
  std::vector<std::string> lineas;
  std::string actual;
  bool bolAbierta = false;
  size_t inicio = 0;
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '\r' || s[i] == '\n') {
      lineas.push_back(actual);
      offsets->push_back(static_cast<int64_t>(inicio));
      actual.clear();
      bolAbierta = false;
      if (s[i] == '\r' && i + 1 < s.size() && s[i + 1] == '\n') ++i;
      inicio = i + 1;
    } else {
      actual.push_back(s[i]);
      bolAbierta = true;
    }
  }
  if (bolAbierta) {
    lineas.push_back(actual);
    offsets->push_back(static_cast<int64_t>(inicio));
  }
  return lineas;
}

inline std::vector<std::string> Lineas(std::string& s, std::vector<int64_t>* offsets) {
  std::vector<std::string> lineas;
  std::FILE* f = s.empty() ? std::fopen("/dev/null", "rb") : fmemopen(&s[0], s.size(), "rb");
  if (f == nullptr) std::abort();
  velqua_records::LineReader lector(f);
  std::string linea;
  while (lector.Next(&linea)) {
    lineas.push_back(linea);
    offsets->push_back(lector.line_offset());
  }
  if (lector.end_offset() != static_cast<int64_t>(s.size())) {
    velqua_fuzz::Hallazgo("LineReader did not end at the end of its input");
  }
  std::fclose(f);
  return lineas;
}

inline void Reune(const std::vector<std::string>& lineas, const std::u16string& sep) {
  velqua_records::CallGatherer reunidor(sep);
  std::u16string esperado;
  std::u16string obtenido;
  std::u16string llamada;
  size_t intLlamadas = 0;
  auto Agrega = [&](size_t intLineasLlamada) {
    if (intLineasLlamada > 1 && llamada.size() > velqua_records::CallGatherer::kMaxCallSize) {
      velqua_fuzz::Hallazgo("a gathered call of several lines exceeds kMaxCallSize");
    }
    if (intLlamadas++ > 0) obtenido += sep;
    obtenido += llamada;
  };
  size_t intLineasAbiertas = 0;
  for (size_t i = 0; i < lineas.size(); ++i) {
    const std::u16string linea = velqua::DesdeAnsi(lineas[i]);
    if (i > 0) esperado += sep;
    esperado += linea;
    if (reunidor.Add(linea, &llamada)) {
      Agrega(intLineasAbiertas);
      intLineasAbiertas = 0;
    }
    ++intLineasAbiertas;
  }
  if (reunidor.Finish(&llamada)) Agrega(intLineasAbiertas);
  if (obtenido != esperado) velqua_fuzz::Hallazgo("gathered calls lost or changed lines");
}

int Ejecuta(const uint8_t* datos, size_t tam) {
  if (tam == 0) {
    std::string vacio;
    std::vector<int64_t> offsets;
    if (!Lineas(vacio, &offsets).empty()) velqua_fuzz::Hallazgo("lines from an empty input");
    return 0;
  }
  const uint8_t btOpciones = datos[0];
  std::string entrada;
  if (btOpciones & 1) {
    // A padding line whose end falls near the 65536-byte refill boundary.
    entrada.assign(65536 - 64 + (btOpciones >> 1), 'p');
    entrada += (btOpciones & 2) ? "\r" : "\n";
  }
  entrada.append(reinterpret_cast<const char*>(datos + 1), tam - 1);
  std::vector<int64_t> offsets_esperados, offsets;
  const std::vector<std::string> esperadas = Referencia(entrada, &offsets_esperados);
  const std::vector<std::string> lineas = Lineas(entrada, &offsets);
  if (lineas != esperadas) velqua_fuzz::Hallazgo("LineReader split differs from the reference");
  if (offsets != offsets_esperados)
    velqua_fuzz::Hallazgo("a line's offset is not its first byte's");
  static const char16_t* const kSeparadores[] = {u"|", u"\r\n", u"", u"--------"};
  Reune(lineas, kSeparadores[(btOpciones >> 2) & 3]);
  return 0;
}

}  // namespace velqua_fuzz_lector
