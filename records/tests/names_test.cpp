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

TEST(Names, ValueWithoutMemberHasNoName) {
  EXPECT_EQ(EnumNameOf(EnumKind::kCaso, 13), nullptr);
  EXPECT_EQ(EnumNameOf(EnumKind::kTipoLlamada, -1), nullptr);
}

TEST(Names, LookupIsCaseSensitive) {
  int32_t value = 0;
  EXPECT_FALSE(EnumValueOf(EnumKind::kParamDato, "emparamfechadia", &value));
  EXPECT_FALSE(EnumValueOf(EnumKind::kParamDato, "", &value));
}

// Every case and key a configuration can name has a description: a key whose
// name the description builder does not understand would print nothing.
TEST(Names, EveryCaseAndKeyIsDescribed) {
  const struct {
    EnumKind kind;
    int32_t first, last;
  } ranges[] = {
      {EnumKind::kCaso, velqua::emNoCaso, velqua::emCasoAD_TES},
      {EnumKind::kParamDato, velqua::emParamFechaDia, velqua::emParamExtensionTransferida},
      {EnumKind::kParamDatoConstante, velqua::emDatoCteIdentificadorHorarioMatutinoFecha,
       velqua::emDatoCteIdentNoContestada}};
  for (const auto& range : ranges) {
    for (int32_t value = range.first; value <= range.last; ++value) {
      EXPECT_NE(KeyDescription(range.kind, value), "") << EnumNameOf(range.kind, value);
    }
  }
  EXPECT_EQ(KeyDescription(EnumKind::kParamDato, velqua::emPrimerParamDato), "");
  EXPECT_EQ(KeyDescription(EnumKind::kParamDato, 70), "");
  for (int32_t handling = velqua::emNoCaso; handling <= velqua::emCasoAD_TES; ++handling) {
    EXPECT_NE(CaseBrief(handling), nullptr) << handling;  // listed by `velqua switches`
  }
  EXPECT_STREQ(CaseBrief(velqua::emCasoAD_TES + 1), "unknown case");
}

TEST(Names, DescriptionsFollowTheKeysParts) {
  const struct {
    int32_t key;
    const char* words;
  } rows[] = {
      {velqua::emParamTelefonoEntrante, "calling number of an incoming call"},
      {velqua::emParamTelefonoSalienteFinTransferida,
       "dialled number of an outgoing call, at the end of a transfer"},
      {velqua::emParamTroncal2InterTroncalEnTransferencia,
       "receiving trunk of a trunk-to-trunk call, during a transfer"},
      {velqua::emParamExtensionTransferida, "extension of a transferred call"},
      {velqua::emParamRingSegundos, "ring time: seconds"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(KeyDescription(EnumKind::kParamDato, row.key), row.words);
  }
}

}  // namespace
}  // namespace velqua_records
