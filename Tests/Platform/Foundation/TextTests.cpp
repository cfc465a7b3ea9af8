#include "Platform/Foundation/Text.hpp"

#include "Platform/Foundation/Calendar.hpp"
#include "Platform/Foundation/DateText.hpp"
#include "Platform/Foundation/ListFormatter.hpp"
#include "Platform/Foundation/UUID.hpp"

#include <gtest/gtest.h>

#include <set>

namespace kestrom::foundation {
namespace {

TEST(Text, CountsCutsAndReversesWhatAReaderSees) {
  struct Row {
    std::string_view label, text;
    std::size_t count;
    std::string_view firstTwo, reversed;
  };
  const Row rows[] = {
      {"nothing", "", 0, "", ""},
      {"ASCII", "abc", 3, "ab", "cba"},
      {"carriage return and line feed", "a\r\nb", 3, "a\r\n", "b\r\na"},
      {"combining mark", "xe\u0301y", 3, "xe\u0301", "ye\u0301x"},
      {"flags", "🇩🇪🇫🇷x", 3, "🇩🇪🇫🇷", "x🇫🇷🇩🇪"},
      {"joined family", "a👨‍👩‍👧b", 3, "a👨‍👩‍👧", "b👨‍👩‍👧a"},
      {"skin tone", "👍🏽!", 2, "👍🏽!", "!👍🏽"},
      {"broken bytes", "\xFF\xC3", 2, "\xFF\xC3", "\xC3\xFF"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(characterCount(row.text), row.count) << row.label;
    EXPECT_EQ(firstCharacters(row.text, 2), row.firstTwo) << row.label;
    EXPECT_EQ(reversedCharacters(row.text), row.reversed) << row.label;
  }
}

TEST(Text, MapsCaseByUnicode) {
  EXPECT_EQ(uppercased("straße ǆ i"), "STRASSE Ǆ I");
  EXPECT_EQ(lowercased("ÄÖ ΑΣ I"), "äö ας i");
}

TEST(Text, TrimsBlanksButNoLineBreaks) {
  EXPECT_EQ(trimmedBlanks(" \t\u00a0\u3000a b\u2003 "), "a b");
  EXPECT_EQ(trimmedBlanks(" \n a \r"), "\n a \r");
  EXPECT_EQ(trimmedBlanks(" \t "), "");
  EXPECT_EQ(trimmedBlanks("\xFF a \xFF"), "\xFF a \xFF");
}

TEST(ListFormatter, JoinsAsTheLanguageDoes) {
  const ListFormatter formatter("en_US");
  const std::vector<std::string> texts{"a", "b{0}", "ç"};
  const std::span<const std::string> all(texts);
  EXPECT_EQ(formatter.string(all.first(0)), "");
  EXPECT_EQ(formatter.string(all.first(1)), "a");
  EXPECT_EQ(formatter.string(all.first(2)), "a and b{0}");
  EXPECT_EQ(formatter.string(all), "a, b{0}, and ç");
}

TEST(UUID, IsOfVersionFourAndNew) {
  std::set<std::string> seen;
  for (int count = 0; count < 1000; ++count) {
    const std::string text = makeUUIDString();
    ASSERT_EQ(text.size(), 36u);
    EXPECT_EQ(text[14], '4');
    EXPECT_EQ(text.find_first_not_of("0123456789ABCDEF-"), std::string::npos);
    EXPECT_TRUE(seen.insert(text).second);
  }
}

TEST(Calendar, TellsTheYearOfTheZone) {
  const Date newYear = *parseISO8601("2024-12-31T23:30:00Z");
  EXPECT_EQ(calendarYear(newYear, "UTC"), 2024);
  EXPECT_EQ(calendarYear(newYear, "Europe/Berlin"), 2025);
  EXPECT_EQ(calendarYear(newYear, "America/Los_Angeles"), 2024);
}

}  // namespace
}  // namespace kestrom::foundation
