#include <gtest/gtest.h>

#include <string>

#include "velqua/enums.h"
#include "velqua/records/names.h"

namespace velqua_records {
namespace {

TEST(Names, EveryDataFieldKeyRoundTrips) {
  for (int32_t key = velqua::emNoParamDato; key <= velqua::emUltimoParamDato; ++key) {
    const char* name = EnumNameOf(EnumKind::kParamDato, key);
    ASSERT_NE(name, nullptr) << key;
    int32_t back = -1;
    ASSERT_TRUE(EnumValueOf(EnumKind::kParamDato, name, &back));
    EXPECT_EQ(back, key);
  }
}

TEST(Names, MembersKeepTheirExactSpelling) {
  EXPECT_STREQ(EnumNameOf(EnumKind::kParamDato, 2), "emParamFechaDia");
  EXPECT_STREQ(EnumNameOf(EnumKind::kParamDato, 68), "emParamExtensionTransferida");
  EXPECT_STREQ(EnumNameOf(EnumKind::kParamDatoConstante, 29), "emDatoCteIdentNoContestada");
  EXPECT_STREQ(EnumNameOf(EnumKind::kCaso, 4), "emCasoNortelNorstar0x32SMDR6");
  EXPECT_STREQ(EnumNameOf(EnumKind::kTipoLlamada, 6), "emTradTransferida");
  EXPECT_STREQ(EnumNameOf(EnumKind::kAtributo, 4), "emATRNoContestada");
  EXPECT_STREQ(EnumNameOf(EnumKind::kTipoDato, 3), "emValorCadena");
}

TEST(Names, ValueWithoutMemberHasNoName) {
  EXPECT_EQ(EnumNameOf(EnumKind::kCaso, 13), nullptr);
  EXPECT_EQ(EnumNameOf(EnumKind::kTipoLlamada, -1), nullptr);
}

TEST(Names, LookupIsCaseSensitive) {
  int32_t value = 0;
  EXPECT_FALSE(EnumValueOf(EnumKind::kParamDato, "emparamfechadia", &value));
  EXPECT_FALSE(EnumValueOf(EnumKind::kParamDato, "", &value));
}

}  // namespace
}  // namespace velqua_records
