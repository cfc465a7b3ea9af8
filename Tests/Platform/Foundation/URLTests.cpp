#include "Kestrom/Platform/URL.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace kestrom::foundation {
namespace {

TEST(URL, ParsesWhatRFC3986Allows) {
  const std::string_view allowed[] = {
      "http://[::1]/",
      "https://a.example:8080/b?c=d#e",
      "mailto:a@b.example",
      "a:b:c",
      "//host",
      "?q",
      "#f",
      "http://",
      "http:",
      "a/b",
      "../x",
      "http://ex%20ample/",
      "file:///a%20b",
      "data:image/png;base64,AQID",
      "x",
      "./a:b",
      "http://u:p:w@h:/",
      "http://256.256.256.256",
      "http://[::1.2.3.4]",
      "http://[1:2:3:4:5:6:7::]",
      "http://[v1f.a:b]",
      "http://a?b/c?d#e/f?g",
  };
  for (const std::string_view text : allowed) {
    const auto url = URL::parse(text);
    ASSERT_TRUE(url) << text;
    EXPECT_EQ(url->absoluteString(), text) << "the text stays as it was given";
  }
  const std::string_view refused[] = {
      "",
      " ",
      "http://a b",
      " http://a",
      "http://a ",
      "http://ä.example",
      "a\tb",
      "a\nb",
      "a%",
      "a%2",
      "%zz",
      ":x",
      "1http://x",
      "http://[::1",
      "http://a:port/",
      "a\\b",
      "a<b>",
      "a\"b",
      "a|b",
      "a^b",
      "a`b",
      "{a}",
      "[a]",
      "a#b#c",
      "1:2",
      "a%20b:c",
      "http://u@v@h",
      "http://[]",
      "http://[::1]a",
      "http://[::1%25eth0]",
      "http://[::256.1.1.1]",
      "http://[1::2::3]",
      "http://[1:2:3:4:5:6:7:8:9]",
      "http://[12345::]",
      "http://[1.2.3.4]",
      "http://[v.a]",
  };
  for (const std::string_view text : refused) EXPECT_FALSE(URL::parse(text)) << text;
  EXPECT_FALSE(URL::parse(std::string_view("a\0b", 3)));
  EXPECT_TRUE(URL::parse("http://h/" + std::string(1 << 20, 'a')));
}

TEST(URL, TakesItsPathApart) {
  struct Row {
    std::string_view text, scheme, path, last, extension;
  };
  const Row rows[] = {
      {"file:///a/b.jpeg", "file", "/a/b.jpeg", "b.jpeg", "jpeg"},
      {"FILE:///a/b.JPEG", "FILE", "/a/b.JPEG", "b.JPEG", "JPEG"},
      {"http://h/a/b/", "http", "/a/b", "b", ""},
      {"http://h/a%2Fb%20c.tar.gz?x=/y.z#/w", "http", "/a/b c.tar.gz", "a/b c.tar.gz", "gz"},
      {"http://h/", "http", "/", "/", ""},
      {"http://h", "http", "", "", ""},
      {"file:///a/.hidden", "file", "/a/.hidden", ".hidden", ""},
      {"file:///a/end.", "file", "/a/end.", "end.", ""},
      {"file:///a/..", "file", "/a/..", "..", ""},
      {"name", "", "name", "name", ""},
      {"mailto:a@b", "mailto", "a@b", "a@b", ""},
  };
  for (const Row& row : rows) {
    const auto url = URL::parse(row.text);
    ASSERT_TRUE(url) << row.text;
    EXPECT_EQ(url->scheme(), row.scheme) << row.text;
    EXPECT_EQ(url->path(), row.path) << row.text;
    EXPECT_EQ(url->lastPathComponent(), row.last) << row.text;
    EXPECT_EQ(url->pathExtension(), row.extension) << row.text;
    EXPECT_EQ(url->isFileURL(), row.text.starts_with("file") || row.text.starts_with("FILE")) << row.text;
  }
}

TEST(URL, AppendsOneComponentAndNoMore) {
  const URL directory = URL::fromFilePath("/var/My Documents/ü");
  EXPECT_EQ(directory.absoluteString(), "file:///var/My%20Documents/%C3%BC");
  EXPECT_EQ(directory.path(), "/var/My Documents/ü");

  struct Row {
    std::string_view base, component, want;
  };
  const Row rows[] = {
      {"file:///a", "b c.jpeg", "file:///a/b%20c.jpeg"},
      {"file:///a/", "b", "file:///a/b"},
      {"file:///a", "../b", "file:///a/..%2Fb"},
      {"file:///a", "50%?#", "file:///a/50%25%3F%23"},
      {"file:///a", "", "file:///a/"},
      {"file:///a/", "/", "file:///a/"},
      {"file:///a//", "b", "file:///a/b"},
      {"file:///a//", "", "file:///a/"},
      {"file:///", "b", "file:///b"},
      {"a:", "b", "a:/b"},
      {"http://h?q#f", "b", "http://h/b?q#f"},
  };
  for (const Row& row : rows) {
    const URL url = URL::parse(row.base)->appendingPathComponent(row.component);
    EXPECT_EQ(url.absoluteString(), row.want);
    EXPECT_TRUE(URL::parse(url.absoluteString())) << "what is built parses";
  }
}

TEST(URL, NeverTakesAFilePathForAHost) {
  const std::string here = URL::fromFilePath(std::filesystem::current_path().string()).absoluteString();
  EXPECT_EQ(URL::fromFilePath("media/a.png").absoluteString(), here + "/media/a.png");
  EXPECT_EQ(URL::fromFilePath("c:x").absoluteString(), here + "/c:x");
  EXPECT_EQ(URL::fromFilePath("//media").absoluteString(), "file:////media");
  EXPECT_EQ(URL::fromFilePath("/a%20?#\xFF").absoluteString(), "file:///a%2520%3F%23%FF");
}

}  // namespace
}  // namespace kestrom::foundation
