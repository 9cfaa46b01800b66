#include <gtest/gtest.h>

#include <string>

#include "velqua/cfg_conmut.h"
#include "velqua/error.h"
#include "velqua/records/common.h"
#include "velqua/records/config_json.h"
#include "velqua/records/error_text.h"

namespace velqua_records {
namespace {

using velqua::clsCfgConmut;

// A configuration with a key of each kind, as the writer lays it out.
const std::string kSample =
    ReadWholeFile(VELQUA_SOURCE_DIR "/records/tests/data/kx-tda-part.json", "configuration");
std::string ErrorOf(const std::string& json) {
  clsCfgConmut cfg;
  try {
    ConfigFromJson(json, cfg);
  } catch (const Failure& e) {
    return e.what();
  }
  return "(no error)";
}

TEST(ConfigJson, ReadsEveryPart) {
  clsCfgConmut cfg;
  ConfigFromJson(kSample, cfg);
  EXPECT_EQ(cfg.Marca(), u"Panasonic");
  EXPECT_EQ(cfg.Caso(), velqua::emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100);
  EXPECT_EQ(cfg.Separador(), u"\r\n");
  EXPECT_EQ(cfg.Comentarios(), u"Señal");
  cfg.DATOActivo(velqua::emParamFechaDia);
  EXPECT_TRUE(cfg.HayDATO());
  EXPECT_EQ(cfg.DATOPos(), 4);
  EXPECT_EQ(cfg.DATOTam(), 2);
  EXPECT_EQ(cfg.TipoDatoDATO(), velqua::emValorNumerico);
  cfg.CTEActivo(velqua::emDatoCteIdentSaliente);
  EXPECT_EQ(cfg.Constante(), u"O");
  EXPECT_EQ(cfg.CTETam(), 3);
  EXPECT_TRUE(cfg.PinesConectados(velqua::emPuertoDB9, 2, 3));
  EXPECT_TRUE(cfg.PinesConectados(velqua::emPuertoDB25, 2, 3));
  EXPECT_FALSE(cfg.PinesConectados(velqua::emPuertoDB9, 2, 2));
  EXPECT_FALSE(cfg.Modificado());
  clsCfgConmut numbered;  // a case may be given by its number
  ConfigFromJson(R"({"case": 4})", numbered);
  EXPECT_EQ(numbered.Caso(), velqua::emCasoNortelNorstar0x32SMDR6);
}

// Writing gives back the text read, and leaves the active keys as they were.
TEST(ConfigJson, WritesWhatItReads) {
  clsCfgConmut cfg;
  ConfigFromJson(kSample, cfg);
  cfg.DATOActivo(velqua::emParamCodigoCuenta);
  cfg.CTEActivo(velqua::emDatoCteIdentCodigoCuenta);
  const std::string text = ConfigToJson(cfg);
  EXPECT_EQ(text, kSample);
  EXPECT_EQ(cfg.DATOActivo(), velqua::emParamCodigoCuenta);
  EXPECT_EQ(cfg.CTEActivo(), velqua::emDatoCteIdentCodigoCuenta);
  clsCfgConmut again;
  ConfigFromJson(text, again);
  EXPECT_EQ(ConfigToJson(again), text);
}

TEST(ConfigJson, ErrorsNameTheMemberAtFault) {
  EXPECT_EQ(ErrorOf(R"({"colour": 1})"), "colour: unknown member");
  EXPECT_EQ(ErrorOf(R"({"case": "emCasoRaro"})"), "case: unknown name \"emCasoRaro\"");
  EXPECT_EQ(ErrorOf(R"({"fields": {"emParamFechaDia": {"pos": 0, "size": 2, "type": 1}}})"),
            "fields.emParamFechaDia.pos: must be 1 to 255");
  EXPECT_EQ(ErrorOf(R"({"fields": {"emParamFechaDia": {"pos": 1, "size": 2}}})"),
            "fields.emParamFechaDia.type: missing");
  EXPECT_EQ(ErrorOf(R"({"fields": {"emParamFechaDia": {"pos": 1, "size": 2, "type": "date"}}})"),
            "fields.emParamFechaDia.type: unknown name \"date\"");
  // A type by its number: 1 (numeric) to 3 (string).
  EXPECT_EQ(ErrorOf(R"({"fields": {"emParamFechaDia": {"pos": 1, "size": 2, "type": 3}}})"),
            "(no error)");
  EXPECT_EQ(ErrorOf(R"({"fields": {"emParamFechaDia": {"pos": 1, "size": 2, "type": 4}}})"),
            "fields.emParamFechaDia.type: must be \"numeric\", \"constant\" or \"string\"");
  EXPECT_EQ(ErrorOf(R"({"fields": {"emNoParamDato": {"pos": 1, "size": 2, "type": 1}}})"),
            "fields.emNoParamDato: not a data-field key (emParamFechaDia ... "
            "emParamExtensionTransferida)");
  EXPECT_EQ(ErrorOf(R"({"constants": {"emDatoCteIdentEntrante": {"pos": 1, "text": ""}}})"),
            "constants.emDatoCteIdentEntrante.text: missing or empty");
  EXPECT_EQ(ErrorOf(R"({"constants": {"emDatoCteIdentEntrante": {"pos": 1,
            "text": "123456789012345678901"}}})"),
            "constants.emDatoCteIdentEntrante.text: 21 characters, at most 20");
  EXPECT_EQ(ErrorOf(R"({"separator": "12345678901"})"), "separator: 11 characters, at most 10");
  EXPECT_EQ(ErrorOf(R"({"wiring": {"db25": [[1, 2]]}})"),
            "wiring.db25[0]: switch pin must be 2 to 25");
  EXPECT_EQ(ErrorOf(R"({"wiring": {"db9": [[2, 32]]}})"),
            "wiring.db9[0]: computer pin must be 1 to 31");
  EXPECT_EQ(ErrorOf(R"({"wiring": {"db9": [2, 3]}})"),
            "wiring.db9[0]: must be [switchPin, computerPin]");
  EXPECT_EQ(ErrorOf("[1]"), ": must be an object");
  // Numbers beyond a double fail in the JSON library's parser, not as a value.
  EXPECT_EQ(ErrorOf(R"({"case": 1e400})"), "not valid JSON: a number too large to read");
  EXPECT_EQ(ErrorOf("{\"brand\": }").rfind("not valid JSON: parse error", 0), 0u);
}

