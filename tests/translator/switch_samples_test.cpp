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
  // clang-format on
  Translate(cfg, ReadCases("translator/meridian.txt"));
}

TEST(SwitchSamples, NorstarMultiLineCalls) {
  auto cfg = std::make_shared<clsCfgConmut>();
  cfg->Abrir(ExampleFile("norstar/norstar.cfg"));  // the bundled layout
  Translate(cfg, ReadCases("translator/norstar.txt"));
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
  // clang-format on
  // The header has no "AM" at column 15: the clock's 9 o'clock reads as 9 PM.
  Translate(cfg, ReadCases("translator/kx-tda.txt"), "1234;201\r\n5678 ; 202\r\n0042;7425\r\n");
}

}  // namespace
}  // namespace velqua_test
