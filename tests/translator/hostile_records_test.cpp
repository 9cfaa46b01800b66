// Hostile input for the translator: lines from empty to a million characters,
// positions and sizes at the edges of a byte, odd separators, Norstar buffers
// past 32,767 characters, and log and list files that are missing, vanish,
// block or never end.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "translator/translator_support.h"

namespace velqua_test {
namespace {

using namespace velqua;
namespace fs = std::filesystem;
constexpr int32_t kOverflow = 6;

// Runs `check` in a child process that an alarm ends after 5 seconds: an open
// that blocks fails the test instead of hanging the suite.
// clang-format off
#define EXPECT_WITHIN_5S(check) \
  EXPECT_EXIT({ alarm(5); std::exit((check) ? 0 : 1); }, ::testing::ExitedWithCode(0), "")
// clang-format on

class HostileRecords : public ::testing::Test {
 protected:
  FixedClock clock_{TestNow()};
  TempDir dir_;
  clsTraductor tr_{clock_.Env()};
};

TEST_F(HostileRecords, LinesFromEmptyToAMillionCharacters) {
  auto cfg = MakeConfig(emCasoEstandar);
  SetText(*cfg, emParamTelefonoSaliente, 240, 8);
  SetField(*cfg, emParamDuracionMinutos, 249, 2);
  SetField(*cfg, emParamDuracionSegundos, 252, 2);
  SetConstant(*cfg, emDatoCteIdentSaliente, 254, u"S");  // 254 + 1: the last column a mark reaches
  tr_.Conmutador(cfg);
  tr_.ArchivoLlamadasError(dir_.Path16("log.txt"));
  for (size_t length : {0u, 1u, 255u, 256u, 32767u, 32768u, 1000000u}) {
    SCOPED_TRACE(length);
    std::u16string line(length, u'7');
    if (length >= 254) line.replace(239, 15, u"5551234 702730S");
    const auto start = std::chrono::steady_clock::now();
    tr_.LlamadaActual(line);
    const bool out = length >= 254;
    EXPECT_EQ(tr_.TipoLlamadaDetectada(), out ? emTradSaliente : emTradNoIdentificada);
    EXPECT_EQ(tr_.Duracion(), out ? 150 : -1);
    EXPECT_EQ(tr_.Marcacion(), out ? u"5551234" : u"");
    EXPECT_EQ(tr_.Dia(), 18);  // no day field: today
    EXPECT_EQ(tr_.LlamadaActual().size(), length);
    EXPECT_LT(std::chrono::steady_clock::now() - start, Budget(5));
  }
  // Only the one-character line is logged: an empty line never is.
  EXPECT_EQ(ReadFile(dir_.Path("log.txt")), LogEntry("7"));
}

// Separators that are empty, longer than the buffer, repeated or overlapping
// themselves: the position after the line found (0: none); case 4 reads the
// buffer back whole.
TEST_F(HostileRecords, OddSeparatorsCutTheBufferSafely) {
  struct Row {
    const char16_t *separator, *buffer, *key;
    int16_t found;
  };
  const Row rows[] = {
      {u"<<<<<<<<<<", u"A", u"a", 12}, {u"<<<<<<<<<<", u"A", u"", 12},
      {u"<<<<<<<<<<", u"", u"", 0},    {u"|", u"||||A||B||||", u"b", 10},
      {u"|", u"||||", u"", 0},         {u"||", u"a|||b", u"B", 8},  // the lines a and |b
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(AUtf8(r.separator) + " " + AUtf8(r.buffer) + " " + AUtf8(r.key));
    tr_.Conmutador(MakeConfig(emCasoNortelNorstar0x32SMDR6, r.separator));
    tr_.BufferMultiplesLineas(r.buffer);
    EXPECT_EQ(tr_.BuscaLinea(r.key), r.found);
    EXPECT_EQ(tr_.HayLlamada(), r.found != 0);  // the line found is current
    EXPECT_EQ(tr_.LlamadaActual(), r.buffer);
  }
  tr_.Conmutador(MakeConfig(emCasoNortelNorstar0x32SMDR6, u""));
  tr_.LlamadaActual(u"-------- 1|00:00:05 CALL RELEASED|OUTGOING CALL");
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), emTradNoIdentificada);  // one line: nothing after
}

