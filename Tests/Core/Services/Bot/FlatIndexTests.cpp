#include "Core/Services/Bot/FlatIndex.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace kestrom::services {

TEST(FlatIndex, KeepsKeysOfOneHashApartWhileItGrows) {
  constexpr std::uint32_t kCount = 300;
  std::vector<std::string> keys;
  const auto keyOf = [&](std::uint32_t number) -> const std::string& { return keys[number]; };
  const auto poorHash = [](std::uint32_t number) { return number % 3; };
  FlatIndex index;
  for (std::uint32_t number = 0; number < kCount; ++number) {
    const std::string key = "key " + std::to_string(number);
    EXPECT_EQ(index.find(key, poorHash(number), keyOf), FlatIndex::kNone);
    keys.push_back(key);
    EXPECT_EQ(index.insert(key, poorHash(number), number, keyOf), number);
    EXPECT_EQ(index.insert(key, poorHash(number), kCount, keyOf), number);
  }
  for (std::uint32_t number = 0; number < kCount; ++number) {
    EXPECT_EQ(index.find(keys[number], poorHash(number), keyOf), number);
  }
}

TEST(FlatIndex, HashesTextsApartWhereverTheyDiffer) {
  std::set<std::uint32_t> hashes;
  std::string text;
  std::size_t count = 0;
  for (std::size_t length = 0; length < 40; ++length) {
    text.assign(length, '\0');
    hashes.insert(hashOf(text));
    ++count;
    for (char& character : text) {
      character = 1;
      hashes.insert(hashOf(text));
      character = 0;
      ++count;
    }
  }
  EXPECT_EQ(hashes.size(), count);
}

}  // namespace kestrom::services
