// Any bytes as a bot text: filled as a regular expression engine and plain replacing fill it.

#include "Core/Services/Bot/HandleBarParser.hpp"
#include "Tests/Support/ExpressionHandleBarParser.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using kestrom::foundation::JSONDocument;
  static const kestrom::services::HandleBarParser parser(
      std::make_shared<const JSONDocument>(std::move(*JSONDocument::parse(R"({"":1})"))));

  // The expression engine searches again and again behind braces that never close; longer texts only cost time.
  constexpr std::size_t kMaximumSize = 2000;
  const std::string_view text(reinterpret_cast<const char*>(data), std::min(size, kMaximumSize));
  const auto lookUp = [](std::string_view path) -> std::optional<std::string> {
    // Two pieces name a member, and there is none with a name that a piece can have.
    bool isInPiece = false;
    int pieces = 0;
    for (const char c : path) {
      pieces += c != '.' && !isInPiece;
      isInPiece = c != '.';
    }
    return pieces > 1 ? std::nullopt : std::optional<std::string>(R"({"":1})");
  };
  if (parser.parse(text) != kestrom::tests::parsedByExpression(text, lookUp)) std::abort();
  return 0;
}
