// Realistic samples: at least 20 records for each of case 1 (a Nortel
// Meridian style single-line layout), case 4 (Nortel Norstar SMDR6
// multi-line) and case 10 (Panasonic KX-TDA "Pattern A"), every field of
// every record checked against values written by hand from the records.
#include <memory>
#include <string>
#include <vector>

#include "test_part_4_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

struct Expected {
  std::u16string record;
  emTipoLlamadaTraductor type;
  emAtributoTraductor attr;
  int dia, mes, anio;
  int32_t hora, duracion, ring;
  std::string marcacion, extension, troncal, ext_receptor, troncal_receptor, codigo;
};

void CheckAll(clsTraductor& tr, const std::vector<Expected>& rows) {
  int n = 0;
  for (const Expected& e : rows) {
    SCOPED_TRACE(::testing::Message() << "record " << ++n << ": " << AUtf8(e.record));
    tr.LlamadaActual(e.record);
    EXPECT_EQ(tr.TipoLlamadaDetectada(), e.type);
    EXPECT_EQ(tr.Atributo(), e.attr);
    EXPECT_EQ(tr.Dia(), e.dia);
    EXPECT_EQ(tr.Mes(), e.mes);
    EXPECT_EQ(tr.Anio(), e.anio);
    EXPECT_EQ(tr.Hora(), e.hora);
    EXPECT_EQ(tr.Duracion(), e.duracion);
    EXPECT_EQ(tr.Ring(), e.ring);
    EXPECT_EQ(AUtf8(tr.Marcacion()), e.marcacion);
    EXPECT_EQ(AUtf8(tr.Extension()), e.extension);
    EXPECT_EQ(AUtf8(tr.Troncal()), e.troncal);
    EXPECT_EQ(AUtf8(tr.ExtensionReceptor()), e.ext_receptor);
    EXPECT_EQ(AUtf8(tr.TroncalReceptor()), e.troncal_receptor);
    EXPECT_EQ(AUtf8(tr.CodigoCuenta()), e.codigo);
  }
}

void SetTexts(clsCfgConmut& cfg, std::initializer_list<emParamDato> keys, int pos, int size) {
  for (emParamDato k : keys) SetText(cfg, k, pos, size);
}

// ---- case 1: Meridian-style CDR, one record per line ----
//
// col 1 record type (N normal, S/E/X start/end/in transfer, A account code),
// 3-5 record number, 7-8 customer, 10-16 originating ID, 17-23 terminating
// ID (DNxxxx station, Txxxxxx trunk), 25-29 MM/DD, 31-35 HH:MM, 37-44
// duration HH:MM:SS, 46- digits. No year, no seconds of the time of day.

