// The stored form of a database password.
#include <gtest/gtest.h>

#include <string>

#include "ambrelio/kestro/tools.h"

namespace ambrelio::kestro {
namespace {

TEST(PasswordText, DecodesWhatItEncoded) {
  for (const std::string& password :
       {std::string(), std::string("a"), std::string("oliva 2026"), std::string("contraseña€😀"),
        std::string("\0;\"'=", 5), std::string(300, 'x')}) {
    EXPECT_EQ(Tools::Decode(Tools::Encode(password)), password);
  }
}

TEST(PasswordText, StaysTheSameBetweenVersions) {
  EXPECT_EQ(Tools::Encode("oliva"), "0F1389AC9DE264D676");
  EXPECT_EQ(Tools::Decode("0F1389AC9DE264D676"), "oliva");
}

TEST(PasswordText, IsMadeOfHexadecimalDigitsOnly) {
  std::string stored = Tools::Encode("contraseña €");
  EXPECT_EQ(stored.find_first_not_of("0123456789ABCDEF"), std::string::npos);
}

TEST(PasswordText, DoesNotShowThePassword) {
  std::string stored = Tools::Encode(std::string(8, 'a'));
  EXPECT_EQ(stored.find("6161"), std::string::npos);
}

TEST(PasswordText, RefusesTextThatItDidNotMake) {
  for (const char* text :
       {"", "oliva", "0", "00", "00000000", "0011223344556677", "ñ", "GG000000"}) {
    EXPECT_EQ(Tools::Decode(text), std::nullopt) << text;
  }
}

TEST(PasswordText, RefusesEveryChangeOfOneDigit) {
  const std::string stored = Tools::Encode("oliva");
  for (size_t i = 0; i < stored.size(); ++i) {
    for (char digit : std::string("0123456789ABCDEF")) {
      std::string changed = stored;
      changed[i] = digit;
      if (changed == stored) continue;
      EXPECT_EQ(Tools::Decode(changed), std::nullopt) << changed;
    }
  }
}

TEST(PasswordText, RefusesACutOrLengthenedText) {
  const std::string stored = Tools::Encode("oliva");
  for (size_t length = 0; length < stored.size(); ++length) {
    EXPECT_EQ(Tools::Decode(stored.substr(0, length)), std::nullopt) << length;
  }
  EXPECT_EQ(Tools::Decode(stored + "0"), std::nullopt);
  EXPECT_EQ(Tools::Decode(stored + "00"), std::nullopt);
  EXPECT_EQ(Tools::Decode(" " + stored), std::nullopt);
}

}  // namespace
}  // namespace ambrelio::kestro
