// Records of real switches translated end to end: a Meridian-style single-line
// layout (case 1), Norstar SMDR6 multi-line calls (case 4) and Panasonic
// KX-TDA lines with account codes (case 10). Every field of every record is
// checked, and each log holds exactly the records left unrecognised.
#include <iomanip>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;

// Everything read from the current record; a duration or ring of -1 and empty
// texts are left out.
std::string Read(clsTraductor& tr) {
  static const char* const kTypes[] = {"none", "in", "out", "ext", "trunk", "acct", "xfer"};
  static const char* const kAttrs[] = {"", "/start", "/in", "/end", "/unanswered"};
  const auto type = static_cast<size_t>(tr.TipoLlamadaDetectada());
  const auto attr = static_cast<size_t>(tr.Atributo());
  const int32_t time = tr.Hora();
  std::ostringstream out;
  out << (type < 7 ? kTypes[type] : "?") << (attr < 5 ? kAttrs[attr] : "/?") << std::setfill('0')
      << ' ' << tr.Anio() << '-' << std::setw(2) << tr.Mes() << '-' << std::setw(2) << tr.Dia()
      << ' ' << std::setw(2) << time / 3600 << ':' << std::setw(2) << time / 60 % 60 << ':'
      << std::setw(2) << time % 60;
  // clang-format off
  const std::pair<const char*, std::string> fields[] = {
      {"dur", std::to_string(tr.Duracion())}, {"ring", std::to_string(tr.Ring())},
      {"dial", AUtf8(tr.Marcacion())}, {"ext", AUtf8(tr.Extension())},
      {"trunk", AUtf8(tr.Troncal())}, {"to-ext", AUtf8(tr.ExtensionReceptor())},
      {"to-trunk", AUtf8(tr.TroncalReceptor())}, {"acct", AUtf8(tr.CodigoCuenta())}};
  // clang-format on
  for (const auto& [name, value] : fields) {
    if (!value.empty() && value != "-1") out << ' ' << name << '=' << value;
  }
  return out.str();
}

// Translates each record ("|" ends a line of a multi-line call) at 2026-11-18
// 09:05:03 and compares what is read; every unrecognised record but the empty
// one goes to the log.
void Translate(std::shared_ptr<clsCfgConmut> cfg,
               const std::vector<std::pair<std::string, std::string>>& samples,
               const std::string& list = "") {
  FixedClock clock(TestNow());
  TempDir dir;
  clsTraductor tr(clock.Env());
  tr.Conmutador(std::move(cfg));
  tr.ArchivoLlamadasError(dir.Path16("log.txt"));
  WriteFile(dir.Path("list.txt"), list);
  if (!list.empty()) tr.ArchivoListaExtensionesKXTDA(dir.Path16("list.txt"));
  std::string log;
  for (auto [record, read] : samples) {
    SCOPED_TRACE(record);
    for (size_t bar; (bar = record.find('|')) != std::string::npos;) record.replace(bar, 1, "\r\n");
    tr.LlamadaActual(U(record));
    EXPECT_EQ(Read(tr), read);
    if (read.rfind("none ", 0) == 0 && !record.empty()) log += LogEntry(record);
  }
  EXPECT_EQ(ReadFile(dir.Path("log.txt")), log);
}

// Data fields: keys (as stored in a configuration) at a column, so wide.
struct Fields {
  int pos, size;
  emTipoDato type;
  std::vector<int> keys;
};

void Define(clsCfgConmut& cfg, const std::vector<Fields>& table) {
  for (const Fields& f : table) {
    for (int key : f.keys) SetField(cfg, static_cast<emParamDato>(key), f.pos, f.size, f.type);
  }
}

constexpr emTipoDato N = emValorNumerico, T = emValorCadena;