std::shared_ptr<clsCfgConmut> MeridianConfig() {
  auto cfg = MakeConfig(emCasoEstandar);
  SetConstant(*cfg, emDatoCteIdentEntrante, 10, u"T");
  SetConstant(*cfg, emDatoCteIdentEntranteAND, 17, u"DN");
  SetConstant(*cfg, emDatoCteIdentSaliente, 10, u"DN");
  SetConstant(*cfg, emDatoCteIdentSalienteAND, 17, u"T");
  SetConstant(*cfg, emDatoCteIdentInterExtension, 10, u"DN");
  SetConstant(*cfg, emDatoCteIdentInterExtensionAND, 17, u"DN");
  SetConstant(*cfg, emDatoCteIdentInterTroncal, 10, u"T");
  SetConstant(*cfg, emDatoCteIdentInterTroncalAND, 17, u"T");
  SetConstant(*cfg, emDatoCteIdentCodigoCuenta, 1, u"A");
  for (auto k : {emDatoCteIdentEntranteInicioTransferida, emDatoCteIdentSalienteInicioTransferida,
                 emDatoCteIdentInterExtensionInicioTransferida,
                 emDatoCteIdentInterTroncalInicioTransferida}) {
    SetConstant(*cfg, k, 1, u"S");
  }
  for (auto k :
       {emDatoCteIdentEntranteFinTransferida, emDatoCteIdentSalienteFinTransferida,
        emDatoCteIdentInterExtensionFinTransferida, emDatoCteIdentInterTroncalFinTransferida}) {
    SetConstant(*cfg, k, 1, u"E");
  }
  for (auto k :
       {emDatoCteIdentEntranteEnTransferencia, emDatoCteIdentSalienteEnTransferencia,
        emDatoCteIdentInterExtensionEnTransferencia, emDatoCteIdentInterTroncalEnTransferencia}) {
    SetConstant(*cfg, k, 1, u"X");
  }
  SetField(*cfg, emParamFechaMes, 25, 2);
  SetField(*cfg, emParamFechaDia, 28, 2);
  SetField(*cfg, emParamFechaHoras, 31, 2);
  SetField(*cfg, emParamFechaMinutos, 34, 2);
  SetField(*cfg, emParamDuracionHoras, 37, 2);
  SetField(*cfg, emParamDuracionMinutos, 40, 2);
  SetField(*cfg, emParamDuracionSegundos, 43, 2);
  SetTexts(
      *cfg,
      {emParamTelefonoEntrante, emParamTelefonoSaliente, emParamTelefonoInterExtension,
       emParamTelefonoInterTroncal, emParamTelefonoEntranteInicioTransferida,
       emParamTelefonoEntranteFinTransferida, emParamTelefonoSalienteInicioTransferida,
       emParamTelefonoSalienteFinTransferida, emParamTelefonoInterExtensionInicioTransferida,
       emParamTelefonoInterExtensionFinTransferida, emParamTelefonoInterTroncalInicioTransferida,
       emParamTelefonoInterTroncalFinTransferida, emParamTelefonoEntranteEnTransferencia,
       emParamTelefonoSalienteEnTransferencia, emParamTelefonoInterExtensionEnTransferencia,
       emParamTelefonoInterTroncalEnTransferencia},
      46, 20);
  SetText(*cfg, emParamCodigoCuenta, 46, 10);
  // Outgoing: the station after "DN" in the originating ID, trunk route of the terminating.
  SetTexts(*cfg,
           {emParamExtensionSaliente, emParamExtensionSalienteInicioTransferida,
            emParamExtensionSalienteFinTransferida, emParamExtensionSalienteEnTransferencia},
           12, 5);
  SetTexts(*cfg,
           {emParamTroncalSaliente, emParamTroncalSalienteInicioTransferida,
            emParamTroncalSalienteFinTransferida, emParamTroncalSalienteEnTransferencia,
            emParamTroncalCodigoCuenta},
           18, 3);
  // Incoming: trunk route of the originating ID, station of the terminating.
  SetTexts(*cfg,
           {emParamTroncalEntrante, emParamTroncalEntranteInicioTransferida,
            emParamTroncalEntranteFinTransferida, emParamTroncalEntranteEnTransferencia},
           11, 3);
  SetTexts(*cfg,
           {emParamExtensionEntrante, emParamExtensionEntranteInicioTransferida,
            emParamExtensionEntranteFinTransferida, emParamExtensionEntranteEnTransferencia},
           19, 5);
  SetTexts(*cfg,
           {emParamExtension1InterExtension, emParamExtension1InterExtensionInicioTransferida,
            emParamExtension1InterExtensionFinTransferida,
            emParamExtension1InterExtensionEnTransferencia},
           12, 5);
  SetTexts(*cfg,
           {emParamExtension2InterExtension, emParamExtension2InterExtensionInicioTransferida,
            emParamExtension2InterExtensionFinTransferida,
            emParamExtension2InterExtensionEnTransferencia},
           19, 5);
  SetTexts(*cfg,
           {emParamTroncal1InterTroncal, emParamTroncal1InterTroncalInicioTransferida,
            emParamTroncal1InterTroncalFinTransferida, emParamTroncal1InterTroncalEnTransferencia},
           11, 3);
  SetTexts(*cfg,
           {emParamTroncal2InterTroncal, emParamTroncal2InterTroncalInicioTransferida,
            emParamTroncal2InterTroncalFinTransferida, emParamTroncal2InterTroncalEnTransferencia},
           18, 3);
  return cfg;
}

std::u16string Mer(const std::string& t, const std::string& num, const std::string& orig,
                   const std::string& term, const std::string& date, const std::string& time,
                   const std::string& dur, const std::string& digits = "") {
  return Cols({{1, t},
               {3, num},
               {7, "00"},
               {10, orig},
               {17, term},
               {25, date},
               {31, time},
               {37, dur},
               {46, digits}});
}

