// The packed values of a key, against a plain list.
#include "platform/stored/value_blob.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/text/text.h"

namespace korvex::platform {
namespace {

struct PlainValue {
  std::string name;
  RegType type = 0;
  std::string data;
  bool operator==(const PlainValue&) const = default;
};
using PlainValues = std::vector<PlainValue>;

PlainValues contentOf(ValueBlob& blob) {
  PlainValues values;
  for (std::size_t i = 0; i < blob.count(); ++i) {
    const auto value = blob.at(blob.position(i));
    values.push_back({std::string(value.name), value.type, std::string(value.data)});
  }
  return values;
}

auto findPlain(PlainValues& values, const std::string& name) {
  return std::find_if(values.begin(), values.end(),
                      [&](const PlainValue& value) { return sameName(value.name, name); });
}

// Sets and erases, by name and by number, with names that differ in case only.
void changeBoth(std::mt19937& random, ValueBlob& blob, PlainValues& plain, int names) {
  const auto pick = [&](int below) { return static_cast<int>(random() % below); };
  std::string name = (pick(2) == 0 ? "ä" : "Ä") + std::to_string(pick(names));
  const auto found = findPlain(plain, name);
  const std::size_t position = blob.find(name);
  ASSERT_EQ(position == ValueBlob::kNone, found == plain.end());
  const int what = pick(10);
  if (what < 6) {
    const std::string data(static_cast<std::size_t>(pick(300)), static_cast<char>(pick(256)));
    const auto type = static_cast<RegType>(random());
    blob.set(name, type, data);
    if (found == plain.end()) {
      plain.push_back({name, type, data});
    } else {
      found->type = type;
      found->data = data;
    }
  } else if (what < 8 && found != plain.end()) {
    blob.erase(position);
    plain.erase(found);
  } else if (!plain.empty()) {
    const auto index = what == 8 ? 0 : plain.size() - 1;
    blob.erase(blob.position(index));
    plain.erase(plain.begin() + static_cast<std::ptrdiff_t>(index));
  }
}

TEST(ValueBlob, HoldsWhatAPlainListHolds) {
  for (const int names : {3, 40, 400}) {
    std::mt19937 random(static_cast<unsigned>(names));
    ValueBlob blob;
    PlainValues plain;
    for (int i = 0; i < 3000; ++i) {
      changeBoth(random, blob, plain, names);
      if (i % 7 != 0) continue;
      ASSERT_EQ(contentOf(blob), plain) << names << "/" << i;
      if (i % 49 == 0) {
        const std::string packed = blob.packed();
        ASSERT_EQ(blob.packedBytes(), packed.size());
        ASSERT_TRUE(blob.load(packed));
        ASSERT_EQ(contentOf(blob), plain);
      }
    }
  }
}

TEST(ValueBlob, BytesThatEndTooSoonAreRefused) {
  ValueBlob blob;
  blob.set("name", 1, std::string(200, 'x'));
  const std::string packed = blob.packed();
  for (std::size_t length = 1; length < packed.size(); ++length) {
    EXPECT_FALSE(blob.load(packed.substr(0, length))) << length;
    EXPECT_EQ(blob.count(), 0U);
  }
  EXPECT_FALSE(blob.load("\xFF\xFF\xFF\xFF\xFF\xFF"));
  EXPECT_TRUE(blob.load(packed));
}

}  // namespace
}  // namespace korvex::platform
