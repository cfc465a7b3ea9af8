#include "Core/Models/StoredURL.hpp"

#include <gtest/gtest.h>

namespace kestrom::models {
namespace {

using foundation::URL;

TEST(StoredURL, TrustsTheFileNameAlone) {
  struct Row {
    std::string_view label;
    std::string_view text;
    std::string_view want;  // empty for no URL
  };
  const Row rows[] = {
      {"web", "https://a.example/x.jpeg?y=1#z", "https://a.example/x.jpeg?y=1#z"},
      {"http anywhere in it", "ftp://a.example/http", "ftp://a.example/http"},
      {"relative with http", "http-files/x", "http-files/x"},
      {"neither file nor web", "ftp://a.example/x", ""},
      {"plain word", "roof", ""},
      {"empty", "", ""},
      {"http, but a blank in it", "http is fine", ""},
      {"http, but beyond ASCII", "http://a.example/ä", ""},
      {"bad escape", "file:///a/%zz", ""},

      {"file of an earlier install", "file:///old/Documents/a.mp4", "file:///now/Documents/a.mp4"},
      {"file in a deeper folder", "file:///old/Documents/b/c/a.mp4", "file:///now/Documents/a.mp4"},
      {"escaped blank stays escaped", "file:///old/a%20b.mp4", "file:///now/Documents/a%20b.mp4"},
      {"folder", "file:///old/Documents/b/", "file:///now/Documents/b"},
      {"with a host", "file://host/a.mp4", "file:///now/Documents/a.mp4"},
      {"query and fragment take no part", "file:///old/a.mp4?../b#/c", "file:///now/Documents/a.mp4"},
      {"web address that names a file", "https://a.example/x?u=file://y", "file:///now/Documents/x"},

      {"root", "file:///", ""},
      {"no path", "file://", ""},
      {"host only", "file://host", ""},
      {"folder above", "file:///old/Documents/..", ""},
      {"folder above, escaped", "file:///old/Documents/%2e%2E", ""},
      {"the folder itself", "file:///old/Documents/.", ""},
      {"slash in the name", "file:///old/..%2F..%2Fetc%2Fpasswd", ""},
      {"NUL in the name", "file:///old/a%00b", ""},
      {"scheme in capitals", "FILE:///etc/http/passwd", "file:///now/Documents/passwd"},
      {"file without slashes", "file:/etc/http/%2e%2e", ""},
  };
  const URL directory = URL::fromFilePath("/now/Documents");
  for (const Row& row : rows) {
    const auto url = storedURL(row.text, directory);
    EXPECT_EQ(url ? url->absoluteString() : "", row.want) << row.label;
    // An answer is read, kept and read again at every launch.
    EXPECT_EQ(url ? storedURL(url->absoluteString(), directory) : url, url) << row.label;
  }
}

}  // namespace
}  // namespace kestrom::models
