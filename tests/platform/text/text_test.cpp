// Case folding, UTF-16 and code pages: nothing may be lost on the way in or out.
#include "platform/text/text.h"

#include <gtest/gtest.h>

#include <random>

namespace korvex::platform {
namespace {

TEST(Text, NamesFoldByPairsOfLettersOnly) {
  EXPECT_TRUE(sameName("Software", "SOFTWARE"));
  EXPECT_TRUE(sameName("Größe ÿ", "GRÖßE Ÿ"));
  EXPECT_TRUE(sameName("настройки", "НАСТРОЙКИ"));
  EXPECT_TRUE(sameName("σς", "ΣΣ"));
  EXPECT_TRUE(sameName("ᾳ", "ᾼ"));
  // Capitals that are another letter's: two names that Windows keeps apart.
  EXPECT_FALSE(sameName("ı", "I"));
  EXPECT_FALSE(sameName("ſ", "S"));
  EXPECT_FALSE(sameName("ß", "SS"));
  EXPECT_FALSE(sameName("µ", "Μ"));  // the micro sign and Greek mu
  EXPECT_FALSE(sameName("a", "ab"));
}

TEST(Text, FoldingKeepsBytesThatAreNoUtf8) {
  EXPECT_EQ(foldName("a\xFF\xC3"), "A\xFF\xC3");
  EXPECT_EQ(foldName("x\xED\xA0\x80y"), "X\xED\xA0\x80Y");  // a lone surrogate
  EXPECT_FALSE(sameName("\xE4", "\xC4"));
}

TEST(Text, EveryUtf16StringComesBack) {
  std::string all;
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    all += static_cast<char>(unit & 0xFF);
    all += static_cast<char>(unit >> 8);
  }
  EXPECT_EQ(utf8ToUtf16le(utf16leToUtf8(all)), all);

  std::mt19937 random(1);
  for (int run = 0; run < 3000; ++run) {
    std::string bytes(random() % 90, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      // Mostly ASCII with surrogates in between, so that the short ways are entered and left.
      bytes[i] = static_cast<char>(i % 2 == 0          ? random()
                                   : random() % 8 == 0 ? 0xD8 + random() % 8
                                                       : 0);
    }
    ASSERT_EQ(utf8ToUtf16le(utf16leToUtf8(bytes)), bytes) << run;
  }
}

TEST(Text, CharactersAreUtf16Units) {
  EXPECT_EQ(characterCount("abc"), 3U);
  EXPECT_EQ(characterCount("ä€"), 2U);
  EXPECT_EQ(characterCount("😀"), 2U);
  EXPECT_EQ(utf8ToUtf16le("😀"), std::string_view("\x3D\xD8\x00\xDE", 4));
  EXPECT_EQ(utf16leToUtf8({"\x3D\xD8\x00\xDE", 4}), "😀");
}

TEST(Text, OnlyUtf8AndSurrogatesAreWellFormed) {
  EXPECT_TRUE(isWellFormed("plain ä € 😀 \xED\xA0\x80"));
  for (const char* bad :
       {"\xC0\x80", "\xE0\x80\x80", "\xF5\x80\x80\x80", "\x80", "a\xC3", "\xFF"}) {
    EXPECT_FALSE(isWellFormed(bad)) << bad;
  }
}

TEST(CodePage, EveryByteOfEveryPageComesBack) {
  for (const int number :
       {437, 850, 852, 866, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258}) {
    const CodePage* page = CodePage::find(number);
    ASSERT_NE(page, nullptr) << number;
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    std::string back;
    EXPECT_TRUE(page->encode(page->decode(all), back)) << number;
    EXPECT_EQ(back, all) << number;
  }
  EXPECT_EQ(CodePage::find(932), nullptr);
}

TEST(CodePage, CharactersAreThoseOfThePage) {
  EXPECT_EQ(CodePage::find(1252)->decode("\x80\xE9\x81"), "€é\xC2\x81");
  EXPECT_EQ(CodePage::find(1251)->decode("\xC0\xFF"), "Ая");
  EXPECT_EQ(CodePage::find(437)->decode("\x81\xE1"), "üß");
}

TEST(CodePage, WhatHasNoPlaceIsRefusedWhole) {
  std::string bytes = "before";
  EXPECT_FALSE(CodePage::find(1252)->encode("abc Ω", bytes));
  EXPECT_FALSE(CodePage::find(1252)->encode("odd \xFFz", bytes));
  EXPECT_EQ(bytes, "before");
  EXPECT_FALSE(CodePage::find(1252)->appendEncoded("abc Ω", bytes));
  EXPECT_EQ(bytes, "before");
}

}  // namespace
}  // namespace korvex::platform
