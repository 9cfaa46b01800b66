// How file errors reach the caller: the message and object error number of
// each code, carried by velqua::Error.
#include <string>

#include "files/errores_archivo.h"
#include "files/files_support.h"

namespace {

using namespace files_test;

TEST(FileErrors, EachCodeHasItsMessageAndNumber) {
  const struct {
    int32_t code;
    uint32_t number;
    std::u16string message;
  } rows[] = {
      {1500, 0x800405DCu,
       U("No es posible acceder al archivo o el nombre del archivo no es válido.")},
      {1501, 0x800405DDu, kMsg1501},
      {1502, 0x800405DEu, kMsg1502},
      {1503, 0x800405DFu, kMsg1503},
      {1504, 0x800405E0u, kMsg1504},
      {1505, 0x800405E1u, kMsg1505},
      {1506, 0x800405E2u, u"Error desconocido."},
      {0, 0x80040000u, u"Error desconocido."},
      {1499, 0x800405DBu, u"Error desconocido."},
      {1205, 0x800404B5u, u"Error desconocido."},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.code);
    EXPECT_EQ(archivos::MensajeErrorConfig(row.code), row.message);
    EXPECT_EQ(NumeroErrorObjeto(row.code), static_cast<int32_t>(row.number));
  }
  EXPECT_EQ(NumeroErrorObjeto(emErrorConfigAbrir), -2147219999);
  for (int32_t code : {-1, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(archivos::MensajeErrorConfig(code), u"Error desconocido.") << code;
  }
}

TEST(FileErrors, ErrorsKeepNumberSourceAndDescriptionAndGiveUtf8) {
  const Error e(6, u"Velqua", u"Desbordamiento ñ");
  EXPECT_EQ(e.Number(), 6);
  EXPECT_EQ(e.Source(), u"Velqua");
  EXPECT_EQ(e.Description(), u"Desbordamiento ñ");
  EXPECT_STREQ(e.what(), "Desbordamiento \xC3\xB1");
}

}  // namespace
