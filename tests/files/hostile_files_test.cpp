// Hostile configuration and profile files: garbage, counts promising more
// than the file holds, huge lines and key lists, unreadable files.
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "files/files_support.h"

namespace {

using namespace files_test;
using velqua_test::Budget;
using Clock = std::chrono::steady_clock;

class HostileFiles : public FileTest {};

TEST_F(HostileFiles, GarbageIsRefusedWith1505OrLoadedNeverAnythingElse) {
  int loaded = 0;
  for (uint32_t i = 0; i < 300; ++i) {
    std::string bytes = Garbage(i % 3 == 0 ? 786 : 660 + (i * 37) % 1024, i);
    if (i % 2 == 0) bytes.replace(0, 4, std::string("\x03\x00\x00\x00", 4));
    if (i % 3 == 0) bytes.replace(0, 2, std::string("\x02\x00", 2));
    clsCfgConmut c;
    try {
      c.Abrir(Put("garbage.cfg", bytes));
      ++loaded;
    } catch (const Error& e) {
      EXPECT_EQ(e.Number(), NumeroErrorObjeto(emErrorConfigAbrir));
    }
  }
  EXPECT_GT(loaded, 0);
  cfg.Abrir(Put("v2.cfg", std::string("\x02\x00\x00", 3) + std::string(783, ' ')));
  EXPECT_EQ(cfg.Version(), emVersion2_0);  // brand and model blank
  std::string header = PutLE(PutLE(Golden().substr(0, 660), 656, 32767, 2), 658, 32767, 2);
  const auto start = Clock::now();
  cfg.Abrir(Put("promise.cfg", header + Garbage(4000, 7)));
  EXPECT_LT(Clock::now() - start, Budget(2));
  EXPECT_EQ(listener.events.back(), "ConfiguracionCargada");
}

TEST_F(HostileFiles, UnreadableFilesAreRefused) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads a file of mode 000";
  const std::u16string cfgName = Put("locked.cfg", Golden());
  const std::u16string iniName = Put("locked.ini", Header());
  chmod(dir.Path("locked.cfg").c_str(), 0);
  chmod(dir.Path("locked.ini").c_str(), 0);
  EXPECT_VELQUA_ERROR(cfg.Abrir(cfgName), NumeroErrorObjeto(emErrorConfigAbrir),
                      u"clsConfigConmut.Abrir", kMsg1505 + u"\r\n Archivo :" + cfgName);
  ExpectImportFails(iniName, "La versión no es correcta.");
}

TEST_F(HostileFiles, HugeLinesAndKeyListsImportQuickly) {
  const std::string big(10 * 1024 * 1024, 'q');
  std::string text = big + "\r\n" + Header() + big + "=1\r\nComentarios=" + big + "\r\n[" + big +
                     "]\r\nMarca=X\r\n[Otra]\r\n";
  for (int k = 1; k <= 100000; ++k) text += "Clave" + std::to_string(k) + "=v\r\n";
  text += "[Datos]\r\nDato1=2,1,5,2,\r\n";
  auto start = Clock::now();
  cfg.Importar(Put("big.ini", text));
  EXPECT_LT(Clock::now() - start, Budget(20));
  EXPECT_EQ(cfg.Marca(), u"M");
  EXPECT_EQ(cfg.Comentarios(), std::u16string(250, u'q'));
  EXPECT_EQ(Dato(cfg, emParamFechaDia), "5,2,1");
  ExpectImportFails(Put("one.ini", big), "La versión no es correcta.");
  ExpectImportFails(Put("g.ini", Garbage(200000, 777)), "La versión no es correcta.");
  cfg.Importar(Put("h.ini", Header() + Garbage(200000, 777) + "\r\n[Datos]\r\nDato1=2,1,7,2\r\n"));
  EXPECT_EQ(Dato(cfg, emParamFechaDia), "7,2,1");
}

// The numbered keys are counted in 16 bits: 32766 import, 32767 overflow.
TEST_F(HostileFiles, The32767thNumberedKeyOverflows) {
  std::string text = Header() + "[Datos]\r\n";
  for (int k = 1; k <= 32766; ++k) text += "Dato" + std::to_string(k) + "=2,1,5,2,\r\n";
  auto start = Clock::now();
  cfg.Importar(Put("ok.ini", text));
  ExpectImportFails(Put("many.ini", text + "Dato32767=3,1,5,2,\r\n"),
                    "No hay un separador de llamadas definido.");
  EXPECT_LT(Clock::now() - start, Budget(30));
  EXPECT_EQ(Dato(cfg, emParamFechaMes), "5,2,1");  // kept: there is no undo
}

}  // namespace