// Column 1: N normal, S/E/X start, end, in transfer, A account code; 3-5 record
// number; 10-16 originating and 17-23 terminating ID (DN station or T trunk
// route); 25-29 MM/DD; 31-35 HH:MM; 37-44 duration; 46 on: the digits.
TEST(SwitchSamples, MeridianStyleSingleLineRecords) {
  auto cfg = MakeConfig(emCasoEstandar);
  const std::tuple<emParamDatoConstante, int, const char16_t*> marks[] = {
      {emDatoCteIdentEntrante, 10, u"T"},        {emDatoCteIdentEntranteAND, 17, u"DN"},
      {emDatoCteIdentSaliente, 10, u"DN"},       {emDatoCteIdentSalienteAND, 17, u"T"},
      {emDatoCteIdentInterExtension, 10, u"DN"}, {emDatoCteIdentInterExtensionAND, 17, u"DN"},
      {emDatoCteIdentInterTroncal, 10, u"T"},    {emDatoCteIdentInterTroncalAND, 17, u"T"},
      {emDatoCteIdentCodigoCuenta, 1, u"A"}};
  for (const auto& [key, pos, text] : marks) SetConstant(*cfg, key, pos, text);
  // Keys 16 to 23 alternate the start and the end of a transfer; 24 to 27: in transfer.
  for (int k = emDatoCteIdentEntranteInicioTransferida;
       k <= emDatoCteIdentInterTroncalEnTransferencia; ++k) {
    const bool in = k >= emDatoCteIdentEntranteEnTransferencia;
    SetConstant(*cfg, static_cast<emParamDatoConstante>(k), 1, in ? u"X" : k % 2 ? u"E" : u"S");
  }
  // Each text key comes with its start, end and in-transfer variants.
  // clang-format off
  Define(*cfg, {{25, 2, N, {emParamFechaMes}}, {28, 2, N, {emParamFechaDia}},
                {31, 2, N, {emParamFechaHoras}}, {34, 2, N, {emParamFechaMinutos}},
                {37, 2, N, {emParamDuracionHoras}}, {40, 2, N, {emParamDuracionMinutos}},
                {43, 2, N, {emParamDuracionSegundos}}, {46, 10, T, {emParamCodigoCuenta}},
                {46, 20, T, {18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 54, 55, 56, 57}},
                {12, 5, T, {33, 43, 45, 61, 34, 46, 48, 62}},      // outgoing, first station
                {18, 3, T, {32, 42, 44, 60, 66, 37, 51, 53, 65}},  // outgoing, second trunk
                {11, 3, T, {30, 38, 40, 58, 36, 50, 52, 64}},      // incoming, first trunk
                {19, 5, T, {31, 39, 41, 59, 35, 47, 49, 63}}});    // incoming, second station
  Translate(cfg, {
      {"N 001 00 DN7425 T052000 11/17 08:03 00:01:32 5551212",
       "out 2026-11-17 08:03:03 dur=92 dial=5551212 ext=7425 trunk=052"},
      {"N 002 00 T052001DN7431  11/17 08:10 00:05:10 6135550100",
       "in 2026-11-17 08:10:03 dur=310 dial=6135550100 ext=7431 trunk=052"},
      {"N 003 00 DN7425 DN7431  11/17 08:15 00:00:45 ",
       "ext 2026-11-17 08:15:03 dur=45 ext=7425 to-ext=7431"},
      {"N 004 00 T052002T053000 11/17 08:20 00:12:00 ",
       "trunk 2026-11-17 08:20:03 dur=720 trunk=052 to-trunk=053"},
      {"S 005 00 DN7425 T052003 11/17 08:31 00:00:50 5559876",
       "out/start 2026-11-17 08:31:03 dur=50 dial=5559876 ext=7425 trunk=052"},
      {"E 006 00 DN7440 T052003 11/17 08:32 00:03:05 5559876",
       "out/end 2026-11-17 08:32:03 dur=185 dial=5559876 ext=7440 trunk=052"},
      {"X 007 00 DN7425 T052004 11/17 08:40 00:00:20 5551234",
       "out/in 2026-11-17 08:40:03 dur=20 dial=5551234 ext=7425 trunk=052"},
      {"S 008 00 T052005DN7431  11/17 09:00 00:00:15 6135550111",
       "in/start 2026-11-17 09:00:03 dur=15 dial=6135550111 ext=7431 trunk=052"},
      {"E 009 00 T052005DN7432  11/17 09:01 00:04:44 6135550111",
       "in/end 2026-11-17 09:01:03 dur=284 dial=6135550111 ext=7432 trunk=052"},
      {"X 010 00 T052006DN7433  11/17 09:10 00:00:33 ",
       "in/in 2026-11-17 09:10:03 dur=33 ext=7433 trunk=052"},
      {"S 011 00 DN7425 DN7431  11/17 09:20 00:00:10 ",
       "ext/start 2026-11-17 09:20:03 dur=10 ext=7425 to-ext=7431"},
      {"E 012 00 DN7431 DN7425  11/17 09:21 00:02:00 ",
       "ext/end 2026-11-17 09:21:03 dur=120 ext=7431 to-ext=7425"},
      {"X 013 00 T052007T053001 11/17 09:30 00:07:07 ",
       "trunk/in 2026-11-17 09:30:03 dur=427 trunk=052 to-trunk=053"},
      {"A 014 00 DN7425 T052000 11/17 10:00 00:00:00 1234567",
       "acct 2026-11-17 10:00:03 dur=0 trunk=052 acct=1234567"},
      {"N 015 00 DN7425 T052000 11/17 10:05 **:**:** 5550000", "none 2026-11-17 10:05:03"},
      {"CDR REPORT PAGE", "none 2026-11-18 09:05:03"},
      {"", "none 2026-11-18 09:05:03"},
      {"N 018 00 DN7450 T054010 11/18 00:30 01:02:03 18005551000",
       "out 2026-11-18 00:30:03 dur=3723 dial=18005551000 ext=7450 trunk=054"},
      {"N 020 00 DN7425 T052000 12/31 07:00 00:00:59 9 5551212",
       "out 2026-12-31 07:00:03 dur=59 dial=9 5551212 ext=7425 trunk=052"},
      {"N 021 00 T052001DN7431  13/45 07:30 00:10:01 6135550100",
       "in 2026-11-18 07:30:03 dur=601 dial=6135550100 ext=7431 trunk=052"},
  });
  // clang-format on
}

