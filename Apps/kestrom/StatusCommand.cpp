#include "Apps/kestrom/StatusCommand.hpp"

#include "Platform/Foundation/JSONWriter.hpp"

#include <ostream>
#include <string_view>
#include <utility>
#include <variant>

namespace kestrom::app {

namespace {

std::string_view nameOf(const KestromError& error) {
  if (std::holds_alternative<KestromError::APIError>(error.form)) return "apiError";
  if (std::holds_alternative<KestromError::NetworkError>(error.form)) return "networkError";
  return "unknown";
}

std::string textOf(const KestromStatus& status) {
  foundation::JSONWriter writer;
  writer.beginObject();
  writer.key("status");
  writer.string(status.status);
  writer.key("expiration");
  writer.string(status.expiration);
  writer.endObject();
  return std::move(writer).text();
}

/// All failures have the same members, so that a script need not ask which one it got.
std::string textOf(const KestromError& error) {
  const auto* refused = std::get_if<KestromError::APIError>(&error.form);
  foundation::JSONWriter writer;
  writer.beginObject();
  writer.key("error");
  writer.string(nameOf(error));
  writer.key("message");
  writer.string(refused ? refused->message : "");
  writer.key("code");
  writer.integer(refused ? refused->code : 0);
  writer.endObject();
  return std::move(writer).text();
}

}  // namespace

int runStatus(const StatusArguments& arguments, std::ostream& out, std::ostream& err) {
  const auto sdk = startSDK(arguments.host);
  if (!sdk) {
    err << sdk.error() << '\n';
    return 2;
  }
  try {
    out << textOf((*sdk)->fetchKestromStatus(arguments.zipCode, arguments.accessCode).get()) << '\n';
    return 0;
  } catch (const KestromError& error) {
    out << textOf(error) << '\n';
    return 1;
  }
}

}  // namespace kestrom::app
