// The two classes through the C interface: errors as numbers with their
// source and Spanish description, texts in and out as UTF-8, notifications
// as callbacks, the translator's fields.
#include <algorithm>
#include <functional>
#include <thread>
#include <vector>

#include "c_test_support.h"
#include "velqua/carga_config.h"
#include "velqua/texto.h"

namespace velqua_c_test {
namespace {

const char kTipos[] = "No coinciden los tipos";
const char kObjeto[] = "Variable de objeto o bloque With no establecido";

TEST(CErrors, ArriveWithNumberSourceAndSpanishDescription) {
  Cfg cfg = NewCfg();
  Trad trad = NewTrad();
  Trad other = NewTrad();
  const std::string missing = TempPath("missing.cfg");
  const std::string missing_json = TempPath("missing.json");
  int32_t value = 0;
  int16_t day = 0;
  char* text = nullptr;
  struct Case {
    const char* what;
    std::function<int32_t()> call;
    LastError expected;
  };
  const Case cases[] = {
      {"a translator as the configuration",
       [&] { return velqua_trad_conmutador_set(trad.get(), other.get()); },
       {13, "Velqua", kTipos}},
      {"a success clears the last error",
       [&] { return velqua_cfg_caso_get(cfg.get(), &value); },
       {0, "", ""}},
      {"a field of an unbound translator",
       [&] { return velqua_trad_dia_get(trad.get(), &day); },
       {91, "Velqua", kObjeto}},
      {"no configuration handle",
       [&] { return velqua_cfg_marca_get(nullptr, &text); },
       {91, "Velqua", kObjeto}},
      {"a translator handle to a configuration function",
       [&] { return velqua_cfg_caso_get(reinterpret_cast<const velqua_cfg*>(trad.get()), &value); },
       {13, "Velqua", kTipos}},
      {"a missing file",
       [&] { return velqua_cfg_abrir(cfg.get(), missing.c_str()); },
       {-2147220003, "clsConfigConmut.Abrir",
        "No es posible encontrar el archivo deseado.\r\n Archivo :" + missing}},
      {"DB25 pin 1",
       [&] { return velqua_cfg_activa_pin(cfg.get(), velqua::emPuertoDB25, 1, 2); },
       {VELQUA_ERROR_PIN_DB25, "clsConfig.EstableceEstadoPin",
        "No se permite conectar el PIN #1 del puerto DB25."}},
      {"no result pointer",
       [&] { return velqua_cfg_caso_get(cfg.get(), nullptr); },
       {5, "Velqua", "Argumento o llamada a procedimiento no válida"}},
      {"a configuration the road cannot read",
       [&] {
         velqua_cfg* loaded = nullptr;
         return velqua_cfg_load(missing_json.c_str(), &loaded);
       },
       {5, "Velqua", "configuration '" + missing_json + "': No such file or directory"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(c.call(), c.expected.number);
    EXPECT_EQ(ReadLastError(), c.expected);
  }
}

// A bundled switch's name is a configuration wherever one is loaded: the C
// interface and C++ hosts read the same configuration the program reads.
TEST(CLoad, ABundledNameOrAFileByItsExtension) {
  struct Case {
    const char* what;
    std::string name;
    const char* brand;  // nullptr: refused with error 5
    std::string error;
  };
  const Case cases[] = {
      {"a bundled name", "hicom", "Siemens", ""},
      {"the JSON form by its path", Example("kx-tda/kx-tda.json"), "Panasonic", ""},
      {"the library's own file", Example("norstar/norstar.cfg"), "Nortel", ""},
      {"a name no bundled switch has", "no-such-pbx", nullptr,
       "configuration 'no-such-pbx': no such file, nor a bundled switch (velqua switches lists "
       "them)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    velqua_cfg* loaded = nullptr;
    const int32_t status = velqua_cfg_load(c.name.c_str(), &loaded);
    Cfg cfg(loaded);
    std::shared_ptr<velqua::clsCfgConmut> cpp;
    LastError thrown{0, "", ""};
    try {
      cpp = velqua::CargaConfiguracion(velqua::DesdeUtf8(c.name));
    } catch (const velqua::Error& e) {
      thrown = {e.Number(), velqua::AUtf8(e.Source()), velqua::AUtf8(e.Description())};
    }
    if (c.brand == nullptr) {
      EXPECT_EQ(status, 5);
      EXPECT_EQ(ReadLastError(), (LastError{5, "Velqua", c.error}));
      EXPECT_EQ(thrown, (LastError{5, "Velqua", c.error}));
      continue;
    }
    ASSERT_EQ(status, 0);
    char* brand = nullptr;
    ASSERT_EQ(velqua_cfg_marca_get(cfg.get(), &brand), 0);
    EXPECT_EQ(Take(brand), c.brand);
    ASSERT_NE(cpp, nullptr);
    EXPECT_EQ(velqua::AUtf8(cpp->Marca()), c.brand);
    EXPECT_FALSE(cpp->Modificado());
  }
}

TEST(CErrors, AFailedBindingLeavesTheTranslatorUnbound) {
  Cfg cfg = NewCfg(Example("kx-tda/kx-tda.cfg"));
  Trad trad = NewTrad();
  Trad other = NewTrad();
  int16_t day = 0;
  ASSERT_EQ(velqua_trad_conmutador_set(trad.get(), cfg.get()), 0);
  ASSERT_EQ(velqua_trad_llamada_actual_set(trad.get(), "01/19/26 08:07AM   202 01 0312598877"), 0);
  ASSERT_EQ(velqua_trad_dia_get(trad.get(), &day), 0);
  EXPECT_EQ(velqua_trad_conmutador_set(trad.get(), other.get()), 13);
  EXPECT_EQ(velqua_trad_dia_get(trad.get(), &day), 91);
  EXPECT_EQ(velqua_trad_conmutador_set(trad.get(), cfg.get()), 0);
  EXPECT_EQ(velqua_trad_conmutador_set(trad.get(), nullptr), 0);  // NULL unbinds
  EXPECT_EQ(velqua_trad_dia_get(trad.get(), &day), 91);
}

TEST(CErrors, TheLastErrorBelongsToItsThread) {
  int32_t caso = 0;
  EXPECT_EQ(velqua_cfg_caso_get(nullptr, &caso), 91);
  LastError seen{-1, "", ""};
  std::thread other([&] {
    seen = ReadLastError();
    velqua_cfg_caso_get(nullptr, nullptr);
  });
  other.join();
  EXPECT_EQ(seen, (LastError{0, "", ""}));
  EXPECT_EQ(ReadLastError(), (LastError{91, "Velqua", kObjeto}));
}

TEST(CTexts, Utf8InAndOut) {
  Cfg cfg = NewCfg();
  struct Case {
    const char* in;
    std::string out;
  } cases[] = {
      {"Teléfonos Ñandú €", "Teléfonos Ñandú €"},
      {nullptr, ""},
      {"a\xff", "a\xEF\xBF\xBD"},  // malformed UTF-8 becomes U+FFFD
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.out);
    char* brand = nullptr;
    ASSERT_EQ(velqua_cfg_marca_set(cfg.get(), c.in), 0);
    ASSERT_EQ(velqua_cfg_marca_get(cfg.get(), &brand), 0);
    EXPECT_EQ(Take(brand), c.out);
  }
  char* list = nullptr;
  ASSERT_EQ(velqua_cfg_separador_set(cfg.get(), "\r\n"), 0);
  ASSERT_EQ(velqua_cfg_lista_separador_get(cfg.get(), &list), 0);
  EXPECT_EQ(Take(list), "13,10,0,0,0,0,0,0,0,0,");
}

// Notifications seen by one registration: its tag and the number.
struct Seen {
  std::vector<std::string>* log;
  std::string tag;
  velqua_cfg* remove_from = nullptr;  // removes `remove` on its first call
  Seen* remove = nullptr;
};

void Record(void* user, int32_t notification) {
  Seen* seen = static_cast<Seen*>(user);
  seen->log->push_back(seen->tag + std::to_string(notification));
  if (seen->remove_from != nullptr) {
    velqua_cfg_quita_oyente(seen->remove_from, Record, seen->remove);
    seen->remove_from = nullptr;
  }
}

TEST(CNotifications, CallbacksInOrderWithTheirUserPointer) {
  Cfg cfg = NewCfg();
  std::vector<std::string> log;
  Seen a{&log, "a"}, b{&log, "b"};
  ASSERT_EQ(velqua_cfg_agrega_oyente(cfg.get(), Record, &a), 0);
  ASSERT_EQ(velqua_cfg_agrega_oyente(cfg.get(), Record, &b), 0);
  ASSERT_EQ(velqua_cfg_agrega_oyente(cfg.get(), Record, &a), 0);
  ASSERT_EQ(velqua_cfg_agrega_oyente(cfg.get(), nullptr, &a), 0);  // ignored
  struct Case {
    const char* what;
    std::function<int32_t()> change;
    std::vector<std::string> expected;
  } cases[] = {
      {"brand",
       [&] { return velqua_cfg_marca_set(cfg.get(), "Panasonic"); },
       {"a1", "b1", "a1", "a3", "b3", "a3"}},
      {"the same brand", [&] { return velqua_cfg_marca_set(cfg.get(), "Panasonic"); }, {}},
      {"one registration of a removed",
       [&] {
         velqua_cfg_quita_oyente(cfg.get(), Record, &a);
         velqua_cfg_quita_oyente(cfg.get(), Record, &log);  // unknown: ignored
         return velqua_cfg_caso_set(cfg.get(), velqua::emCasoNortelNorstar0x32SMDR6);
       },
       {"b3", "a3"}},
      {"reset",
       [&] { return velqua_cfg_iniciar(cfg.get()); },
       {"b1", "a1", "b3", "a3", "b2", "a2"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    log.clear();
    ASSERT_EQ(c.change(), 0);
    EXPECT_EQ(log, c.expected);
  }
  log.clear();  // a load changes much, and says it is loaded once, at the end
  ASSERT_EQ(velqua_cfg_abrir(cfg.get(), Example("hicom/hicom.cfg").c_str()), 0);
  ASSERT_GE(log.size(), 2u);
  EXPECT_EQ(log.back(), "a2");
  EXPECT_EQ(std::count(log.begin(), log.end(), "b2"), 1);
}

TEST(CNotifications, AListenerRemovedWhileNotifyingIsNotCalledAgain) {
  Cfg cfg = NewCfg();
  std::vector<std::string> log;
  Seen b{&log, "b"};
  Seen a{&log, "a", cfg.get(), &b};  // removes b at its first call
  ASSERT_EQ(velqua_cfg_agrega_oyente(cfg.get(), Record, &a), 0);
  ASSERT_EQ(velqua_cfg_agrega_oyente(cfg.get(), Record, &b), 0);
  ASSERT_EQ(velqua_cfg_comentarios_set(cfg.get(), "x"), 0);
  ASSERT_EQ(velqua_cfg_comentarios_set(cfg.get(), "y"), 0);
  EXPECT_EQ(log, (std::vector<std::string>{"a3", "a3"}));
  a.remove_from = cfg.get();
  a.remove = &a;  // removes itself
  ASSERT_EQ(velqua_cfg_comentarios_set(cfg.get(), "z"), 0);
  ASSERT_EQ(velqua_cfg_comentarios_set(cfg.get(), "w"), 0);
  EXPECT_EQ(log.size(), 3u);
}

TEST(CTranslator, EveryFieldOfAKxTdaRecord) {
  Cfg cfg = NewCfg(Example("kx-tda/kx-tda.cfg"));
  Trad trad = NewTrad();
  ASSERT_EQ(velqua_trad_conmutador_set(trad.get(), cfg.get()), 0);
  const std::string list = Example("kx-tda/extensions.txt");
  ASSERT_EQ(velqua_trad_archivo_lista_extensiones_kxtda_set(trad.get(), list.c_str()), 0);
  struct Case {
    const char* line;
    std::string expected;  // type attribute day month year minutes duration ring | texts
  } cases[] = {
      // clang-format off
      {"01/19/26 08:02AM   201 01 <I>0312345678             0'05 00:01'23", "1 0 19 1 2026 482 83 5 |0312345678|201|01|||"},
      {"01/19/26 08:31AM *1234 02 00441632960123                 00:12'07", "2 0 19 1 2026 511 727 -1 |00441632960123|201|02|||1234"},
      {"01/20/26 12:04AM   210 01 <I>0312000111             0'07 00:01'05            NA", "1 4 20 1 2026 4 65 7 |0312000111|210|01|||"},
      // clang-format on
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    ASSERT_EQ(velqua_trad_llamada_actual_set(trad.get(), c.line), 0);
    int32_t type, attribute, time, duration, ring;
    int16_t day, month, year;
    char* texts[6] = {};
    ASSERT_EQ(velqua_trad_tipo_llamada_detectada_get(trad.get(), &type) |
                  velqua_trad_atributo_get(trad.get(), &attribute) |
                  velqua_trad_dia_get(trad.get(), &day) | velqua_trad_mes_get(trad.get(), &month) |
                  velqua_trad_anio_get(trad.get(), &year) |
                  velqua_trad_hora_get(trad.get(), &time) |
                  velqua_trad_duracion_get(trad.get(), &duration) |
                  velqua_trad_ring_get(trad.get(), &ring) |
                  velqua_trad_marcacion_get(trad.get(), &texts[0]) |
                  velqua_trad_extension_get(trad.get(), &texts[1]) |
                  velqua_trad_troncal_get(trad.get(), &texts[2]) |
                  velqua_trad_extension_receptor_get(trad.get(), &texts[3]) |
                  velqua_trad_troncal_receptor_get(trad.get(), &texts[4]) |
                  velqua_trad_codigo_cuenta_get(trad.get(), &texts[5]),
              0);
    std::string got = std::to_string(type) + " " + std::to_string(attribute) + " " +
                      std::to_string(day) + " " + std::to_string(month) + " " +
                      std::to_string(year) + " " + std::to_string(time / 60) + " " +
                      std::to_string(duration) + " " + std::to_string(ring) + " ";
    for (char* text : texts) got += "|" + Take(text);
    EXPECT_EQ(got, c.expected);
  }
  char* line = nullptr;
  bool has = false;
  ASSERT_EQ(velqua_trad_llamada_actual_get(trad.get(), &line), 0);
  EXPECT_EQ(Take(line), cases[2].line);
  ASSERT_EQ(velqua_trad_hay_constante_llamada(trad.get(), velqua::emDatoCteIdentNoContestada, &has),
            0);
  EXPECT_TRUE(has);
}

}  // namespace
}  // namespace velqua_c_test