TEST(Part4_Samples, Case1MeridianStyleRecords) {
  FixedClock clock(TestNow());
  TempDir dir;
  clsTraductor tr;
  tr.Conmutador(MeridianConfig());
  tr.ArchivoLlamadasError(dir.Path16("log.txt"));
  const auto O = emTradSaliente;
  const auto I = emTradEntrante;
  const auto NA = emATRNoAtributo;
  // clang-format off
  const std::vector<Expected> rows = {
    {Mer("N", "001", "DN7425", "T052000", "11/17", "08:03", "00:01:32", "5551212"),
     O, NA, 17, 11, 2026, Hms(8, 3, 3), 92, -1, "5551212", "7425", "052", "", "", ""},
    {Mer("N", "002", "T052001", "DN7431", "11/17", "08:10", "00:05:10", "6135550100"),
     I, NA, 17, 11, 2026, Hms(8, 10, 3), 310, -1, "6135550100", "7431", "052", "", "", ""},
    {Mer("N", "003", "DN7425", "DN7431", "11/17", "08:15", "00:00:45"),
     emTradInterExtension, NA, 17, 11, 2026, Hms(8, 15, 3), 45, -1, "", "7425", "", "7431", "", ""},
    {Mer("N", "004", "T052002", "T053000", "11/17", "08:20", "00:12:00"),
     emTradInterTroncal, NA, 17, 11, 2026, Hms(8, 20, 3), 720, -1, "", "", "052", "", "053", ""},
    {Mer("S", "005", "DN7425", "T052003", "11/17", "08:31", "00:00:50", "5559876"),
     O, emATRIniTR, 17, 11, 2026, Hms(8, 31, 3), 50, -1, "5559876", "7425", "052", "", "", ""},
    {Mer("E", "006", "DN7440", "T052003", "11/17", "08:32", "00:03:05", "5559876"),
     O, emATRFinTR, 17, 11, 2026, Hms(8, 32, 3), 185, -1, "5559876", "7440", "052", "", "", ""},
    {Mer("X", "007", "DN7425", "T052004", "11/17", "08:40", "00:00:20", "5551234"),
     O, emATREnTR, 17, 11, 2026, Hms(8, 40, 3), 20, -1, "5551234", "7425", "052", "", "", ""},
    {Mer("S", "008", "T052005", "DN7431", "11/17", "09:00", "00:00:15", "6135550111"),
     I, emATRIniTR, 17, 11, 2026, Hms(9, 0, 3), 15, -1, "6135550111", "7431", "052", "", "", ""},
    {Mer("E", "009", "T052005", "DN7432", "11/17", "09:01", "00:04:44", "6135550111"),
     I, emATRFinTR, 17, 11, 2026, Hms(9, 1, 3), 284, -1, "6135550111", "7432", "052", "", "", ""},
    {Mer("X", "010", "T052006", "DN7433", "11/17", "09:10", "00:00:33"),
     I, emATREnTR, 17, 11, 2026, Hms(9, 10, 3), 33, -1, "", "7433", "052", "", "", ""},
    {Mer("S", "011", "DN7425", "DN7431", "11/17", "09:20", "00:00:10"),
     emTradInterExtension, emATRIniTR, 17, 11, 2026, Hms(9, 20, 3), 10, -1, "", "7425", "", "7431", "", ""},
    {Mer("E", "012", "DN7431", "DN7425", "11/17", "09:21", "00:02:00"),
     emTradInterExtension, emATRFinTR, 17, 11, 2026, Hms(9, 21, 3), 120, -1, "", "7431", "", "7425", "", ""},
    {Mer("X", "013", "T052007", "T053001", "11/17", "09:30", "00:07:07"),
     emTradInterTroncal, emATREnTR, 17, 11, 2026, Hms(9, 30, 3), 427, -1, "", "", "052", "", "053", ""},
    {Mer("A", "014", "DN7425", "T052000", "11/17", "10:00", "00:00:00", "1234567"),
     emTradCodigoCuenta, NA, 17, 11, 2026, Hms(10, 0, 3), 0, -1, "", "", "052", "", "", "1234567"},
    {Mer("N", "015", "DN7425", "T052000", "11/17", "10:05", "**:**:**", "5550000"),
     emTradNoIdentificada, NA, 17, 11, 2026, Hms(10, 5, 3), -1, -1, "", "", "", "", "", ""},
    {u"CDR REPORT PAGE",
     emTradNoIdentificada, NA, 18, 11, 2026, Hms(9, 5, 3), -1, -1, "", "", "", "", "", ""},
    {u"",
     emTradNoIdentificada, NA, 18, 11, 2026, Hms(9, 5, 3), -1, -1, "", "", "", "", "", ""},
    {Mer("N", "018", "DN7450", "T054010", "11/18", "00:30", "01:02:03", "18005551000"),
     O, NA, 18, 11, 2026, Hms(0, 30, 3), 3723, -1, "18005551000", "7450", "054", "", "", ""},
    {Mer("N", "019", "T054011", "DN7450", "11/18", "23:59", "00:00:05"),
     I, NA, 18, 11, 2026, Hms(23, 59, 3), 5, -1, "", "7450", "054", "", "", ""},
    {Mer("N", "020", "DN7425", "T052000", "12/31", "07:00", "00:00:59", "9 5551212"),
     O, NA, 31, 12, 2026, Hms(7, 0, 3), 59, -1, "9 5551212", "7425", "052", "", "", ""},
    {Mer("N", "021", "T052001", "DN7431", "13/45", "07:30", "00:10:01", "6135550100"),
     I, NA, 18, 11, 2026, Hms(7, 30, 3), 601, -1, "6135550100", "7431", "052", "", "", ""},
    {Mer("N", "022", "DN742", "T052000", "02/29", "16:45", "00:59:59", "0114412345678"),
     O, NA, 29, 2, 2026, Hms(16, 45, 3), 3599, -1, "0114412345678", "742", "052", "", "", ""},
  };
  // clang-format on
  CheckAll(tr, rows);
  EXPECT_EQ(ReadFile(dir.Path("log.txt")),
            LogEntry(AUtf8(rows[14].record)) + LogEntry("CDR REPORT PAGE"));
}