TEST(SwitchSamples, NorstarMultiLineCalls) {
  auto cfg = std::make_shared<clsCfgConmut>();
  cfg->Abrir(ExampleFile("norstar/norstar.cfg"));  // the bundled layout
  // clang-format off
  Translate(cfg, {
      {"-------- 11/17/26 08:01:10 LINE = 0001 STN = 221|00:00:00 OUTGOING CALL|"
       "00:00:03 DIGITS DIALED 5551234|00:02:15 CALL RELEASED",
       "out 2026-11-17 08:01:10 dur=135 dial=5551234 ext=221 trunk=0001"},
      {"-------- 11/17/26 08:05:00 LINE = 0002 STN = 222|CALLING NUMBER 6135550100|"
       "00:00:00 INCOMING CALL RINGING 0:04|00:03:00 CALL RELEASED",
       "in 2026-11-17 08:05:00 dur=180 ext=222 trunk=0002"},
      {"-------- 11/17/26 08:07:30 LINE = 0002 STN = 7425|00:00:00 INCOMING CALL RINGING 0:00|"
       "00:00:20 NO ANSWER RINGING 0:20",
       "in 2026-11-17 08:07:30 dur=0 ext=7425 trunk=0002"},
      {"-------- 11/17/26 08:10:00 LINE = 0003 STN = 223|00:00:00 OUTGOING CALL|"
       "00:00:02 DIGITS DIALED 18005550199|00:01:05 TRANSFERRED",
       "out/start 2026-11-17 08:10:00 dur=65 dial=18005550199 ext=223 trunk=0003"},
      {"-------- 11/17/26 08:11:05 LINE = 0003 STN = 224|00:00:00 FROM TRANSFER|"
       "00:04:00 CALL RELEASED",
       "xfer/end 2026-11-17 08:11:05 dur=240 ext=224 trunk=0003"},
      {"-------- 11/17/26 08:15:00 LINE = 0004 STN = 221|00:00:00 INCOMING CALL|"
       "00:00:30 TRANSFERRED",
       "in/start 2026-11-17 08:15:00 dur=30 ext=221 trunk=0004"},
      {"-------- 11/17/26 08:15:30 LINE = 0004 STN = 222|00:00:00 FROM TRANSFER|"
       "00:00:50 TRANSFERRED",
       "xfer/in 2026-11-17 08:15:30 dur=50 ext=222 trunk=0004"},
      {"-------- 11/17/26 08:20:00 LINE = 0001 STN = 225|00:00:00 OUTGOING CALL|"
       "00:00:04 RESTRICTION PASSWORD 4321|00:00:09 DIGITS DIALED 0114412345678|"
       "00:10:00 CALL RELEASED",
       "out 2026-11-17 08:20:00 dur=600 dial=0114412345678 ext=225 trunk=0001 acct=4321"},
      {"-------- 11/17/26 09:00:00 LINE = 0006 STN = 7425|00:00:00 OUTGOING CALL|"
       "00:00:02 DIGITS DIALED 5551111|01:02:03 CALL RELEASED",
       "out 2026-11-17 09:00:00 dur=3723 dial=5551111 ext=7425 trunk=0006"},
      {"SMDR REPORT 11/17/26|00:00:00 OUTGOING CALL|00:00:30 CALL RELEASED",
       "none 2026-11-18 09:05:03 dur=30"},
      {"-------- 11/17/26 09:20:00 LINE = 0008 STN = 227",
       "none 2026-11-17 09:20:00 ext=227 trunk=0008"},
      {"-------- 11/17/26 09:25:00 LINE = 0008 STN = 227|00:01:00 CALL RELEASED",
       "none 2026-11-17 09:25:00 dur=60 ext=227 trunk=0008"},
      {"-------- 11/17/26 09:45:00 LINE = 0011 STN = 1234567|00:00:00 OUTGOING CALL|"
       "00:00:02 DIGITS DIALED 411|00:00:31 CALL RELEASED",
       "out 2026-11-17 09:45:00 dur=31 dial=411 ext=1234567 trunk=0011"},
      {"-------- 12/31/25 23:59:59 LINE = 0012 STN = 229|00:00:00 OUTGOING CALL|"
       "00:00:02 DIGITS DIALED 5553333|00:00:07 CALL RELEASED",
       "out 2025-12-31 23:59:59 dur=7 dial=5553333 ext=229 trunk=0012"},
      {"-------- 11/17/26 10:10:00 LINE = 0002 STN = 221|00:00:00 INCOMING CALL RINGING 0:00|"
       "00:00:30 NO ANSWER RINGING 0:30|00:00:31 CALL RELEASED",
       "in 2026-11-17 10:10:00 dur=0 ext=221 trunk=0002"},
      {"-------- 11/17/26 10:20:00 LINE = 0003 STN = 230|00:00:00 FROM TRANSFER|"
       "00:00:01 OUTGOING CALL|00:00:03 DIGITS DIALED 5555555|00:03:30 CALL RELEASED",
       "out/end 2026-11-17 10:20:00 dur=210 dial=5555555 ext=230 trunk=0003"},
      {"-------- 11/17/26 10:30:00 LINE = 0004 STN = 231|00:00:00 INCOMING CALL|"
       "00:00:10 ACCOUNT CODE 77|00:01:40 CALL RELEASED",
       "in 2026-11-17 10:30:00 dur=100 ext=231 trunk=0004"},
  });
  // clang-format on
}

