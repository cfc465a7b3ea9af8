// The fast and the careful parser must agree on every text, and what they read must survive being written.

#include "Platform/Foundation/JSONDocument.hpp"
#include "Platform/Foundation/JSONWriter.hpp"

#include <nlohmann/json.hpp>

#include <cstdlib>

namespace {

using kestrom::foundation::JSONDocument;
using kestrom::foundation::JSONWriter;

std::string rendered(const JSONDocument& document) {
  JSONWriter writer;
  writer.value(document.root());
  return std::move(writer).text();
}

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const auto document = JSONDocument::parse(text);

  // A number beyond a double's range sends the same text down the careful road.
  const auto careful = JSONDocument::parse("[" + text + ",1e999]");
  if (!document) {
    // The peer takes a NUL byte for the end of the text.
    require(text.contains('\0') || !nlohmann::json::accept(text) ||
            document.error().description.find("nest deeper") != std::string::npos);
    return 0;
  }
  const std::string once = rendered(*document);
  if (careful) require(rendered(*careful) == "[" + once + ",1e999]");
  const auto again = JSONDocument::parse(once);
  require(again && rendered(*again) == once);
  return 0;
}
