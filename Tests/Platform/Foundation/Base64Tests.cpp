#include "Platform/Foundation/Base64.hpp"

#include <gtest/gtest.h>

namespace kestrom::foundation {
namespace {

TEST(Base64, ReadsWholeEncodingsAndNothingElse) {
  struct Row {
    std::string_view text;
    std::optional<Bytes> want;
  };
  const Row rows[] = {
      {"", Bytes{}},
      {"AA==", Bytes{0}},
      {"AAE=", Bytes{0, 1}},
      {"AAEC", Bytes{0, 1, 2}},
      {"+/+/", Bytes{251, 255, 191}},
      {"A", std::nullopt},
      {"AA", std::nullopt},
      {"AAE", std::nullopt},
      {"A===", std::nullopt},
      {"====", std::nullopt},
      {"AA=A", std::nullopt},
      {"AA==AAEC", std::nullopt},
      {"AA E", std::nullopt},
      {"AAE\n", std::nullopt},
      {"-_-_", std::nullopt},
      {"AAÄ", std::nullopt},
  };
  for (const Row& row : rows) EXPECT_EQ(decodeBase64(row.text), row.want) << row.text;
}

TEST(Base64, RoundTripsEveryLength) {
  Bytes bytes;
  for (int length = 0; length < 300; ++length) {
    EXPECT_EQ(decodeBase64(encodeBase64(bytes)), bytes);
    bytes.push_back(static_cast<std::uint8_t>(length * 37));
  }
}

}  // namespace
}  // namespace kestrom::foundation
