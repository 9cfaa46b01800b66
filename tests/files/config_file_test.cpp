// The binary configuration file: GuardarComo writes the version-3 layout,
// Abrir reads it and the older version-2 layout.
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "files/files_support.h"

namespace {

using namespace files_test;
using velqua_test::DataPath;
using Events = std::vector<std::string>;

class ConfigFileSave : public FileTest {};
class ConfigFileOpen : public FileTest {};
class ConfigFileVersion2 : public FileTest {};

TEST_F(ConfigFileSave, WritesTheGoldenFileWholeAndSilentlyWhereverItCan) {
  ASSERT_EQ(Golden().size(), 750u);
  velqua_test::WriteFile(dir.Path("g.cfg"), std::string(5000, 'z'));
  MakeGoldenConfig(cfg);
  listener.events.clear();
  cfg.GuardarComo(dir.Path16("g.cfg"));
  EXPECT_EQ(Read("g.cfg"), Golden());
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
  std::filesystem::create_directory(dir.Path("dir.cfg"));
  for (const std::u16string& name : {dir.Path16("dir.cfg"), dir.Path16("missing/x.cfg"),
                                     dir.Path16("n.cfg") + std::u16string(1, u'\0') + u"x"}) {
    cfg.Modificado(true);
    cfg.GuardarComo(name);  // not reported
    EXPECT_FALSE(cfg.Modificado());
  }
  EXPECT_TRUE(std::filesystem::is_directory(dir.Path("dir.cfg")));
  EXPECT_FALSE(std::filesystem::exists(dir.Path("missing")) ||
               std::filesystem::exists(dir.Path("n.cfg")));
}

TEST_F(ConfigFileSave, WritesVersion3AnyCaseAndAQuestionMarkOutsideTheCodePage) {
  cfg.Abrir(U(DataPath("files/v2_estandar.cfg")));
  cfg.Marca(U("AΩB"));
  cfg.Caso(emCasoAD_TES);  // saved, though Abrir refuses it
  cfg.GuardarComo(dir.Path16("v3.cfg"));
  EXPECT_EQ(cfg.Version(), emVersion2_0);
  EXPECT_EQ(I32At(Read("v3.cfg"), 0), 3);
  EXPECT_EQ(Read("v3.cfg").substr(4, 4), std::string("A?B\0", 4));
  EXPECT_EQ(I32At(Read("v3.cfg"), 364), 12);
}

TEST_F(ConfigFileSave, RefusesABlankNameOrIncompleteDataAndChangesNothing) {
  const struct {
    std::u16string name, brand, model, separator;
    emCasos caso;
  } rows[] = {
      {u"   ", u"M", u"N", u"|", emCasoEstandar}, {u"", u"M", u"N", u"|", emCasoEstandar},
      {u"x", u"", u"N", u"|", emCasoEstandar},    {u"x", u"M", u"", u"|", emCasoEstandar},
      {u"x", u"M", u"N", u"", emCasoEstandar},    {u"x", u"M", u"N", u"|", emNoCaso},
      {u"x", u"   ", u"N", u" ", emCasoEstandar},  // saved: blanks are content
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(AUtf8(row.name + u"/" + row.brand + u"/" + row.model + u"/" + row.separator));
    clsCfgConmut c;
    c.Marca(row.brand);
    c.Modelo(row.model);
    c.Separador(row.separator);
    c.Caso(row.caso);
    velqua_test::RecordingListener l;
    c.AgregaOyente(&l);
    const std::u16string name = row.name == u"x" ? dir.Path16("x.cfg") : row.name;
    if (row.brand == u"   ") {
      c.GuardarComo(name);
      EXPECT_EQ(Read("x.cfg").size(), 660u);
      continue;
    }
    const bool blank = name.size() < 4;
    EXPECT_VELQUA_ERROR(c.GuardarComo(name), NumeroErrorObjeto(blank ? 1501 : 1502),
                        u"clsConfigConmut.GuardarComo", blank ? kMsg1501 : kMsg1502);
    EXPECT_TRUE(c.Modificado());
    EXPECT_TRUE(l.events.empty());
    EXPECT_EQ(Read("x.cfg"), "");
  }
}

TEST_F(ConfigFileOpen, GoldenAndSavedFilesGiveBackTheConfigurationThatWroteThem) {
  cfg.Comentarios(u"c");
  cfg.Marca(u"Old");
  listener.events.clear();
  cfg.Abrir(U(DataPath("files/v3_golden.cfg")));
  // The reset empties two texts; then each changed table value notifies.
  Events expected = {"Cambios", "CambioNombreConmutador", "Cambios"};
  expected.resize(3 + 11, "Cambios");
  expected.push_back("ConfiguracionCargada");
  EXPECT_EQ(listener.events, expected);
  EXPECT_FALSE(cfg.Modificado());
  clsCfgConmut made;
  MakeGoldenConfig(made);
  EXPECT_EQ(Summary(cfg), Summary(made));
  for (int16_t pin = 1; pin <= 25; ++pin) {  // every wiring entry
    if (pin <= 9) made.ActivaPin(emPuertoRJ45, pin, pin);
    if (pin <= 9) made.ActivaPin(emPuertoDB9, pin, static_cast<int16_t>(10 + pin));
    if (pin > 1) made.ActivaPin(emPuertoDB25, pin, pin);
  }
  made.GuardarComo(dir.Path16("a.cfg"));
  cfg.Abrir(dir.Path16("a.cfg"));
  EXPECT_EQ(Summary(cfg), Summary(made));
  cfg.GuardarComo(dir.Path16("b.cfg"));
  EXPECT_EQ(Read("b.cfg"), Read("a.cfg"));
}

TEST_F(ConfigFileOpen, EntryZeroAndTheReserveComeBackUnchangedAndStoredTypesAreDerived) {
  const std::string src = velqua_test::ReadFile(DataPath("files/v3_reserva.cfg"));
  cfg.Abrir(U(DataPath("files/v3_reserva.cfg")));
  EXPECT_EQ(Summary(cfg), "3.0;Marca, Modelo;;|;11; P100=7 P200=8 P300=9 D2:1,2,1 C4:30,1,E");
  cfg.GuardarComo(dir.Path16("r.cfg"));
  const std::string out = Read("r.cfg");
  ASSERT_EQ(out.size(), 700u);
  EXPECT_EQ(out.substr(0, 660), src.substr(0, 660));  // the reserve at 552 included
  EXPECT_EQ(I32At(out, 674), emValorConstante);       // the file said type 3 and width 9
  EXPECT_EQ(out[679], 1);
}

TEST_F(ConfigFileOpen, RefusedFilesRaiseTheirErrorAndLeaveTheObjectAsItWas) {
  const std::string garbage = Garbage(5000, 12345);
  const std::string v2 = V2();
  std::vector<std::string> bad = {Golden().substr(0, 659),
                                  Golden().replace(4, 50, std::string(50, '\0')),
                                  Golden().replace(54, 50, std::string(50, '\0')),
                                  Golden().replace(354, 10, std::string(10, '\0')),
                                  PutLE(v2, 0, 3, 1),
                                  PutLE(v2, 1, 1, 1),
                                  v2 + "x",
                                  v2.substr(0, 785)};
  for (size_t size : {0u, 1u, 659u, 660u, 785u, 786u, 787u, 4096u})
    bad.push_back(std::string(size, '\0'));
  for (size_t size : {1u, 100u, 660u, 786u, 5000u}) bad.push_back(garbage.substr(0, size));
  for (int32_t v : {0, 1, 2, 4, -1}) bad.push_back(PutLE(Golden(), 0, v));
  for (int32_t c : {0, 12, -1, 1000}) bad.push_back(PutLE(Golden(), 364, c));
  std::vector<std::pair<std::u16string, int32_t>> rows = {
      {u"   ", 0},
      {dir.Path16("missing.cfg"), emErrorNoHayArchivo},
      {U(dir.dir()), emErrorNoHayArchivo},  // not a file
      {u" " + dir.Path16("missing.cfg") + u" ", emErrorNoHayArchivo},
      {Put("a.cfg", Golden()) + std::u16string(1, u'\0') + u"x", emErrorNoHayArchivo},
  };
  for (size_t i = 0; i < bad.size(); ++i) {
    rows.emplace_back(Put("bad" + std::to_string(i) + ".cfg", bad[i]), emErrorConfigAbrir);
  }
  cfg.Marca(u"Keep");
  listener.events.clear();
  for (const auto& [name, code] : rows) {
    SCOPED_TRACE(AUtf8(name));
    const std::u16string message = code == 0                     ? u"Error desconocido."
                                   : code == emErrorNoHayArchivo ? kMsg1501
                                                                 : kMsg1505;
    EXPECT_VELQUA_ERROR(cfg.Abrir(name), NumeroErrorObjeto(code), u"clsConfigConmut.Abrir",
                        message + u"\r\n Archivo :" + name);
  }
  EXPECT_EQ(cfg.Marca(), u"Keep");
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(ConfigFileOpen, OnlyWholeCompleteRecordsLoadWhateverTheCountsSay) {
  const std::string g = Golden(), fields = " D2:1,2,1 D5:11,2,1 D19:30,20,3";
  const struct {
    std::string bytes, records;
    size_t saved;  // saving counts the records again
  } rows[] = {
      {PutLE(PutLE(g.substr(0, 690), 656, 32767, 2), 658, 32767, 2), fields, 690},
      {g.substr(0, 745), fields + " C4:30,1,E", 720},
      {PutLE(PutLE(g, 656, -1, 2), 658, -32768, 2), "", 660},
      {g.substr(0, 660), "", 660},
      {PutLE(g, 669, 0, 1), " D5:11,2,1 D19:30,20,3 C4:30,1,E C7:30,1,S", 740},  // width 0
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.records);
    clsCfgConmut c;
    c.Abrir(Put("r.cfg", row.bytes));
    EXPECT_EQ(Records(c), row.records);
    c.GuardarComo(dir.Path16("again.cfg"));
    EXPECT_EQ(Read("again.cfg").size(), row.saved);
  }
}

TEST_F(ConfigFileOpen, HeaderAcceptsCases1To11AndABrandOfBlanks) {
  for (int32_t c : {1, 11}) {
    cfg.Abrir(Put("c.cfg", PutLE(Golden(), 364, c)));
    EXPECT_EQ(cfg.Caso(), c);
  }
  cfg.Abrir(Put("blank.cfg", Golden().replace(4, 50, std::string(50, ' '))));
  EXPECT_EQ(cfg.Marca(), std::u16string(50, u' '));
}

TEST_F(ConfigFileOpen, AFailingListenerMakesTheLoadFailWith1505) {
  struct Thrower : EventosCfgConmut {
    void Cambios() override { throw std::runtime_error("host failure"); }
  } thrower;
  cfg.AgregaOyente(&thrower);
  const std::u16string f = U(DataPath("files/v3_golden.cfg"));
  EXPECT_VELQUA_ERROR(cfg.Abrir(f), NumeroErrorObjeto(emErrorConfigAbrir), u"clsConfigConmut.Abrir",
                      kMsg1505 + u"\r\n Archivo :" + f);
  EXPECT_EQ(listener.Count("ConfiguracionCargada"), 0);
  EXPECT_EQ(cfg.Marca(), u"Panasonic");  // reset and partly loaded
  EXPECT_TRUE(cfg.Modificado());
}

TEST_F(ConfigFileVersion2, StandardFileIsConvertedByTheTwoTables) {
  cfg.ActivaPin(emPuertoRJ45, 0, 3);  // entry 0 is never cleared, the others are
  cfg.ActivaPin(emPuertoDB9, 9, 1);
  cfg.ActivaPin(emPuertoDB25, 25, 1);
  listener.events.clear();
  cfg.Abrir(U(DataPath("files/v2_estandar.cfg")));
  // Texts trimmed and unquoted; the separator one character.
  const std::string head = "2.0;Siemens, Hicom 150;" + std::string(250, 'C') + ";|;1; P100=4";
  EXPECT_EQ(Summary(cfg).substr(0, head.size() + 1), head + " ");
  EXPECT_FALSE(cfg.Modificado());
  // The reset, then comments, brand, model and separator, then 48 data fields
  // and 10 constants, each with two changes.
  Events expected = {"Cambios", "CambioNombreConmutador", "Cambios", "CambioNombreConmutador"};
  expected.resize(4 + 2 + 96 + 20, "Cambios");
  expected.push_back("ConfiguracionCargada");
  EXPECT_EQ(listener.events, expected);
  for (const auto& [key, record] : velqua_test::ReadCases("files/v2_estandar_keys.txt")) {
    const int k = std::stoi(key.substr(1));
    EXPECT_EQ(key[0] == 'D' ? Dato(cfg, k) : Cte(cfg, k), record) << key;
  }
}

TEST_F(ConfigFileVersion2, CaseByteOtherThan0MovesEntry3ToTheOrKey) {
  cfg.Abrir(U(DataPath("files/v2_samsung.cfg")));
  EXPECT_EQ(cfg.Caso(), emCasoSamsungNX_820);
  EXPECT_EQ(cfg.Separador(), u" ");  // one blank between quotes
  EXPECT_EQ(Cte(cfg, emDatoCteIdentEntranteInicioTransferida), "42,1,x");
  EXPECT_EQ(Cte(cfg, emDatoCteIdentSalienteInicioTransferida), "42,1,x");
  EXPECT_EQ(Cte(cfg, emDatoCteIdentEntranteOR), "2,1,X");
  EXPECT_EQ(Cte(cfg, emDatoCteIdentEntranteAND), "0,0,?");
  cfg.Abrir(Put("c256.cfg", PutLE(V2(), 2, 255, 1)));  // the case byte is not range tested
  EXPECT_EQ(cfg.Caso(), 256);
  EXPECT_EQ(Cte(cfg, emDatoCteIdentEntranteOR), "2,1,X");
  EXPECT_EQ(Cte(cfg, emDatoCteIdentEntranteInicioTransferida), "0,0,?");
  cfg.Abrir(U(DataPath("files/v2_sin_comillas.cfg")));
  EXPECT_EQ(cfg.Separador(), u"##");
}

}  // namespace
