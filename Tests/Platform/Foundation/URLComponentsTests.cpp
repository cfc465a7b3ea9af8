#include "Platform/Foundation/URLComponents.hpp"

#include <gtest/gtest.h>

namespace kestrom::foundation {
namespace {

using Items = std::vector<URLQueryItem>;

std::optional<std::string> textOf(const URLComponents& components) {
  const auto url = components.url();
  return url ? std::optional(url->absoluteString()) : std::nullopt;
}

TEST(URLComponents, BuildWhatARequestNeeds) {
  struct Row {
    std::string_view host, path;
    std::optional<Items> items;
    std::optional<std::string_view> text;
  };
  const Row rows[] = {
      {"a.example", "/kestroms/abc", std::nullopt, "https://a.example/kestroms/abc"},
      {"a.example", "", std::nullopt, "https://a.example"},
      {"a.example", "/a b/50%/%41?#[ü]", std::nullopt, "https://a.example/a%20b/50%25/%2541%3F%23%5B%C3%BC%5D"},
      {"a.example", "/a:b@c;d=e", std::nullopt, "https://a.example/a:b@c;d=e"},
      {"[::1]", "//a", std::nullopt, "https://[::1]//a"},
      {"a.example", "/", Items{}, "https://a.example/?"},
      {"a.example", "/", Items{{"a", "1"}, {"b", std::nullopt}, {"c", ""}}, "https://a.example/?a=1&b&c="},
      {"a.example", "/", Items{{"a=b", "c&d=e+f g#%ü/?"}}, "https://a.example/?a%3Db=c%26d%3De%2Bf%20g%23%25%C3%BC/?"},
      {"a.example", "relative", std::nullopt, std::nullopt},
      {"a b", "/", std::nullopt, std::nullopt},
      {"a.example/x", "/", std::nullopt, std::nullopt},
      {"a.example:80", "/", std::nullopt, std::nullopt},
      {"user@a.example", "/", std::nullopt, std::nullopt},
      {"a.example?x", "/", std::nullopt, std::nullopt},
      {"ü.example", "/", std::nullopt, std::nullopt},
      {"a%2", "/", std::nullopt, std::nullopt},
  };
  for (const Row& row : rows) {
    URLComponents components;
    components.setScheme("https");
    components.setHost(row.host);
    components.setPath(row.path);
    if (row.items) components.setQueryItems(*row.items);
    EXPECT_EQ(textOf(components), row.text) << row.host << row.path;
    if (const auto url = components.url()) {
      EXPECT_EQ(URLComponents(*url).queryItems(), row.items) << *row.text;
    }
  }
}

TEST(URLComponents, PartsThatWouldReadAsOthersMakeNoURL) {
  URLComponents components;
  EXPECT_EQ(textOf(components), std::nullopt);
  for (const std::string_view path : {"//a.example/b", "a:b"}) {
    components.setPath(path);
    EXPECT_EQ(textOf(components), std::nullopt) << path;
  }
  components.setPath("a/b");
  EXPECT_EQ(textOf(components), "a/b");
  for (const std::string_view scheme : {"", "1a", "ht tp", "http:"}) {
    components.setScheme(scheme);
    EXPECT_EQ(textOf(components), std::nullopt) << scheme;
  }
}

TEST(URLComponents, ReadQueryItemsInTheirOrder) {
  struct Row {
    std::string_view url;
    std::optional<Items> items;
  };
  const Row rows[] = {
      {"https://a.example/b#?c=d", std::nullopt},
      {"https://a.example/b?", Items{}},
      {"app://open?z=1&z=2&z", Items{{"z", "1"}, {"z", "2"}, {"z", std::nullopt}}},
      {"https://a.example?a=b=c&=d&e=", Items{{"a", "b=c"}, {"", "d"}, {"e", ""}}},
      {"?a&&b", Items{{"a", std::nullopt}, {"", std::nullopt}, {"b", std::nullopt}}},
      {"?a&", Items{{"a", std::nullopt}, {"", std::nullopt}}},
      {"?%6b+%C3%BC=A+%2B%26%3D%20B#f", Items{{"k+ü", "A++&= B"}}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(URLComponents(URL::parse(row.url).value()).queryItems(), row.items) << row.url;
  }
}

TEST(URLComponents, KeepWhatIsNotSetAnew) {
  const std::string_view text = "https://me:pw@a.example:8443/s%2Ft/%7Eu?old=%31#frag%20ment";
  URLComponents components(URL::parse(text).value());
  EXPECT_EQ(textOf(components), text);
  EXPECT_EQ(components.host(), "a.example");
  components.setQueryItems({{"kestromid", "7"}});
  EXPECT_EQ(textOf(components), "https://me:pw@a.example:8443/s%2Ft/%7Eu?kestromid=7#frag%20ment");

  EXPECT_EQ(URLComponents(URL::parse("file:///a").value()).host(), "");
  EXPECT_EQ(URLComponents(URL::parse("/a").value()).host(), std::nullopt);
  for (const std::string_view other : {"https://a.example:/", "//a.example?", "mailto:a@b.example", "file:///a#"}) {
    EXPECT_EQ(textOf(URLComponents(URL::parse(other).value())), other);
  }
}

}  // namespace
}  // namespace kestrom::foundation
