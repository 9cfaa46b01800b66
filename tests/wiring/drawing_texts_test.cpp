// The drawings with English texts: the same surface calls as the library's
// drawings, only the printed texts differ (and, with signal names, where the
// table's DB9 pins stand); the member operations keep the library's texts.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "velqua/superficie_grabadora.h"
#include "velqua/textos_dibujo.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using Lines = std::vector<std::string>;

// The lines where two records differ, as "library | english".
Lines Differences(const Lines& library, const Lines& english) {
  Lines out;
  EXPECT_EQ(library.size(), english.size());
  for (size_t i = 0; i < library.size() && i < english.size(); ++i) {
    if (library[i] != english[i]) out.push_back(library[i] + " | " + english[i]);
  }
  return out;
}

TEST(DrawingTexts, EnglishChangesOnlyTheTexts) {
  clsCfgConmut wired;
  wired.ActivaPin(emPuertoDB9, 2, 3);
  wired.ActivaPin(emPuertoDB9, 3, 2);
  wired.ActivaPin(emPuertoDB9, 5, 5);
  const clsCfgConmut bare;
  using Draw = std::function<void(Superficie&, emTextosDibujo)>;
  struct Case {
    const char* what;
    Draw draw;
    Lines differences;
  };
  const Case cases[] = {
      {"cable",
       [&](Superficie& s, emTextosDibujo t) { DibujaConfiguracionSMDR(wired, emPuertoDB9, s, t); },
       {"Print \"Confguración del cable SMDR\" | Print \"SMDR cable wiring\"",
        "Print \"Conmutador\" | Print \"Switch\"",
        "Print \"PC (Computadora)\" | Print \"PC (computer)\"", "Print \"3\" | Print \"3 TxD\"",
        "Print \"2\" | Print \"2 RxD\"", "Print \"5\" | Print \"5 GND\""}},
      {"cable of a port without wiring",
       [&](Superficie& s, emTextosDibujo t) { DibujaConfiguracionSMDR(bare, emPuertoDB25, s, t); },
       {"Print \"Confguración del cable SMDR\" | Print \"SMDR cable wiring\"",
        "Print \"Conmutador\" | Print \"Switch\"",
        "Print \"PC (Computadora)\" | Print \"PC (computer)\"",
        "Print \"-- No hay configuración realizada --\" | Print \"-- No wiring set --\""}},
      {"table",
       [&](Superficie& s, emTextosDibujo t) { DibujaTablaConversionDB9DB25(s, t, 0, 0); },
       {"Print \"Tabla de conversión\" | Print \"Conversion table\""}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SuperficieGrabadora library, english;
    c.draw(library, emTextosBiblioteca);
    c.draw(english, emTextosIngles);
    Lines differences = Differences(library.Lineas(), english.Lineas());
    if (std::string(c.what) == "table") {
      // The nine DB9 pins move left by 12 px and carry their signal.
      ASSERT_EQ(differences.size(), 1u + 2 * 9);
      EXPECT_EQ(differences[1], "CurrentX 270 | CurrentX 90");
      EXPECT_EQ(differences[2], "Print \"1\" | Print \"1 DCD\"");
      EXPECT_EQ(differences[18], "Print \"9\" | Print \"9 RI\"");
      differences.resize(1);
    }
    EXPECT_EQ(differences, c.differences);
  }
}

TEST(DrawingTexts, TheMemberOperationsKeepTheLibrarysTexts) {
  clsCfgConmut cfg;
  cfg.ActivaPin(emPuertoRJ45, 2, 3);
  SuperficieGrabadora member, library;
  cfg.DibujaConfiguracionSMDR(emPuertoRJ45, member, 10, 20);
  cfg.DibujaTablaConversionDB9DB25(member, 5, 5);
  DibujaConfiguracionSMDR(cfg, emPuertoRJ45, library, emTextosBiblioteca, 10, 20);
  DibujaTablaConversionDB9DB25(library, emTextosBiblioteca, 5, 5);
  EXPECT_EQ(member.Lineas(), library.Lineas());
}

}  // namespace