// ---- case 4: Nortel Norstar SMDR6, one call over several lines ----

std::shared_ptr<clsCfgConmut> NorstarConfig() {
  auto cfg = MakeConfig(emCasoNortelNorstar0x32SMDR6, u"\r\n");
  SetField(*cfg, emParamFechaMes, 10, 2);
  SetField(*cfg, emParamFechaDia, 13, 2);
  SetField(*cfg, emParamFechaAnio, 16, 2);
  SetField(*cfg, emParamFechaHoras, 19, 2);
  SetField(*cfg, emParamFechaMinutos, 22, 2);
  SetField(*cfg, emParamFechaSegundos, 25, 2);
  SetText(*cfg, emParamTroncalEntrante, 35, 4);
  SetText(*cfg, emParamExtensionEntrante, 46, 7);
  SetField(*cfg, emParamDuracionHoras, 1, 2);
  SetField(*cfg, emParamDuracionMinutos, 4, 2);
  SetField(*cfg, emParamDuracionSegundos, 7, 2);
  SetText(*cfg, emParamTelefonoEntrante, 24, 32);
  SetText(*cfg, emParamCodigoCuenta, 31, 10);
  return cfg;
}

std::u16string Block(std::initializer_list<std::string> lines) {
  std::string joined;
  for (const std::string& l : lines) joined += (joined.empty() ? "" : "\r\n") + l;
  return U(joined);
}

