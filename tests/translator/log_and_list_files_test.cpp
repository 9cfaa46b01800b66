// The unrecognised-record log, and the KX-TDA account-code extension (cases 10
// and 11) with its extension list file and random stand-in extension.
#include <filesystem>
#include <string>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

using UnrecognisedLog = BoundTranslator;

TEST_F(UnrecognisedLog, EntriesAreAppendedInWindows1252WithTheirTime) {
  WriteFile(dir_.Path("log.txt"), "antes");
  tr_.LlamadaActual(u"registro 1");
  clock_.Set(At(2027, 1, 5, 17, 8, 9));
  tr_.LlamadaActual(U("línea ñ € 1\r\nsigue ✓"));
  EXPECT_EQ(Log(), "antes" + LogEntry("registro 1") +
                       LogEntry("l\xEDnea \xF1 \x80 1\r\nsigue ?", "2027 Jan 05 17:08:09"));
}

TEST_F(UnrecognisedLog, AnEmptyNameLogsNothing) {
  tr_.ArchivoLlamadasError(u"");
  tr_.LlamadaActual(u"x 1");
  EXPECT_TRUE(std::filesystem::is_empty(dir_.dir()));
}

constexpr emCasos kCase10 = emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100;

class AccountCodeExtension : public BoundTranslator {
 protected:
  AccountCodeExtension() {
    SetKxTdaFields(*cfg_);
    List("1234;201\r\n12;203\r\n");
    tr_.ArchivoListaExtensionesKXTDA(dir_.Path16("lista.txt"));
  }
  void List(const std::string& bytes) { WriteFile(dir_.Path("lista.txt"), bytes); }
  // The extension of an outgoing call printed with the star code `code`.
  std::u16string Lookup(const std::string& code) {
    std::u16string line = U("O *" + code);
    line.resize(10, u' ');
    tr_.LlamadaActual(line + u"01:00");
    return tr_.Extension();
  }
};

TEST_F(AccountCodeExtension, StarCodeOfAnOutgoingCallBecomesTheListedExtension) {
  for (const auto& [record, read] : ReadCases("translator/star_codes.txt")) {
    SCOPED_TRACE(record);
    cfg_->Caso(static_cast<emCasos>(std::stoi(record)));
    tr_.LlamadaActual(U(Quoted(record)));
    ASSERT_NE(tr_.TipoLlamadaDetectada(), emTradNoIdentificada);
    const std::u16string ext = tr_.Extension();
    if (Quoted(read) == "?") {
      EXPECT_TRUE(IsRandomExtension(ext)) << AUtf8(ext);
    } else {
      EXPECT_EQ(AUtf8(ext), Quoted(read));
    }
    EXPECT_EQ(AUtf8(tr_.CodigoCuenta()), Quoted(read, 1));
  }
  cfg_->Caso(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto);
  tr_.LlamadaActual(u"  *1234   01:00 55512 07");
  EXPECT_EQ(tr_.Marcacion(), u"55512");
  EXPECT_EQ(tr_.Troncal(), u"07");
  SetConstant(*cfg_, emDatoCteIdentCodigoCuenta, 26, u"A");  // marked switch
  tr_.LlamadaActual(u"O *1234   01:00");
  EXPECT_EQ(tr_.CodigoCuenta(), u"");
  EXPECT_EQ(tr_.Extension(), u"201");
}

TEST_F(AccountCodeExtension, ListLinesGiveCodeAndExtension) {
  for (const auto& [list, lookup] : ReadCases("translator/extension_lists.txt")) {
    SCOPED_TRACE(list.substr(0, 40) + " / " + lookup.substr(0, 40));
    List(list);
    EXPECT_EQ(AUtf8(Lookup(lookup.substr(0, lookup.find('|')))),
              lookup.substr(lookup.find('|') + 1));
  }
  WriteFile(dir_.Path("otra.txt"), "1234;288\r\n");
  tr_.ArchivoListaExtensionesKXTDA(dir_.Path16("otra.txt"));
  EXPECT_EQ(Lookup("1234"), u"288");
}

// The generator is seeded from the timer at construction and at each binding
// in cases 10 and 11: the same seed repeats the draws, another does not.
TEST_F(AccountCodeExtension, BindingInCases10And11ReseedsTheRandomExtensions) {
  const auto draws = [this] { return Lookup("9") + Lookup("9") + Lookup("9"); };
  tr_.Conmutador(cfg_);
  const std::u16string first = draws(), second = draws();
  cfg_->Caso(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100ConSalienteDefecto);
  tr_.Conmutador(cfg_);
  EXPECT_EQ(draws(), first);
  cfg_->Caso(emCasoEstandar);
  tr_.Conmutador(cfg_);  // no seed
  cfg_->Caso(kCase10);
  EXPECT_EQ(draws(), second);
  FixedClock other(TestNow(), 12345);
  tr_.EstableceEntorno(other.Env());
  tr_.Conmutador(cfg_);
  EXPECT_NE(draws(), first);
}

}  // namespace
}  // namespace velqua_test
