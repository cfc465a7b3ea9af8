#include "Apps/kestrom/ChoiceInput.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace kestrom::app {
namespace {

TEST(ChoiceInput, ReadsNumberOrKeyAndWhatFollows) {
  struct Row {
    std::string_view label, text;
    std::vector<std::string_view> keys;
    std::optional<ChoiceInput> want;
  };
  const Row rows[] = {
      {"number", "2", {"a", "b"}, ChoiceInput{1, ""}},
      {"blanks around", "\t 2  ", {"a", "b"}, ChoiceInput{1, ""}},
      {"key", "b", {"a", "b"}, ChoiceInput{1, ""}},
      {"the number before the key", "1", {"0", "1"}, ChoiceInput{0, ""}},
      {"a number that only is a key", "0", {"0", "1"}, ChoiceInput{0, ""}},
      {"zero is no number of an option", "0", {"a"}, {}},
      {"behind the last", "3", {"a", "b"}, {}},
      {"too large for any number", "99999999999999999999", {"a"}, {}},
      {"negative", "-1", {"a"}, {}},
      {"a path with blanks", "1 my photos/a b.jpeg", {"a"}, ChoiceInput{0, "my photos/a b.jpeg"}},
      {"key and path", "take a.jpeg", {"skip", "take"}, ChoiceInput{1, "a.jpeg"}},
      {"a key with a blank", "living room", {"living", "living room"}, ChoiceInput{1, ""}},
      {"the longer key", "living room x", {"living", "living room"}, ChoiceInput{1, "x"}},
      {"half a word is no key", "yesterday", {"yes"}, {}},
      {"keys keep their case", "YES", {"yes"}, {}},
      {"no text matches an empty key", "x", {""}, {}},
  };
  for (const Row& row : rows) EXPECT_EQ(parseChoice(row.text, row.keys), row.want) << row.label;
}

}  // namespace
}  // namespace kestrom::app