TEST(Part4_Samples, Case4NorstarMultiLineRecords) {
  FixedClock clock(TestNow());
  TempDir dir;
  clsTraductor tr;
  tr.Conmutador(NorstarConfig());
  tr.ArchivoLlamadasError(dir.Path16("log.txt"));
  const auto O = emTradSaliente;
  const auto I = emTradEntrante;
  const auto TR = emTradTransferida;
  const auto NA = emATRNoAtributo;
  const auto X = emTradNoIdentificada;
  // clang-format off
  const std::vector<Expected> rows = {
    {Block({"-------- 11/17/26 08:01:10 LINE = 0001 STN = 221", "00:00:00 OUTGOING CALL",
            "00:00:03 DIGITS DIALED 5551234", "00:02:15 CALL RELEASED"}),
     O, NA, 17, 11, 2026, Hms(8, 1, 10), 135, -1, "5551234", "221", "0001", "", "", ""},
    {Block({"-------- 11/17/26 08:05:00 LINE = 0002 STN = 222", "CALLING NUMBER 6135550100",
            "00:00:00 INCOMING CALL RINGING 0:04", "00:03:00 CALL RELEASED"}),
     I, NA, 17, 11, 2026, Hms(8, 5, 0), 180, -1, "", "222", "0002", "", "", ""},
    {Block({"-------- 11/17/26 08:07:30 LINE = 0002 STN = 7425",
            "00:00:00 INCOMING CALL RINGING 0:00", "00:00:20 NO ANSWER RINGING 0:20"}),
     I, NA, 17, 11, 2026, Hms(8, 7, 30), 0, -1, "", "7425", "0002", "", "", ""},
    {Block({"-------- 11/17/26 08:10:00 LINE = 0003 STN = 223", "00:00:00 OUTGOING CALL",
            "00:00:02 DIGITS DIALED 18005550199", "00:01:05 TRANSFERRED"}),
     O, emATRIniTR, 17, 11, 2026, Hms(8, 10, 0), 65, -1, "18005550199", "223", "0003", "", "", ""},
    {Block({"-------- 11/17/26 08:11:05 LINE = 0003 STN = 224", "00:00:00 FROM TRANSFER",
            "00:04:00 CALL RELEASED"}),
     TR, emATRFinTR, 17, 11, 2026, Hms(8, 11, 5), 240, -1, "", "224", "0003", "", "", ""},
    {Block({"-------- 11/17/26 08:15:00 LINE = 0004 STN = 221", "00:00:00 INCOMING CALL",
            "00:00:30 TRANSFERRED"}),
     I, emATRIniTR, 17, 11, 2026, Hms(8, 15, 0), 30, -1, "", "221", "0004", "", "", ""},
    {Block({"-------- 11/17/26 08:15:30 LINE = 0004 STN = 222", "00:00:00 FROM TRANSFER",
            "00:00:50 TRANSFERRED"}),
     TR, emATREnTR, 17, 11, 2026, Hms(8, 15, 30), 50, -1, "", "222", "0004", "", "", ""},
    {Block({"-------- 11/17/26 08:20:00 LINE = 0001 STN = 225", "00:00:00 OUTGOING CALL",
            "00:00:04 RESTRICTION PASSWORD 4321", "00:00:09 DIGITS DIALED 0114412345678",
            "00:10:00 CALL RELEASED"}),
     O, NA, 17, 11, 2026, Hms(8, 20, 0), 600, -1, "0114412345678", "225", "0001", "", "", "4321"},
    {Block({"-------- 11/17/26 08:30:00 LINE = 0005 STN = 226", "00:00:00 OUTGOING CALL",
            "00:00:02 DIGITS DIALED 5559876", "00:00:40 HOLD", "00:01:10 UNHOLD",
            "00:02:00 CALL RELEASED"}),
     O, NA, 17, 11, 2026, Hms(8, 30, 0), 120, -1, "5559876", "226", "0005", "", "", ""},
    {Block({"-------- 11/17/26 09:00:00 LINE = 0006 STN = 7425", "00:00:00 OUTGOING CALL",
            "00:00:02 DIGITS DIALED 5551111", "01:02:03 CALL RELEASED"}),
     O, NA, 17, 11, 2026, Hms(9, 0, 0), 3723, -1, "5551111", "7425", "0006", "", "", ""},
    {Block({"-------- 11/17/26 09:10:00 LINE = 0007 STN = 7426", "CALLING NUMBER 6135550111",
            "NAME SMITH JOHN", "BC = SPEECH", "00:00:00 INCOMING CALL RINGING 0:06",
            "00:00:45 CALL RELEASED"}),
     I, NA, 17, 11, 2026, Hms(9, 10, 0), 45, -1, "", "7426", "0007", "", "", ""},
    {Block({"SMDR REPORT 11/17/26", "00:00:00 OUTGOING CALL", "00:00:30 CALL RELEASED"}),
     X, NA, 18, 11, 2026, Hms(9, 5, 3), 30, -1, "", "", "", "", "", ""},
    {Block({"-------- 11/17/26 09:20:00 LINE = 0008 STN = 227"}),
     X, NA, 17, 11, 2026, Hms(9, 20, 0), -1, -1, "", "227", "0008", "", "", ""},
    {Block({"-------- 11/17/26 09:25:00 LINE = 0008 STN = 227", "00:01:00 CALL RELEASED"}),
     X, NA, 17, 11, 2026, Hms(9, 25, 0), 60, -1, "", "227", "0008", "", "", ""},
    {Block({"-------- 11/17/26 09:30:00 LINE = 0009 STN = 228", "00:00:00 OUTGOING CALL",
            "00:00:05 DIGITS DIALED 5552222!123", "00:00:55 CALL RELEASED"}),
     O, NA, 17, 11, 2026, Hms(9, 30, 0), 55, -1, "5552222!123", "228", "0009", "", "", ""},
    {Block({"-------- 11/17/26 09:40:00 LINE = 0010 STN = 21", "00:00:00 INCOMING CALL",
            "00:00:12 CALL RELEASED"}),
     I, NA, 17, 11, 2026, Hms(9, 40, 0), 12, -1, "", "21", "0010", "", "", ""},
    {Block({"-------- 11/17/26 09:45:00 LINE = 0011 STN = 1234567", "00:00:00 OUTGOING CALL",
            "00:00:02 DIGITS DIALED 411", "00:00:31 CALL RELEASED"}),
     O, NA, 17, 11, 2026, Hms(9, 45, 0), 31, -1, "411", "1234567", "0011", "", "", ""},
    {Block({"-------- 12/31/25 23:59:59 LINE = 0012 STN = 229", "00:00:00 OUTGOING CALL",
            "00:00:02 DIGITS DIALED 5553333", "00:00:07 CALL RELEASED"}),
     O, NA, 31, 12, 2025, Hms(23, 59, 59), 7, -1, "5553333", "229", "0012", "", "", ""},
    {Block({"-------- 11/17/26 10:00:00 LINE = 0123 STN = 7430", "00:00:00 OUTGOING CALL",
            "00:00:02 DIGITS DIALED 5554444", "00:05:00 CALL RELEASED"}),
     O, NA, 17, 11, 2026, Hms(10, 0, 0), 300, -1, "5554444", "7430", "0123", "", "", ""},
    {Block({"-------- 11/17/26 10:10:00 LINE = 0002 STN = 221",
            "00:00:00 INCOMING CALL RINGING 0:00", "00:00:30 NO ANSWER RINGING 0:30",
            "00:00:31 CALL RELEASED"}),
     I, NA, 17, 11, 2026, Hms(10, 10, 0), 0, -1, "", "221", "0002", "", "", ""},
    {Block({"-------- 11/17/26 10:20:00 LINE = 0003 STN = 230", "00:00:00 FROM TRANSFER",
            "00:00:01 OUTGOING CALL", "00:00:03 DIGITS DIALED 5555555", "00:03:30 CALL RELEASED"}),
     O, emATRFinTR, 17, 11, 2026, Hms(10, 20, 0), 210, -1, "5555555", "230", "0003", "", "", ""},
    {Block({"-------- 11/17/26 10:30:00 LINE = 0004 STN = 231", "00:00:00 INCOMING CALL",
            "00:00:10 ACCOUNT CODE 77", "00:01:40 CALL RELEASED"}),
     I, NA, 17, 11, 2026, Hms(10, 30, 0), 100, -1, "", "231", "0004", "", "", ""},
  };
  // clang-format on
  CheckAll(tr, rows);
  EXPECT_EQ(ReadFile(dir.Path("log.txt")), LogEntry(AUtf8(rows[11].record)) +
                                               LogEntry(AUtf8(rows[12].record)) +
                                               LogEntry(AUtf8(rows[13].record)));
}