TEST_F(HostileRecords, NorstarBufferPast32767CharactersOverflows) {
  auto cfg = MakeConfig(emCasoNortelNorstar0x32SMDR6, u"|");
  SetField(*cfg, emParamDuracionMinutos, 4, 2);
  SetField(*cfg, emParamDuracionSegundos, 7, 2);
  tr_.Conmutador(cfg);
  const auto call = [](size_t filler) {
    std::u16string c = u"-------- 02/03/26 08:01:12 LINE = 0003 STN = 7425|00:00:00 OUTGOING CALL";
    for (size_t i = 0; i < filler; ++i) c += u"|         NAME SMITH JOHN      ";
    return c + u"|00:03:47 CALL RELEASED";
  };
  ASSERT_LT(call(1000).size(), 32700u);
  tr_.LlamadaActual(call(1000));
  EXPECT_EQ(tr_.TipoLlamadaDetectada(), emTradSaliente);
  EXPECT_EQ(tr_.Duracion(), 227);
  EXPECT_VELQUA_ERROR_NUMBER(tr_.LlamadaActual(call(1100)), kOverflow);  // about 34,000
  tr_.BufferMultiplesLineas(std::u16string(1000000, u'x'));
  EXPECT_VELQUA_ERROR_NUMBER(tr_.BuscaLinea(u"x"), kOverflow);
}

std::vector<fs::path> Tree(const std::string& dir) {
  std::vector<fs::path> paths(fs::recursive_directory_iterator(dir), {});
  std::sort(paths.begin(), paths.end());
  return paths;
}

// A log that cannot be written loses the entry: no error, nothing created,
// never a wait for a reader.
TEST_F(HostileRecords, UnwritableLogLosesTheEntry) {
  fs::create_directory(dir_.Path("logs"));
  tr_.Conmutador(MakeConfig(emCasoEstandar));
  tr_.ArchivoLlamadasError(dir_.Path16("logs/log.txt"));
  tr_.LlamadaActual(u"123");
  EXPECT_EQ(ReadFile(dir_.Path("logs/log.txt")), LogEntry("123"));
  fs::remove_all(dir_.Path("logs"));
  fs::create_directory(dir_.Path("dir.txt"));
  ASSERT_EQ(mkfifo(dir_.Path("log.fifo").c_str(), 0600), 0);
  for (const char* log : {"logs/log.txt", "dir.txt", "log.fifo", "/dev/null"}) {
    SCOPED_TRACE(log);
    tr_.ArchivoLlamadasError(log[0] == '/' ? U(log) : dir_.Path16(log));
    const auto before = Tree(dir_.dir());
    EXPECT_WITHIN_5S((tr_.LlamadaActual(u"123"), Tree(dir_.dir()) == before));
  }
}

// The list is read afresh at every lookup, and only when it is a regular file.
TEST_F(HostileRecords, ExtensionListThatVanishesBlocksOrNeverEnds) {
  const auto cfg = MakeConfig(emCasoEstandar);
  SetKxTdaFields(*cfg);
  tr_.Conmutador(cfg);
  tr_.LlamadaActual(u"O *1234   01:05");
  ASSERT_EQ(tr_.TipoLlamadaDetectada(), emTradSaliente);
  const std::string list = dir_.Path("list.txt");
  const std::string fifo = dir_.Path("list.fifo");
  struct Row {
    const char* what;
    std::function<void()> make;
    std::string path;
    std::u16string ext;  // empty: unlisted
  } rows[] = {
      {"list", [&] { WriteFile(list, "1234;201\r\n"); }, list, u"201"},
      {"deleted", [&] { fs::remove(list); }, list, u""},
      {"back", [&] { WriteFile(list, "1234;202\r\n"); }, list, u"202"},
      {"directory", [&] { fs::remove(list), void(fs::create_directory(list)); }, list, u""},
      {"fifo", [&] { ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0); }, fifo, u""},
      {"endless device", [] {}, "/dev/zero", u""},
  };
  std::string set;
  for (const Row& r : rows) {
    SCOPED_TRACE(r.what);
    r.make();
    if (r.path != set) tr_.ArchivoListaExtensionesKXTDA(U(set = r.path));
    if (!r.ext.empty()) {
      EXPECT_EQ(tr_.Extension(), r.ext);
    } else {
      EXPECT_WITHIN_5S(IsRandomExtension(tr_.Extension()));
    }
  }
}

}  // namespace
}  // namespace velqua_test
