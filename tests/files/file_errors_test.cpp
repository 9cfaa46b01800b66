// How file errors reach the caller: the object error number of each code and
// the messages no other test raises, carried by velqua::Error.
#include <string>

#include "files/errores_archivo.h"
#include "files/files_support.h"

namespace {

using namespace files_test;

TEST(FileErrors, CodesOutside1500To1505AreUnknownAndEveryCodeHasItsNumber) {
  const struct {
    int32_t code;
    uint32_t number;
    std::u16string message;
  } rows[] = {
      {1500, 0x800405DCu,
       U("No es posible acceder al archivo o el nombre del archivo no es válido.")},
      {1505, 0x800405E1u, kMsg1505},
      {1506, 0x800405E2u, u"Error desconocido."},
      {0, 0x80040000u, u"Error desconocido."},
      {1499, 0x800405DBu, u"Error desconocido."},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.code);
    EXPECT_EQ(archivos::MensajeErrorConfig(row.code), row.message);
    EXPECT_EQ(NumeroErrorObjeto(row.code), static_cast<int32_t>(row.number));
  }
  EXPECT_EQ(archivos::MensajeErrorConfig(INT32_MIN), u"Error desconocido.");
}

TEST(FileErrors, AnErrorGivesItsDescriptionInUtf8) {
  EXPECT_STREQ(Error(6, u"Velqua", u"Desbordamiento ñ").what(), "Desbordamiento \xC3\xB1");
}

}  // namespace