// ---- case 10: Panasonic KX-TDA100/200, Pattern A (FORMATS.md) ----

std::shared_ptr<clsCfgConmut> KxTdaConfig() {
  auto cfg = MakeConfig(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100);
  SetConstant(*cfg, emDatoCteIdentEntrante, 27, u"<I>");
  SetConstant(*cfg, emDatoCteIdentSaliente, 53, u"    ");  // no ring time: outgoing
  SetConstant(*cfg, emDatoCteIdentEntranteInicioTransferida, 78, u"TR");
  SetConstant(*cfg, emDatoCteIdentSalienteInicioTransferida, 78, u"TR");
  SetConstant(*cfg, emDatoCteIdentNoContestada, 78, u"NA");
  SetConstant(*cfg, emDatoCteIdentificadorHorarioMatutinoFecha, 15, u"AM");
  cfg->CTEActivo(emDatoCteIdentInterExtensionEnTransferencia);
  cfg->Constante(u"<I>");  // the prefix stripped from dialled numbers; no position
  SetField(*cfg, emParamFechaMes, 1, 2);
  SetField(*cfg, emParamFechaDia, 4, 2);
  SetField(*cfg, emParamFechaAnio, 7, 2);
  SetField(*cfg, emParamFechaHoras, 10, 2);
  SetField(*cfg, emParamFechaMinutos, 13, 2);
  SetTexts(*cfg,
           {emParamExtensionEntrante, emParamExtensionSaliente,
            emParamExtensionEntranteInicioTransferida, emParamExtensionSalienteInicioTransferida,
            emParamCodigoCuenta},
           18, 5);
  SetTexts(*cfg,
           {emParamTroncalEntrante, emParamTroncalSaliente, emParamTroncalEntranteInicioTransferida,
            emParamTroncalSalienteInicioTransferida},
           24, 2);
  SetTexts(*cfg,
           {emParamTelefonoEntrante, emParamTelefonoSaliente,
            emParamTelefonoEntranteInicioTransferida, emParamTelefonoSalienteInicioTransferida},
           27, 25);
  SetField(*cfg, emParamRingMinutos, 53, 1);
  SetField(*cfg, emParamRingSegundos, 55, 2);
  SetField(*cfg, emParamDuracionHoras, 58, 2);
  SetField(*cfg, emParamDuracionMinutos, 61, 2);
  SetField(*cfg, emParamDuracionSegundos, 64, 2);
  return cfg;
}

