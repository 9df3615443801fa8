#include "ambrelio/referents/referente.h"

#include <gtest/gtest.h>

namespace ambrelio {
namespace {

TEST(Referente, IsNewAndHasNoDataAtFirst) {
  const Referente referent;
  EXPECT_TRUE(referent.EsNuevo());
  EXPECT_FALSE(referent.DatosValidos());
  EXPECT_EQ(referent.loaded_code(), 0);
  EXPECT_EQ(referent.Codigo(), 0);
  EXPECT_EQ(referent.Nombre(), "");
  EXPECT_EQ(referent.NIF(), "");
  for (int16_t ix = 1; ix <= 3; ++ix) EXPECT_EQ(referent.Info(ix), "");
}

TEST(Referente, KeepsThreeLines) {
  Referente referent;
  referent.SetInfo(1, "uno");
  referent.SetInfo(2, "dos");
  referent.SetInfo(3, "tres");
  EXPECT_EQ(referent.Info(1), "uno");
  EXPECT_EQ(referent.Info(2), "dos");
  EXPECT_EQ(referent.Info(3), "tres");
}

TEST(Referente, HasNoOtherLine) {
  Referente referent;
  for (const int ix : {-32768, -1, 0, 4, 32767}) {
    referent.SetInfo(static_cast<int16_t>(ix), "x");
    EXPECT_EQ(referent.Info(static_cast<int16_t>(ix)), "") << ix;
  }
  for (int16_t ix = 1; ix <= 3; ++ix) EXPECT_EQ(referent.Info(ix), "");
}

TEST(Referente, IsValidWithACodeAndAName) {
  Referente referent;
  referent.SetCodigo(1);
  EXPECT_FALSE(referent.DatosValidos());
  referent.SetNombre(" ");
  EXPECT_TRUE(referent.DatosValidos());
  for (const int32_t code : {0, -1}) {
    referent.SetCodigo(code);
    EXPECT_FALSE(referent.DatosValidos()) << code;
  }
}

TEST(Referente, IsNewWhateverItsCode) {
  Referente referent;
  referent.SetCodigo(7);
  EXPECT_TRUE(referent.EsNuevo());
}

}  // namespace
}  // namespace ambrelio
