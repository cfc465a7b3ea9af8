#include "Core/Services/Networking/REST/RESTError.hpp"

#include <array>
#include <cstddef>

namespace kestrom::services {

namespace {

std::string textOf(const std::optional<APIError>& apiError) {
  return apiError ? "APIError(statusCode: " + std::to_string(apiError->statusCode) + ")" : "no APIError";
}

struct Describing {
  std::string operator()(const RESTError::Unauthenticated& error) const {
    return "unauthenticated(" + textOf(error.apiError) + ")";
  }
  std::string operator()(const RESTError::WrongStatusResponse& error) const {
    return "wrongStatusResponse(" + std::to_string(error.statusCode) + ", " + textOf(error.apiError) + ")";
  }
  std::string operator()(const RESTError::Decoding& error) const {
    return "decoding(" + debugDescription(error.error) + ")";
  }
  std::string operator()(const RESTError::CustomMessage&) const { return "customMessage"; }
  std::string operator()(const RESTError::CustomError& error) const {
    return "customError(" + error.error.description() + ")";
  }
  std::string operator()(const RESTError::NoInternetConnection&) const { return "noInternetConnection"; }
  std::string operator()(const RESTError::Unknown&) const { return "unknown"; }
  std::string operator()(const RESTError::ParsingFailed&) const { return "parsingFailed"; }
};

}  // namespace

std::string debugDescription(const RESTError& error) {
  return "RESTError." + std::visit(Describing{}, error.form);
}

}  // namespace kestrom::services

namespace kestrom::networking {

std::string debugDescription(const URLError& error) {
  return "URLError." + std::string(nameOf(error.code)) + ": " + error.description;
}

}  // namespace kestrom::networking

namespace kestrom::foundation {

std::string debugDescription(const DecodingError& error) {
  constexpr std::array kKinds{"syntax",        "typeMismatch",  "keyNotFound",
                              "valueNotFound", "dataCorrupted", "nestingTooDeep"};
  return "DecodingError." + std::string(kKinds[static_cast<std::size_t>(error.kind)]) + " at \"" + error.path + "\"";
}

std::string debugDescription(const JSONSyntaxError&) {
  return "JSONSyntaxError";
}

}  // namespace kestrom::foundation