std::u16string Tda(const std::string& date, const std::string& time, const std::string& ext,
                   const std::string& co, const std::string& dial, const std::string& ring,
                   const std::string& dur, const std::string& cd = "") {
  return Cols({{1, date},
               {10, time},
               {18, ext},
               {24, co},
               {27, dial},
               {53, ring},
               {58, dur},
               {67, ""},
               {78, cd}});
}

TEST(Part4_Samples, Case10PanasonicKxTdaRecords) {
  FixedClock clock(TestNow());
  TempDir dir;
  WriteFile(dir.Path("lista.txt"), "1234;201\r\n5678 ; 202\r\n0042;7425\r\n");
  clsTraductor tr;
  tr.Conmutador(KxTdaConfig());
  tr.ArchivoLlamadasError(dir.Path16("log.txt"));
  tr.ArchivoListaExtensionesKXTDA(dir.Path16("lista.txt"));
  const auto O = emTradSaliente;
  const auto I = emTradEntrante;
  const auto X = emTradNoIdentificada;
  const auto NA = emATRNoAtributo;
  const std::u16string header =
      u"  Date     Time    Ext CO        Dial Number        Ring Duration  Acc code  CD";
  const std::u16string rule(80, u'-');
  // clang-format off
  const std::vector<Expected> rows = {
    // no "AM" mark at column 15: the clock's hour 9 counts as 9 PM
    {header, X, NA, 18, 11, 2026, Hms(21, 5, 3), -1, -1, "", "", "", "", "", ""},
    {rule, X, NA, 18, 11, 2026, Hms(21, 5, 3), -1, -1, "", "", "", "", "", ""},
    {Tda("11/17/26", "09:15AM", "  201", "01", "0312345678", "", "00:01'23"),
     O, NA, 17, 11, 2026, Hms(9, 15, 3), 83, -1, "0312345678", "201", "01", "", "", ""},
    {Tda("11/17/26", "09:20AM", "  202", "02", "<I>0398765432", "0'12", "00:03'10"),
     I, NA, 17, 11, 2026, Hms(9, 20, 3), 190, 12, "0398765432", "202", "02", "", "", ""},
    {Tda("11/17/26", "12:05PM", "  203", "01", "5551234", "", "00:00'45"),
     O, NA, 17, 11, 2026, Hms(12, 5, 3), 45, -1, "5551234", "203", "01", "", "", ""},
    {Tda("11/17/26", "12:30AM", "  204", "03", "5559999", "", "00:02'00"),
     O, NA, 17, 11, 2026, Hms(0, 30, 3), 120, -1, "5559999", "204", "03", "", "", ""},
    {Tda("11/17/26", "01:45PM", "  201", "01", "0311112222", "", "00:00'09"),
     O, NA, 17, 11, 2026, Hms(13, 45, 3), 9, -1, "0311112222", "201", "01", "", "", ""},
    {Tda("11/17/26", "10:00AM", "*1234", "01", "0114412345678", "", "00:10'00"),
     O, NA, 17, 11, 2026, Hms(10, 0, 3), 600, -1, "0114412345678", "201", "01", "", "", "1234"},
    {Tda("11/17/26", "10:12AM", "*5678", "02", "0315550000", "", "00:00'30"),
     O, NA, 17, 11, 2026, Hms(10, 12, 3), 30, -1, "0315550000", "202", "02", "", "", "5678"},
    {Tda("11/17/26", "10:20AM", "*0042", "01", "5550042", "", "00:01'00"),
     O, NA, 17, 11, 2026, Hms(10, 20, 3), 60, -1, "5550042", "7425", "01", "", "", "0042"},
    {Tda("11/17/26", "10:30AM", "  205", "02", "<I>0311112222", "0'30", "00:00'00", "NA"),
     I, emATRNoContestada, 17, 11, 2026, Hms(10, 30, 3), 0, 30, "0311112222", "205", "02", "", "", ""},
    {Tda("11/17/26", "10:40AM", "  206", "01", "0317777777", "", "00:00'50", "TR"),
     O, emATRIniTR, 17, 11, 2026, Hms(10, 40, 3), 50, -1, "0317777777", "206", "01", "", "", ""},
    {Tda("11/17/26", "10:45AM", "  207", "03", "<I>0318888888", "0'05", "00:01'10", "TR"),
     I, emATRIniTR, 17, 11, 2026, Hms(10, 45, 3), 70, 5, "0318888888", "207", "03", "", "", ""},
    {Tda("**/**/**", "**:****", "  204", "01", "5550000", "", "00:00'30"),
     O, NA, 18, 11, 2026, Hms(21, 5, 3), 30, -1, "5550000", "204", "01", "", "", ""},
    {Tda("11/17/26", "11:00AM", "  208", "04", "0319999999", "", "01:02'03"),
     O, NA, 17, 11, 2026, Hms(11, 0, 3), 3723, -1, "0319999999", "208", "04", "", "", ""},
    {Tda("11/17/26", "11:10AM", " 1001", "01", "5551001", "", "00:00'20"),
     O, NA, 17, 11, 2026, Hms(11, 10, 3), 20, -1, "5551001", "1001", "01", "", "", ""},
    {Tda("11/17/26", "11:20AM", "  209", "00", "5551002", "", "00:00'21"),
     O, NA, 17, 11, 2026, Hms(11, 20, 3), 21, -1, "5551002", "209", "00", "", "", ""},
    {Tda("11/17/26", "11:30AM", "  210", "01", "9P0312345678", "", "00:00'22"),
     O, NA, 17, 11, 2026, Hms(11, 30, 3), 22, -1, "9P0312345678", "210", "01", "", "", ""},
    {Tda("11/30/26", "11:59PM", "  211", "02", "<I>0312223333", "1'02", "00:00'40"),
     I, NA, 30, 11, 2026, Hms(23, 59, 3), 40, 62, "0312223333", "211", "02", "", "", ""},
    {Tda("01/01/27", "12:00AM", "  212", "01", "5551003", "", "00:00'23"),
     O, NA, 1, 1, 2027, Hms(0, 0, 3), 23, -1, "5551003", "212", "01", "", "", ""},
    {Tda("11/17/26", "11:40AM", "  213", "02", "<I>0314445555", "0'08", "00:02'02", "AN"),
     I, NA, 17, 11, 2026, Hms(11, 40, 3), 122, 8, "0314445555", "213", "02", "", "", ""},
    {Tda("11/17/26", "11:50AM", "  214", "01", "5551004", "", "00:00'''"),
     X, NA, 17, 11, 2026, Hms(11, 50, 3), -1, -1, "", "", "", "", "", ""},
  };
  // clang-format on
  CheckAll(tr, rows);
  EXPECT_EQ(ReadFile(dir.Path("log.txt")),
            LogEntry(AUtf8(header)) + LogEntry(AUtf8(rule)) + LogEntry(AUtf8(rows[21].record)));
}

}  // namespace
}  // namespace velqua_test
