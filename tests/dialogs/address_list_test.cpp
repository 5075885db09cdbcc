// Lists of quads in the text of a value.
#include "dialogs/network/address_list.h"

#include <gtest/gtest.h>

namespace korvex::dialogs {
namespace {

TEST(AddressListTest, RemovingOneKeepsTheOthersToTheByte) {
  struct Case {
    const char* text;
    std::size_t position;
    const char* left;
  };
  const std::vector<Case> cases{
      {"10.0.0.1", 0, ""},
      {"10.0.0.1,10.0.0.2", 0, "10.0.0.2"},
      {"10.0.0.1,10.0.0.2", 1, "10.0.0.1"},
      {"110.0.0.1,10.0.0.1,10.0.0.11", 1, "110.0.0.1,10.0.0.11"},
      {"10.0.0.11,110.0.0.1,10.0.0.1", 2, "10.0.0.11,110.0.0.1"},
      {"255.0.0.0,255.0.0.0,255.255.0.0", 1, "255.0.0.0,255.255.0.0"},
      {" 10.0.0.1 , 10.0.0.2 ,10.0.0.3", 1, " 10.0.0.1 ,10.0.0.3"},
      {"10.0.0.1,10.0.0.2,", 1, "10.0.0.1,"},
      {",10.0.0.1,,10.0.0.2", 0, ",10.0.0.2"},
      {"10.0.0.1", 1, "10.0.0.1"},
      {"", 0, ""},
  };
  for (const Case& c : cases) {
    AddressList list(c.text);
    list.remove(c.position);
    EXPECT_EQ(c.left, list.text()) << c.text;
  }
}

TEST(AddressListTest, WhatIsAddedStandsLastBehindOneComma) {
  const std::vector<std::pair<const char*, const char*>> cases{
      {"", "10.0.0.9"},
      {" , ", "10.0.0.9"},
      {"10.0.0.1", "10.0.0.1,10.0.0.9"},
      {"10.0.0.1,", "10.0.0.1,10.0.0.9"},
      {"10.0.0.1, ", "10.0.0.1, 10.0.0.9"},
      {" 10.0.0.1 ", " 10.0.0.1 ,10.0.0.9"},
  };
  for (const auto& [text, result] : cases) {
    AddressList list(text);
    list.add("10.0.0.9");
    EXPECT_EQ(result, list.text());
    EXPECT_EQ("10.0.0.9", list.quads().back());
    EXPECT_EQ(list.quads(), AddressList(result).quads());
  }
}

TEST(AddressListTest, AnAddressIsFoundByItsNumbers) {
  const AddressList list("192.168.001.15, 10.0.0.1,none");
  EXPECT_TRUE(list.holds({192, 168, 1, 15}));
  EXPECT_TRUE(list.holds({10, 0, 0, 1}));
  EXPECT_FALSE(list.holds({0, 0, 0, 0}));
  for (const char* text : {"", "10.0.0", "10.0.0.", "10.0.0.1.2", "10.0.0.256", "10..0.1",
                           "-1.0.0.1", "10.0.0.1x", "10.0.0.99999999999"}) {
    EXPECT_EQ(std::nullopt, octetsOf(text)) << text;
  }
}

TEST(AddressListTest, AMaskIsOnesBeforeZeros) {
  for (const Octets& mask :
       {Octets{255, 0, 0, 0}, Octets{255, 255, 255, 0}, Octets{255, 255, 240, 0},
        Octets{255, 255, 255, 255}, Octets{128, 0, 0, 0}}) {
    EXPECT_TRUE(isSubnetMask(mask)) << quadOf(mask);
  }
  for (const Octets& mask : {Octets{0, 0, 0, 0}, Octets{255, 0, 255, 0}, Octets{0, 255, 255, 255},
                             Octets{255, 255, 241, 0}, Octets{254, 255, 0, 0}}) {
    EXPECT_FALSE(isSubnetMask(mask)) << quadOf(mask);
  }
}

}  // namespace
}  // namespace korvex::dialogs