// English first, then the library's number, source and text kept whole.
TEST(DescribeError, EnglishMeaningThenTheLibrarysNumberSourceAndText) {
  struct Case {
    int32_t number;
    const char* line;
  } const cases[] = {
      {velqua::NumeroErrorObjeto(1501),
       "the file cannot be found (error -2147220003, 0x800405DD, in S: a /  b)"},
      {6,
       "overflow: a column past 255, or a number too large for the record (error 6, "
       "0x00000006, in S: a /  b)"},
      {91, "no configuration set (error 91, 0x0000005B, in S: a /  b)"},
      {velqua::NumeroErrorObjeto(1999),
       "library error (error -2147219505, 0x800407CF, in S: a /  b)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    EXPECT_EQ(DescribeError(velqua::Error(c.number, u"S", u"a\r\n b")), c.line);
  }
}

// What a user reads: the English meaning, chosen by the number alone, and the
// file a file error names; nothing of the library's Spanish text.
TEST(ErrorText, EnglishByNumberWithTheFileNamed) {
  struct Case {
    int32_t number;
    std::u16string description;
    const char* text;
  } const cases[] = {
      // clang-format off
      {velqua::NumeroErrorObjeto(1505), u"No es posible abrir al archivo de configuración, no se reconoce.\r\n Archivo :/t/x.cfg", "not a configuration file: /t/x.cfg"},
      {velqua::NumeroErrorObjeto(1504), u"Error de importación en la configuración.\r\nDetalle\r\nx.ini", "the profile file cannot be read as a configuration: x.ini"},
      {velqua::NumeroErrorObjeto(1205), u"No se permite conectar el PIN #1 del puerto DB25.", "a DB25 pin that cannot be wired"},
      {velqua::NumeroErrorObjeto(1503), u"Ocurrio un error en los datos al intentar exportar.", "the configuration cannot be written as a profile file"},
      {6, u"Desbordamiento", "overflow: a column past 255, or a number too large for the record"},
      {9, u"El subíndice está fuera del intervalo", "index out of range"},
      {velqua::NumeroErrorObjeto(1506), u"Error desconocido.", "unknown library error"},
      {12345, u"?", "library error"},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(ErrorText(velqua::Error(c.number, u"S", c.description)), c.text);
  }
}

// Control characters a terminal acts on are shown, in a cell and in laid-out
// text; UTF-8 is told from what is not.
TEST(TerminalText, ControlsAreShownAndUtf8IsChecked) {
  struct Case {
    std::string text;
    bool keep_layout;
    std::string shown;
  } const cases[] = {
      // clang-format off
      {"plain 0891", false, "plain 0891"},
      {"\x1b[2J\a", false, "\\x1B[2J\\x07"},
      {"a\tb\r\n", false, "a\\x09b\\x0D\\x0A"},
      {"a\tb\r\n", true, "a\tb\r\n"},
      {"x\x7f\xc2\x9b" "1m \xc3\xa9", true, "x\\x7F\\u009B1m \xc3\xa9"},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.shown);
    std::string out;
    AppendVisible(out, c.text, c.keep_layout);
    EXPECT_EQ(out, c.shown);
    EXPECT_EQ(NeedsVisible(c.text, c.keep_layout), c.shown != c.text);
  }
  const struct {
    const char* bytes;
    bool valid;
  } utf8[] = {
      {"ascii", true},     {"caf\xc3\xa9", true},   {"\xf0\x9f\x93\x9e", true},  {"caf\xe9", false},
      {"\xc0\xaf", false}, {"\xed\xa0\x80", false}, {"\xf4\x90\x80\x80", false}, {"\x80", false}};
  for (const auto& u : utf8) {
    SCOPED_TRACE(u.bytes);
    EXPECT_EQ(IsValidUtf8(u.bytes), u.valid);
  }
}

}  // namespace
}  // namespace velqua_records
