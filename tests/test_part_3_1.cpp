// Part 3.1: the binary configuration file (Abrir, GuardarComo; layouts v3, v2).
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "support/velqua_test.h"
#include "test_part_3_support.h"
#include "velqua/velqua.h"

namespace {

using namespace velqua;
using part3::Constant;
using part3::DataField;
using part3::Wire;
using velqua_test::DataPath;
using velqua_test::ReadFile;
using velqua_test::RecordingListener;
using velqua_test::TempDir;
using velqua_test::U;
using velqua_test::WriteFile;

const std::u16string kMsg1501 = u"No es posible encontrar el archivo deseado.";
const std::u16string kMsg1502 =
    U("Los datos de la configuración no estan completos.\r\n"
      "Verifica la marca, modelo, el separador de llamadas o el caso establecido.");
const std::u16string kMsg1505 =
    U("No es posible abrir al archivo de configuración, no se reconoce.");

std::u16string ConArchivo(const std::u16string& msg, const std::u16string& file) {
  return msg + u"\r\n Archivo :" + file;
}

class Part3_1 : public ::testing::Test {
 protected:
  void SetUp() override { cfg.AgregaOyente(&listener); }
  std::string Golden() const { return ReadFile(DataPath("files/v3_golden.cfg")); }
  // Writes bytes to a fresh file of the temp dir and returns its name.
  std::u16string Put(const std::string& name, const std::string& bytes) {
    WriteFile(dir.Path(name), bytes);
    return dir.Path16(name);
  }
  void ExpectAbrirFails(const std::u16string& file, int32_t code, const std::u16string& msg) {
    EXPECT_VELQUA_ERROR(cfg.Abrir(file), NumeroErrorObjeto(code), part3::kFuenteAbrir,
                        ConArchivo(msg, file));
  }
  TempDir dir;
  clsCfgConmut cfg;
  RecordingListener listener;
};

// ---- GuardarComo: the version-3 layout, byte for byte ----

TEST_F(Part3_1, GuardarComoWritesTheGoldenFileByteForByte) {
  ASSERT_EQ(Golden().size(), 750u) << "run tests/data/files/make_golden.py";
  part3::MakeGoldenConfig(cfg);
  cfg.GuardarComo(dir.Path16("g.cfg"));
  const std::string written = ReadFile(dir.Path("g.cfg"));
  ASSERT_EQ(written.size(), Golden().size());
  for (size_t i = 0; i < written.size(); ++i) {
    ASSERT_EQ(static_cast<int>(static_cast<unsigned char>(written[i])),
              static_cast<int>(static_cast<unsigned char>(Golden()[i])))
        << "first difference at offset " << i;
  }
}

TEST_F(Part3_1, HeaderFieldsLieAtTheirSpecOffsets) {
  part3::MakeGoldenConfig(cfg);
  cfg.GuardarComo(dir.Path16("g.cfg"));
  const std::string b = ReadFile(dir.Path("g.cfg"));
  ASSERT_EQ(b.size(), 660u + 3 * 10 + 2 * 30);
  EXPECT_EQ(part3::I32At(b, 0), 3);
  EXPECT_EQ(b.substr(4, 10), std::string("Panasonic\0", 10));
  EXPECT_EQ(b.substr(54, 10), std::string("KX-TDA200\0", 10));
  EXPECT_EQ(b.substr(104, 8), std::string("L\xEDnea 1\0", 8));  // Windows-1252 í
  EXPECT_EQ(b.substr(354, 3), std::string("\r\n\0", 3));
  EXPECT_EQ(part3::I32At(b, 364), 10);
  EXPECT_EQ(part3::I32At(b, 368), 1);       // lnPinesRJ45[0]
  EXPECT_EQ(part3::I32At(b, 368 + 12), 2);  // lnPinesRJ45[3]
  EXPECT_EQ(part3::I32At(b, 408 + 8), 4);   // lnPinesDB9[2]
  EXPECT_EQ(part3::I32At(b, 408 + 36), 256);
  EXPECT_EQ(part3::I32At(b, 448 + 100), 1 << 30);  // lnPinesDB25[25]
  EXPECT_EQ(b[656], 3);
  EXPECT_EQ(b[658], 2);
  EXPECT_EQ(part3::I32At(b, 660), emParamFechaDia);
  EXPECT_EQ(part3::I32At(b, 690), emDatoCteIdentEntrante);
  EXPECT_EQ(b[690 + 10], 'E');
}

TEST_F(Part3_1, GuardarComoClearsModificadoAndNotifiesNothing) {
  part3::MakeGoldenConfig(cfg);
  ASSERT_TRUE(cfg.Modificado());
  listener.events.clear();
  cfg.GuardarComo(dir.Path16("g.cfg"));
  EXPECT_FALSE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part3_1, GuardarComoOverALongerFileLeavesExactlyTheNewLength) {
  WriteFile(dir.Path("g.cfg"), std::string(5000, 'z'));
  part3::MakeGoldenConfig(cfg);
  cfg.GuardarComo(dir.Path16("g.cfg"));
  EXPECT_EQ(ReadFile(dir.Path("g.cfg")), Golden());
}

TEST_F(Part3_1, GuardarComoWritesCase12WithoutComplaintButAbrirRefusesIt) {
  cfg.Marca(u"M");
  cfg.Modelo(u"N");
  cfg.Separador(u"|");
  cfg.Caso(emCasoAD_TES);
  cfg.GuardarComo(dir.Path16("c12.cfg"));
  const std::string b = ReadFile(dir.Path("c12.cfg"));
  ASSERT_EQ(b.size(), 660u);
  EXPECT_EQ(part3::I32At(b, 364), 12);
  clsCfgConmut other;
  EXPECT_VELQUA_ERROR(other.Abrir(dir.Path16("c12.cfg")), NumeroErrorObjeto(1505),
                      part3::kFuenteAbrir, ConArchivo(kMsg1505, dir.Path16("c12.cfg")));
}

TEST_F(Part3_1, CharacterOutsideTheCodePageIsWrittenAsQuestionMark) {
  cfg.Marca(U("AΩB"));
  cfg.Modelo(u"N");
  cfg.Separador(u"|");
  cfg.GuardarComo(dir.Path16("q.cfg"));
  EXPECT_EQ(ReadFile(dir.Path("q.cfg")).substr(4, 4), std::string("A?B\0", 4));
}

TEST_F(Part3_1, SavingAVersion2ConfigurationWrites3ButKeepsVersion2) {
  cfg.Abrir(U(DataPath("files/v2_estandar.cfg")));
  ASSERT_EQ(cfg.Version(), emVersion2_0);
  cfg.GuardarComo(dir.Path16("v3.cfg"));
  EXPECT_EQ(cfg.Version(), emVersion2_0);
  EXPECT_EQ(part3::I32At(ReadFile(dir.Path("v3.cfg")), 0), 3);
}

TEST_F(Part3_1, GuardarComoToAnUnwritablePlaceEndsNormally) {
  part3::MakeGoldenConfig(cfg);
  cfg.GuardarComo(U(dir.dir()));  // a directory: delete and open fail, not reported
  cfg.GuardarComo(U(dir.dir() + "/missing/folder/x.cfg"));
  EXPECT_FALSE(cfg.Modificado());
}

// ---- GuardarComo failures ----

TEST_F(Part3_1, GuardarComoWithABlankNameFailsWith1501MessageAlone) {
  EXPECT_VELQUA_ERROR(cfg.GuardarComo(u"   "), NumeroErrorObjeto(1501), part3::kFuenteGuardarComo,
                      kMsg1501);
  EXPECT_VELQUA_ERROR(cfg.GuardarComo(u""), NumeroErrorObjeto(1501), part3::kFuenteGuardarComo,
                      kMsg1501);
}

TEST_F(Part3_1, GuardarComoWithIncompleteDataFailsWith1502AndChangesNothing) {
  const auto check = [&](const char* what) {
    SCOPED_TRACE(what);
    cfg.Modificado(true);
    listener.events.clear();
    EXPECT_VELQUA_ERROR(cfg.GuardarComo(dir.Path16("x.cfg")), NumeroErrorObjeto(1502),
                        part3::kFuenteGuardarComo, kMsg1502);
    EXPECT_TRUE(cfg.Modificado());
    EXPECT_TRUE(listener.events.empty());
    EXPECT_FALSE(velqua_test::ReadFile(dir.Path("x.cfg")).size() > 0);
  };
  check("empty brand");
  cfg.Marca(u"M");
  check("empty model");
  cfg.Modelo(u"N");
  check("empty separator");
  cfg.Separador(u"|");
  cfg.Caso(emNoCaso);
  check("case 0");
  cfg.Caso(emCasoEstandar);
  cfg.GuardarComo(dir.Path16("x.cfg"));
  EXPECT_EQ(ReadFile(dir.Path("x.cfg")).size(), 660u);
}

TEST_F(Part3_1, GuardarComoWithBlankBrandIsNotIncomplete) {
  cfg.Marca(u"   ");  // blanks are content
  cfg.Modelo(u"N");
  cfg.Separador(u" ");
  cfg.GuardarComo(dir.Path16("b.cfg"));
  EXPECT_EQ(ReadFile(dir.Path("b.cfg")).size(), 660u);
}

// ---- Abrir: version 3 ----

TEST_F(Part3_1, AbrirOfTheGoldenFileGivesBackEveryField) {
  cfg.Abrir(U(DataPath("files/v3_golden.cfg")));
  EXPECT_EQ(cfg.Version(), emVersion3_0);
  EXPECT_EQ(AUtf8(cfg.Marca()), "Panasonic");
  EXPECT_EQ(AUtf8(cfg.Modelo()), "KX-TDA200");
  EXPECT_EQ(AUtf8(cfg.Comentarios()), "Línea 1");
  EXPECT_EQ(cfg.Separador(), u"\r\n");
  EXPECT_EQ(cfg.Caso(), emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100);
  EXPECT_EQ(Wire(cfg, emPuertoRJ45, 0), 1);
  EXPECT_EQ(Wire(cfg, emPuertoRJ45, 3), 2);
  EXPECT_EQ(Wire(cfg, emPuertoDB9, 2), 4);
  EXPECT_EQ(Wire(cfg, emPuertoDB9, 9), 256);
  EXPECT_EQ(Wire(cfg, emPuertoDB25, 25), 1 << 30);
  const part3::Field dia = DataField(cfg, emParamFechaDia);
  EXPECT_EQ(dia.pos, 1);
  EXPECT_EQ(dia.tam, 2);
  EXPECT_TRUE(dia.complete);
  const part3::Field tel = DataField(cfg, emParamTelefonoSaliente);
  EXPECT_EQ(tel.tipo, emValorCadena);
  EXPECT_EQ(tel.tam, 20);
  EXPECT_FALSE(DataField(cfg, emParamFechaMes).complete);
  EXPECT_EQ(DataField(cfg, emParamFechaMes).pos, 0);  // incomplete: not in the file
  const part3::Cte e = Constant(cfg, emDatoCteIdentEntrante);
  EXPECT_EQ(e.pos, 30);
  EXPECT_EQ(e.text, "E");
  EXPECT_TRUE(e.complete);
  EXPECT_EQ(cfg.CTETam(), 1);
  EXPECT_EQ(Constant(cfg, emDatoCteIdentSaliente).text, "S");
  EXPECT_EQ(Constant(cfg, emDatoCteIdentInterTroncal).text, "");
  EXPECT_FALSE(cfg.Modificado());
}

TEST_F(Part3_1, SaveThenOpenRoundTripsTheWholeConfiguration) {
  part3::MakeGoldenConfig(cfg);
  cfg.GuardarComo(dir.Path16("a.cfg"));
  clsCfgConmut other;
  other.Abrir(dir.Path16("a.cfg"));
  other.GuardarComo(dir.Path16("b.cfg"));
  EXPECT_EQ(ReadFile(dir.Path("b.cfg")), ReadFile(dir.Path("a.cfg")));
  EXPECT_EQ(other.Marca(), cfg.Marca());
  EXPECT_EQ(other.Comentarios(), cfg.Comentarios());
  for (int p = emPuertoRJ45; p <= emPuertoDB25; ++p) {
    for (int16_t pin = 0; pin <= (p == emPuertoDB25 ? 25 : 9); ++pin) {
      const auto port = static_cast<emPuertoSerial>(p);
      EXPECT_EQ(Wire(other, port, pin), Wire(cfg, port, pin)) << p << ":" << pin;
    }
  }
}

TEST_F(Part3_1, EntryZeroAndTheReserveAreLoadedAndSavedUnchanged) {
  const std::string src = ReadFile(DataPath("files/v3_reserva.cfg"));
  ASSERT_EQ(src.size(), 700u);
  cfg.Abrir(U(DataPath("files/v3_reserva.cfg")));
  EXPECT_EQ(cfg.Caso(), emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto);
  EXPECT_EQ(Wire(cfg, emPuertoRJ45, 0), 7);
  EXPECT_EQ(Wire(cfg, emPuertoDB9, 0), 8);
  EXPECT_EQ(Wire(cfg, emPuertoDB25, 0), 9);
  // The constant's stored type 3 and width 9 are not applied: derived instead.
  cfg.CTEActivo(emDatoCteIdentEntrante);
  EXPECT_EQ(cfg.TipoDatoCTE(), emValorConstante);
  EXPECT_EQ(cfg.CTETam(), 1);
  cfg.GuardarComo(dir.Path16("r.cfg"));
  const std::string out = ReadFile(dir.Path("r.cfg"));
  ASSERT_EQ(out.size(), 700u);
  EXPECT_EQ(out.substr(0, 660), src.substr(0, 660));  // reserve at 552 included
  EXPECT_EQ(part3::I32At(out, 552 + 4 * 25), 125);
}

TEST_F(Part3_1, AbrirNotifiesTheLoadWritesThenConfiguracionCargadaLast) {
  cfg.Abrir(U(DataPath("files/v3_golden.cfg")));
  // Per data field DATOPos and DATOTam change (2 Cambios), plus TipoDatoDATO
  // for the string field; per constant CTEPos and Constante (2 Cambios).
  std::vector<std::string> expected(11, "Cambios");
  expected.push_back("ConfiguracionCargada");
  EXPECT_EQ(listener.events, expected);
  EXPECT_FALSE(cfg.Modificado());
}

TEST_F(Part3_1, AbrirOnAFilledObjectNotifiesTheResetFirst) {
  cfg.Comentarios(u"c");
  cfg.Marca(u"Old");
  listener.events.clear();
  cfg.Abrir(U(DataPath("files/v3_golden.cfg")));
  ASSERT_GE(listener.events.size(), 4u);
  EXPECT_EQ(listener.events[0], "Cambios");                 // Comentarios emptied
  EXPECT_EQ(listener.events[1], "CambioNombreConmutador");  // Marca emptied
  EXPECT_EQ(listener.events[2], "Cambios");
  EXPECT_EQ(listener.events.back(), "ConfiguracionCargada");
  EXPECT_EQ(listener.Count("ConfiguracionCargada"), 1);
  EXPECT_EQ(listener.Count("CambioNombreConmutador"), 1);  // the header is stored directly
  EXPECT_EQ(AUtf8(cfg.Marca()), "Panasonic");
}

TEST_F(Part3_1, FileOf659BytesIsRefusedWith1505) {
  const std::u16string f = Put("short.cfg", Golden().substr(0, 659));
  ExpectAbrirFails(f, 1505, kMsg1505);
}

TEST_F(Part3_1, EmptyFileIsRefusedWith1505) {
  ExpectAbrirFails(Put("empty.cfg", ""), 1505, kMsg1505);
}

TEST_F(Part3_1, HeaderPromisingMoreRecordsThanTheFileHoldsLoadsWhatIsThere) {
  std::string b = Golden().substr(0, 660 + 30);  // the three data records only
  part3::PutI16(b, 656, 32767);
  part3::PutI16(b, 658, 32767);
  b += std::string(7, '\x01');  // a truncated fourth record is ignored
  cfg.Abrir(Put("promise.cfg", b));
  EXPECT_TRUE(DataField(cfg, emParamFechaDia).complete);
  EXPECT_TRUE(DataField(cfg, emParamTelefonoSaliente).complete);
  EXPECT_FALSE(Constant(cfg, emDatoCteIdentEntrante).complete);
  // The counts keep the header's values even so: saving recounts them.
  cfg.GuardarComo(dir.Path16("again.cfg"));
  EXPECT_EQ(ReadFile(dir.Path("again.cfg")).size(), 690u);
}

TEST_F(Part3_1, TruncatedConstantListLoadsTheWholeConstantsOnly) {
  std::string b = Golden().substr(0, 750 - 5);  // the second constant cut short
  cfg.Abrir(Put("cut.cfg", b));
  EXPECT_TRUE(Constant(cfg, emDatoCteIdentEntrante).complete);
  EXPECT_FALSE(Constant(cfg, emDatoCteIdentSaliente).complete);
}

TEST_F(Part3_1, NegativeCountsReadNoRecord) {
  std::string b = Golden();
  part3::PutI16(b, 656, -1);
  part3::PutI16(b, 658, -32768);
  cfg.Abrir(Put("neg.cfg", b));
  EXPECT_FALSE(DataField(cfg, emParamFechaDia).complete);
  EXPECT_FALSE(Constant(cfg, emDatoCteIdentEntrante).complete);
}

TEST_F(Part3_1, IncompleteRecordsInTheFileAreSkippedButAdvanceTheOffset) {
  std::string b = Golden();
  b[660 + 9] = 0;  // FechaDia width 0: incomplete
  cfg.Abrir(Put("inc.cfg", b));
  EXPECT_FALSE(DataField(cfg, emParamFechaDia).complete);
  EXPECT_TRUE(DataField(cfg, emParamFechaHoras).complete);
  EXPECT_TRUE(Constant(cfg, emDatoCteIdentSaliente).complete);
}

TEST_F(Part3_1, OtherVersionsAndCasesOutside1To11AreRefused) {
  for (int32_t version : {0, 1, 2, 4, -1}) {
    std::string b = Golden();
    part3::PutI32(b, 0, version);
    ExpectAbrirFails(Put("v.cfg", b), 1505, kMsg1505);
  }
  for (int32_t caso : {0, 12, -1, 1000}) {
    std::string b = Golden();
    part3::PutI32(b, 364, caso);
    ExpectAbrirFails(Put("c.cfg", b), 1505, kMsg1505);
  }
  std::string b = Golden();
  part3::PutI32(b, 364, 11);
  cfg.Abrir(Put("c11.cfg", b));
  EXPECT_EQ(cfg.Caso(), 11);
}

TEST_F(Part3_1, BrandOf50BlanksLoadsBut50ZeroBytesIsNotRecognised) {
  std::string b = Golden();
  b.replace(4, 50, std::string(50, ' '));
  cfg.Abrir(Put("blank.cfg", b));
  EXPECT_EQ(cfg.Marca(), std::u16string(50, u' '));
  b.replace(4, 50, std::string(50, '\0'));
  ExpectAbrirFails(Put("zero.cfg", b), 1505, kMsg1505);
}

TEST_F(Part3_1, EmptyModelOrSeparatorIsNotRecognised) {
  std::string b = Golden();
  b.replace(54, 50, std::string(50, '\0'));
  ExpectAbrirFails(Put("m.cfg", b), 1505, kMsg1505);
  b = Golden();
  b.replace(354, 10, std::string(10, '\0'));
  ExpectAbrirFails(Put("s.cfg", b), 1505, kMsg1505);
}

TEST_F(Part3_1, GarbageBytesAreRefusedOrLoadedButNeverCrash) {
  std::string garbage;
  uint32_t x = 12345;
  for (int i = 0; i < 5000; ++i) {
    x = x * 1103515245u + 12345u;
    garbage.push_back(static_cast<char>(x >> 24));
  }
  for (size_t len : {size_t{1}, size_t{100}, size_t{660}, size_t{786}, size_t{5000}}) {
    ExpectAbrirFails(Put("g.cfg", garbage.substr(0, len)), 1505, kMsg1505);
  }
  // A valid header followed by garbage records: what is complete is loaded.
  std::string b = Golden().substr(0, 660) + garbage.substr(0, 4000);
  part3::PutI16(b, 656, 32767);
  part3::PutI16(b, 658, 32767);
  cfg.Abrir(Put("h.cfg", b));
  EXPECT_EQ(listener.events.back(), "ConfiguracionCargada");
}

TEST_F(Part3_1, FailedAbrirLeavesTheObjectAsItWas) {
  cfg.Marca(u"Keep");
  listener.events.clear();
  ExpectAbrirFails(Put("bad.cfg", "nonsense"), 1505, kMsg1505);
  EXPECT_EQ(cfg.Marca(), u"Keep");
  EXPECT_TRUE(cfg.Modificado());
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part3_1, RuntimeFailureWhileLoadingIsRaisedAs1505WithoutConfiguracionCargada) {
  struct Thrower : EventosCfgConmut {
    void Cambios() override { throw std::runtime_error("host failure"); }
  } thrower;
  cfg.AgregaOyente(&thrower);
  const std::u16string f = U(DataPath("files/v3_golden.cfg"));
  ExpectAbrirFails(f, 1505, kMsg1505);
  EXPECT_EQ(listener.Count("ConfiguracionCargada"), 0);
  EXPECT_EQ(AUtf8(cfg.Marca()), "Panasonic");  // reset and partly loaded
  EXPECT_TRUE(cfg.Modificado());
}

// ---- Abrir: names and attributes ----

TEST_F(Part3_1, AbrirWithABlankNameFailsWithCode0) {
  EXPECT_VELQUA_ERROR(cfg.Abrir(u"   "), NumeroErrorObjeto(0), part3::kFuenteAbrir,
                      u"Error desconocido.\r\n Archivo :   ");
  EXPECT_VELQUA_ERROR(cfg.Abrir(u""), NumeroErrorObjeto(0), part3::kFuenteAbrir,
                      u"Error desconocido.\r\n Archivo :");
  EXPECT_TRUE(listener.events.empty());
}

TEST_F(Part3_1, AbrirOfAMissingFileFailsWith1501) {
  ExpectAbrirFails(dir.Path16("missing.cfg"), 1501, kMsg1501);
}

TEST_F(Part3_1, AbrirOfAFileWithoutArchiveAttributeFailsWith1501) {
  // The stand-in gives the archive attribute to regular files only.
  ExpectAbrirFails(U(dir.dir()), 1501, kMsg1501);
}

TEST_F(Part3_1, AbrirOfANameWithU0000FailsWith1501) {
  WriteFile(dir.Path("a.cfg"), Golden());
  ExpectAbrirFails(dir.Path16("a.cfg") + std::u16string(1, u'\0') + u"x", 1501, kMsg1501);
}

TEST_F(Part3_1, AbrirOfAnUnreadableFileFailsWith1505) {
  const std::u16string f = Put("locked.cfg", Golden());
  chmod(dir.Path("locked.cfg").c_str(), 0);
  if (!ReadFile(dir.Path("locked.cfg")).empty()) GTEST_SKIP() << "running with read access to all";
  ExpectAbrirFails(f, 1505, kMsg1505);
}

TEST_F(Part3_1, FileNameIsShownExactlyAsPassedBlanksIncluded) {
  const std::u16string f = u" " + dir.Path16("missing.cfg") + u" ";
  ExpectAbrirFails(f, 1501, kMsg1501);
}

// ---- Abrir: version 2 ----

TEST_F(Part3_1, Version2CaseByte1GivesSamsungWithTwoXConstantsAtColumn42) {
  cfg.Abrir(U(DataPath("files/v2_samsung.cfg")));
  EXPECT_EQ(cfg.Version(), emVersion2_0);
  EXPECT_EQ(AUtf8(cfg.NombreVersion()), "2.0");
  EXPECT_EQ(cfg.Caso(), emCasoSamsungNX_820);
  for (auto key :
       {emDatoCteIdentEntranteInicioTransferida, emDatoCteIdentSalienteInicioTransferida}) {
    const part3::Cte c = Constant(cfg, key);
    EXPECT_EQ(c.pos, 42);
    EXPECT_EQ(c.text, "x");
    EXPECT_TRUE(c.complete);
  }
  // Entry 3 goes to the OR key unless the case is 1.
  EXPECT_EQ(Constant(cfg, emDatoCteIdentEntranteOR).text, "X");
  EXPECT_FALSE(Constant(cfg, emDatoCteIdentEntranteAND).complete);
  EXPECT_EQ(cfg.Separador(), u" ");  // one blank between quotes
  EXPECT_FALSE(cfg.Modificado());
}

TEST_F(Part3_1, Version2StandardFileIsConvertedByTheTwoTables) {
  cfg.Abrir(U(DataPath("files/v2_estandar.cfg")));
  EXPECT_EQ(cfg.Caso(), emCasoEstandar);
  EXPECT_EQ(AUtf8(cfg.Marca()), "Siemens");
  EXPECT_EQ(AUtf8(cfg.Modelo()), "Hicom 150");
  EXPECT_EQ(cfg.Comentarios(), std::u16string(250, u'C'));
  EXPECT_EQ(cfg.Separador(), u"|");
  // Pair i holds column i + 1, width 2 (make_golden.py); pair 32 is (0, 0).
  const struct {
    emParamDato key;
    int pair;
  } expected[] = {
      {emParamFechaDia, 0},
      {emParamFechaSegundos, 5},
      {emParamTelefonoEntrante, 6},
      {emParamTelefonoEntranteFinTransferida, 6},
      {emParamTelefonoSalienteInicioTransferida, 7},
      {emParamTelefonoInterExtensionFinTransferida, 8},
      {emParamTelefonoInterTroncal, 9},
      {emParamTroncalEntrante, 10},
      {emParamExtensionSaliente, 11},
      {emParamExtension1InterExtension, 12},
      {emParamTroncal1InterTroncal, 13},
      {emParamExtensionEntrante, 14},
      {emParamTroncalSaliente, 15},
      {emParamExtension2InterExtension, 16},
      {emParamTroncal2InterTroncal, 17},
      {emParamTroncalEntranteInicioTransferida, 18},
      {emParamTroncalEntranteFinTransferida, 18},
      {emParamTroncal1InterTroncalFinTransferida, 21},
      {emParamExtensionEntranteInicioTransferida, 22},
      {emParamTroncalSalienteFinTransferida, 23},
      {emParamTroncal2InterTroncalFinTransferida, 25},
      {emParamDuracionDia, 26},
      {emParamDuracionSegundos, 31},
  };
  for (const auto& e : expected) {
    const part3::Field f = DataField(cfg, e.key);
    EXPECT_EQ(f.pos, e.pair + 1) << e.key;
    EXPECT_EQ(f.tam, 2) << e.key;
    EXPECT_EQ(f.tipo, emValorNumerico) << e.key;
    EXPECT_TRUE(f.complete) << e.key;
  }
  EXPECT_FALSE(DataField(cfg, emParamCodigoCuenta).complete);  // pair (0, 0)
  const part3::Cte am = Constant(cfg, emDatoCteIdentificadorHorarioMatutinoFecha);
  EXPECT_EQ(am.pos, 20);
  EXPECT_EQ(am.text, "AM");  // trimmed and unquoted
  EXPECT_EQ(Constant(cfg, emDatoCteIdentEntranteFinTransferida).text, "FIN");
  EXPECT_EQ(Constant(cfg, emDatoCteIdentSalienteFinTransferida).pos, 45);
  EXPECT_EQ(Constant(cfg, emDatoCteIdentEntrante).text, "E");
  EXPECT_EQ(Constant(cfg, emDatoCteIdentEntranteAND).text, "X");  // case 1
  EXPECT_FALSE(Constant(cfg, emDatoCteIdentEntranteOR).complete);
  EXPECT_EQ(Constant(cfg, emDatoCteIdentSaliente).pos, 3);
  EXPECT_EQ(Constant(cfg, emDatoCteIdentSalienteAND).text, "Y");
  EXPECT_EQ(Constant(cfg, emDatoCteIdentInterExtension).text, "I");
  EXPECT_FALSE(Constant(cfg, emDatoCteIdentInterExtensionAND).complete);  // column 0
  EXPECT_EQ(Constant(cfg, emDatoCteIdentInterTroncal).text, "T");
  EXPECT_EQ(Constant(cfg, emDatoCteIdentInterTroncalAND).pos, 7);
  EXPECT_FALSE(Constant(cfg, emDatoCteIdentEntranteInicioTransferida).complete);
}

TEST_F(Part3_1, Version2UnquotedSeparatorIsOnlyTrimmed) {
  cfg.Abrir(U(DataPath("files/v2_sin_comillas.cfg")));
  EXPECT_EQ(cfg.Separador(), u"##");
}

TEST_F(Part3_1, Version2WithAnotherVersionOrLengthIsRefused) {
  const std::string v2 = ReadFile(DataPath("files/v2_estandar.cfg"));
  ASSERT_EQ(v2.size(), 786u);
  std::string b = v2;
  b[0] = 3;
  ExpectAbrirFails(Put("a.cfg", b), 1505, kMsg1505);
  b = v2;
  b[1] = 1;
  ExpectAbrirFails(Put("b.cfg", b), 1505, kMsg1505);
  ExpectAbrirFails(Put("c.cfg", v2 + "x"), 1505, kMsg1505);
  ExpectAbrirFails(Put("d.cfg", v2.substr(0, 785)), 1505, kMsg1505);
}

TEST_F(Part3_1, Version2CaseByteIsNotRangeTested) {
  std::string b = ReadFile(DataPath("files/v2_estandar.cfg"));
  b[2] = static_cast<char>(255);
  cfg.Abrir(Put("c256.cfg", b));
  EXPECT_EQ(cfg.Caso(), 256);
  EXPECT_FALSE(Constant(cfg, emDatoCteIdentEntranteAND).complete);
  EXPECT_EQ(Constant(cfg, emDatoCteIdentEntranteOR).text, "X");
}

TEST_F(Part3_1, Version2NotifiesConfiguracionCargadaLastOnce) {
  cfg.Abrir(U(DataPath("files/v2_estandar.cfg")));
  EXPECT_EQ(listener.events.front(), "Cambios");  // Comentarios
  EXPECT_EQ(listener.events[1], "CambioNombreConmutador");
  EXPECT_EQ(listener.events.back(), "ConfiguracionCargada");
  EXPECT_EQ(listener.Count("ConfiguracionCargada"), 1);
  EXPECT_EQ(listener.Count("CambioNombreConmutador"), 2);
}

}  // namespace
