#pragma once

#include "Core/Services/Networking/REST/APIError.hpp"
#include "Core/Services/Networking/REST/AnyError.hpp"
#include "Kestrom/Platform/URLError.hpp"
#include "Platform/Foundation/JSONDecoding.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace kestrom::services {

/// How a call of the server fails.
struct RESTError {
  /// Status 401, or the connection itself asked for a sign-in, which then tells nothing more.
  struct Unauthenticated {
    std::optional<APIError> apiError;

    friend bool operator==(const Unauthenticated&, const Unauthenticated&) = default;
  };
  /// Any other status outside of 200 to 299.
  struct WrongStatusResponse {
    int statusCode = 0;
    std::optional<APIError> apiError;

    friend bool operator==(const WrongStatusResponse&, const WrongStatusResponse&) = default;
  };
  /// The body is no record of the wanted kind.
  struct Decoding {
    foundation::DecodingError error;

    friend bool operator==(const Decoding&, const Decoding&) = default;
  };
  /// Kept for a message of a caller's own; the kit makes none.
  struct CustomMessage {
    std::string message;

    friend bool operator==(const CustomMessage&, const CustomMessage&) = default;
  };
  /// Any other error of the connection, and the errors of callers.
  struct CustomError {
    AnyError error;

    friend bool operator==(const CustomError&, const CustomError&) = default;
  };
  /// There is no connection to the internet, or it was lost.
  struct NoInternetConnection {
    friend bool operator==(const NoInternetConnection&, const NoInternetConnection&) = default;
  };
  /// No HTTP came back, or something went wrong that has no kind of its own.
  struct Unknown {
    friend bool operator==(const Unknown&, const Unknown&) = default;
  };
  /// The JSON of a case is no object.
  struct ParsingFailed {
    friend bool operator==(const ParsingFailed&, const ParsingFailed&) = default;
  };

  std::variant<Unauthenticated, WrongStatusResponse, Decoding, CustomMessage, CustomError, NoInternetConnection,
               Unknown, ParsingFailed>
      form;

  static RESTError unauthenticated(std::optional<APIError> apiError) { return {Unauthenticated{std::move(apiError)}}; }
  static RESTError wrongStatusResponse(int statusCode, std::optional<APIError> apiError) {
    return {WrongStatusResponse{statusCode, std::move(apiError)}};
  }
  static RESTError decoding(foundation::DecodingError error) { return {Decoding{std::move(error)}}; }
  static RESTError customMessage(std::string message) { return {CustomMessage{std::move(message)}}; }
  template <class T>
  static RESTError customError(T error) {
    return {CustomError{AnyError(std::move(error))}};
  }
  static RESTError noInternetConnection() { return {NoInternetConnection{}}; }
  static RESTError unknown() { return {Unknown{}}; }
  static RESTError parsingFailed() { return {ParsingFailed{}}; }

  friend bool operator==(const RESTError&, const RESTError&) = default;
};

/// For the log: the kind, numbers and the place in a document. What a server wrote stays out, since it may repeat what
/// the user gave.
std::string debugDescription(const RESTError& error);

}  // namespace kestrom::services

namespace kestrom::networking {

std::string debugDescription(const URLError& error);

}  // namespace kestrom::networking

namespace kestrom::foundation {

std::string debugDescription(const DecodingError& error);
std::string debugDescription(const JSONSyntaxError& error);

}  // namespace kestrom::foundation