TEST(SwitchSamples, PanasonicKxTdaLinesWithAccountCodes) {
  auto cfg = MakeConfig(emCasoEstandarExtensionCodigoCuenta_KXTDA200_KXTDA100);
  SetConstant(*cfg, emDatoCteIdentEntrante, 27, u"<I>");
  SetConstant(*cfg, emDatoCteIdentSaliente, 53, u"    ");  // no ring time: outgoing
  SetConstant(*cfg, emDatoCteIdentEntranteInicioTransferida, 78, u"TR");
  SetConstant(*cfg, emDatoCteIdentSalienteInicioTransferida, 78, u"TR");
  SetConstant(*cfg, emDatoCteIdentNoContestada, 78, u"NA");
  SetConstant(*cfg, emDatoCteIdentificadorHorarioMatutinoFecha, 15, u"AM");
  cfg->CTEActivo(emDatoCteIdentInterExtensionEnTransferencia);
  cfg->Constante(u"<I>");  // the prefix stripped from dialled numbers; no position
  // clang-format off
  Define(*cfg, {{1, 2, N, {emParamFechaMes}}, {4, 2, N, {emParamFechaDia}},
                {7, 2, N, {emParamFechaAnio}}, {10, 2, N, {emParamFechaHoras}},
                {13, 2, N, {emParamFechaMinutos}}, {53, 1, N, {emParamRingMinutos}},
                {55, 2, N, {emParamRingSegundos}}, {58, 2, N, {emParamDuracionHoras}},
                {61, 2, N, {emParamDuracionMinutos}}, {64, 2, N, {emParamDuracionSegundos}},
                {18, 5, T, {31, 33, 39, 43, emParamCodigoCuenta}},  // extensions, account code
                {24, 2, T, {30, 32, 38, 42}},                       // trunks
                {27, 25, T, {18, 19, 22, 24}}});                    // numbers
  // The header has no "AM" at column 15: the clock's 9 o'clock reads as 9 PM.
  Translate(cfg, {
      {"  Date     Time    Ext CO        Dial Number        Ring Duration  Acc code  CD",
       "none 2026-11-18 21:05:03"},
      {"--------------------------------------------------------------------------------",
       "none 2026-11-18 21:05:03"},
      {"11/17/26 09:15AM   201 01 0312345678                     00:01'23            ",
       "out 2026-11-17 09:15:03 dur=83 dial=0312345678 ext=201 trunk=01"},
      {"11/17/26 09:20AM   202 02 <I>0398765432             0'12 00:03'10            ",
       "in 2026-11-17 09:20:03 dur=190 ring=12 dial=0398765432 ext=202 trunk=02"},
      {"11/17/26 12:05PM   203 01 5551234                        00:00'45            ",
       "out 2026-11-17 12:05:03 dur=45 dial=5551234 ext=203 trunk=01"},
      {"11/17/26 12:30AM   204 03 5559999                        00:02'00            ",
       "out 2026-11-17 00:30:03 dur=120 dial=5559999 ext=204 trunk=03"},
      {"11/17/26 01:45PM   201 01 0311112222                     00:00'09            ",
       "out 2026-11-17 13:45:03 dur=9 dial=0311112222 ext=201 trunk=01"},
      {"11/17/26 10:00AM *1234 01 0114412345678                  00:10'00            ",
       "out 2026-11-17 10:00:03 dur=600 dial=0114412345678 ext=201 trunk=01 acct=1234"},
      {"11/17/26 10:12AM *5678 02 0315550000                     00:00'30            ",
       "out 2026-11-17 10:12:03 dur=30 dial=0315550000 ext=202 trunk=02 acct=5678"},
      {"11/17/26 10:20AM *0042 01 5550042                        00:01'00            ",
       "out 2026-11-17 10:20:03 dur=60 dial=5550042 ext=7425 trunk=01 acct=0042"},
      {"11/17/26 10:30AM   205 02 <I>0311112222             0'30 00:00'00            NA",
       "in/unanswered 2026-11-17 10:30:03 dur=0 ring=30 dial=0311112222 ext=205 trunk=02"},
      {"11/17/26 10:40AM   206 01 0317777777                     00:00'50            TR",
       "out/start 2026-11-17 10:40:03 dur=50 dial=0317777777 ext=206 trunk=01"},
      {"11/17/26 10:45AM   207 03 <I>0318888888             0'05 00:01'10            TR",
       "in/start 2026-11-17 10:45:03 dur=70 ring=5 dial=0318888888 ext=207 trunk=03"},
      {"**/**/** **:****   204 01 5550000                        00:00'30            ",
       "out 2026-11-18 21:05:03 dur=30 dial=5550000 ext=204 trunk=01"},
      {"11/17/26 11:00AM   208 04 0319999999                     01:02'03            ",
       "out 2026-11-17 11:00:03 dur=3723 dial=0319999999 ext=208 trunk=04"},
      {"11/30/26 11:59PM   211 02 <I>0312223333             1'02 00:00'40            ",
       "in 2026-11-30 23:59:03 dur=40 ring=62 dial=0312223333 ext=211 trunk=02"},
      {"11/17/26 11:40AM   213 02 <I>0314445555             0'08 00:02'02            AN",
       "in 2026-11-17 11:40:03 dur=122 ring=8 dial=0314445555 ext=213 trunk=02"},
      {"11/17/26 11:50AM   214 01 5551004                        00:00'''            ",
       "none 2026-11-17 11:50:03"},
  }, "1234;201\r\n5678 ; 202\r\n0042;7425\r\n");
  // clang-format on
}

}  // namespace
}  // namespace velqua_test
