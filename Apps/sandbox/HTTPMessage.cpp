#include "Apps/sandbox/HTTPMessage.hpp"

#include "Platform/Foundation/JSONWriter.hpp"

#include <boost/beast/core/string.hpp>
#include <boost/beast/http/status.hpp>

namespace kestrom::sandbox {

std::optional<std::string_view> RequestHead::header(std::string_view name) const {
  for (const Header& header : headers) {
    if (equalsIgnoringCase(header.name, name)) return header.value;
  }
  return std::nullopt;
}

Response jsonResponse(std::string body, unsigned status) {
  Response response;
  response.status = status;
  response.body = std::move(body);
  return response;
}

Response errorResponse(unsigned status, std::string_view message) {
  foundation::JSONWriter writer;
  writer.beginObject();
  writer.key("message");
  writer.string(message);
  writer.key("statusCode");
  writer.integer(status);
  writer.key("error");
  writer.string(reasonPhrase(status));
  writer.endObject();
  return jsonResponse(std::move(writer).text(), status);
}

std::string_view reasonPhrase(unsigned status) {
  return boost::beast::http::obsolete_reason(boost::beast::http::int_to_status(status));
}

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
  return boost::beast::iequals(left, right);
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

}  // namespace kestrom::sandbox
