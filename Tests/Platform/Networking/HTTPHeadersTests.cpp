#include "Kestrom/Platform/HTTPHeaders.hpp"

#include "Platform/Networking/ResponseHead.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace kestrom::networking {
namespace {

std::string textOf(const HTTPHeaders& headers) {
  std::string text;
  for (const HTTPHeader& header : headers) text += header.name + "=" + header.value + ";";
  return text;
}

TEST(HTTPHeaders, ReplaceOrJoinWithoutRegardToCase) {
  HTTPHeaders headers;
  headers.add("organizationId", "a");
  headers.set("Content-Type", "text/plain");
  headers.add("ORGANIZATIONID", "b");
  headers.set("content-type", "application/json");
  headers.add("organizationid", "");
  EXPECT_EQ(textOf(headers), "organizationId=a,b,;Content-Type=application/json;");
  EXPECT_EQ(headers.value("CONTENT-TYPE"), "application/json");
  EXPECT_EQ(headers.value("Content"), std::nullopt);
}

TEST(ResponseHead, KeepsTheHeadersOfTheAnswerItself) {
  struct Row {
    std::string_view label;
    std::vector<std::string_view> lines;
    int status;
    std::string_view headers;
  };
  const Row rows[] = {
      {"names that come twice are joined", {"HTTP/1.1 200 OK", "A: 1", "B: x", "a: 2", ""}, 200, "A=1,2;B=x;"},
      {"an interim answer is left out",
       {"HTTP/1.1 103 Early Hints", "Link: x", "", "HTTP/2 404 ", "A: 1", ""},
       404,
       "A=1;"},
      {"what stands behind the content is left out", {"HTTP/1.1 200 OK", "A: 1", "", "A: 2", ""}, 200, "A=1;"},
      {"a folded line goes on", {"HTTP/1.1 200 OK", "A: 1", "\t 2", " 3", "B:", ""}, 200, "A=1 2 3;B=;"},
      {"a line that is no header", {"HTTP/1.1 200 OK", " lost", "nonsense", ": x", "A:  b c \t", ""}, 200, "A=b c;"},
  };
  for (const Row& row : rows) {
    ResponseHead head;
    for (const std::string_view line : row.lines) EXPECT_TRUE(head.addLine(std::string(line) + "\r\n")) << row.label;
    EXPECT_EQ(head.statusCode(), row.status) << row.label;
    EXPECT_EQ(textOf(head.headers()), row.headers) << row.label;
  }
}

}  // namespace
}  // namespace kestrom::networking
