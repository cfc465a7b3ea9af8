#include "Apps/sandbox/ConnectionHandler.hpp"

#include "Apps/sandbox/DateForms.hpp"
#include "Kestrom/Platform/Bytes.hpp"

#include <array>
#include <string>
#include <utility>

namespace kestrom::sandbox {

namespace {

using foundation::JSONDocument;

bool isConsent(const std::optional<JSONDocument>& document) {
  if (!document) return false;
  const foundation::JSONValue body = document->root();
  return body.member("termsDocumentVersion") || body.member("termsDocumentDate") || body.member("consentDate");
}

}  // namespace

/// One request and what is known of it so far.
struct ConnectionHandler::Exchange {
  RequestHead head;
  Route route;
  foundation::Date time = now();
  FaultScript::Call call;
  std::string body;
  std::uint64_t bodySize = 0;
  std::optional<JSONDocument> document;
  std::optional<UploadReceiver> upload;

  Fault::Drop drop() const { return call.fault ? call.fault->drop : Fault::Drop::never; }
};

void ConnectionHandler::run() {
  while (serveOne()) {
  }
  if (!_isReset) _connection.stream().sayGoodbye();
}

bool ConnectionHandler::serveOne() {
  auto head = _connection.readHead();
  Exchange exchange;
  if (!head) {
    exchange.head = _connection.headSoFar();
    return refuseHead(exchange, head.error());
  }
  exchange.route = findRoute(head->method, head->target);
  exchange.head = std::move(*head);

  // Two endpoints share a path; there the body must come before anything is known.
  const bool isToldByBody = exchange.route.endpoint == Endpoint::saveUserProfile;
  if (!isToldByBody) count(exchange);
  if (exchange.drop() == Fault::Drop::beforeBody) return finish(exchange, Response());
  // Nobody's media are not even taken.
  if (exchange.route.endpoint == Endpoint::uploadMedia && !exchange.call.fault) {
    if (const auto refusal = _context.service.refusalOfHead(exchange.head)) return refuse(exchange, *refusal);
  }

  const BodyEnd end = readBody(exchange);
  if (isToldByBody) {
    if (isConsent(exchange.document)) exchange.route.endpoint = Endpoint::submitUserConstent;
    count(exchange);
  }
  if (end == BodyEnd::cut) {
    log(exchange, std::nullopt);
    return false;
  }
  if (end == BodyEnd::malformed) return refuse(exchange, errorResponse(400, "the body is no HTTP"));
  if (end == BodyEnd::tooLarge) return refuse(exchange, errorResponse(413, "the body is too large"));
  const bool isHandled = !exchange.call.fault || exchange.call.fault->isHandled;
  Response response = isHandled ? handle(exchange) : Response();
  if (exchange.call.fault && exchange.call.fault->answer) response = *exchange.call.fault->answer;
  // Whoever has the answer may look at the files.
  if (exchange.upload) exchange.upload->discard();
  return finish(exchange, response);
}

bool ConnectionHandler::refuseHead(Exchange& exchange, HTTPConnection::ReadError error) {
  switch (error) {
    case HTTPConnection::ReadError::closed:
      if (!exchange.head.target.empty()) log(exchange, std::nullopt);
      return false;
    case HTTPConnection::ReadError::headTooLarge:
      return refuse(exchange, errorResponse(431, "the request's head is too large"));
    case HTTPConnection::ReadError::malformed:
      break;
  }
  return refuse(exchange, errorResponse(400, "this is no HTTP request"));
}

bool ConnectionHandler::refuse(Exchange& exchange, const Response& response) {
  // It was to happen to a request that is one.
  exchange.call.fault = nullptr;
  log(exchange, response.status);
  if (_connection.write(response, false)) _connection.closeAfterRefusal();
  return false;
}

void ConnectionHandler::count(Exchange& exchange) {
  if (exchange.route.endpoint) exchange.call = _context.faults.next(*exchange.route.endpoint);
}

ConnectionHandler::BodyEnd ConnectionHandler::readBody(Exchange& exchange) {
  if (exchange.route.endpoint == Endpoint::uploadMedia) {
    const auto boundary = multipartBoundary(exchange.head.header("Content-Type").value_or(""));
    if (boundary) exchange.upload.emplace(_context.mediaDirectory, *boundary);
  }
  const std::size_t limit = exchange.upload ? kMaximumUpload : kMaximumBody;
  if (exchange.head.contentLength > limit) return BodyEnd::tooLarge;
  if (exchange.head.expectsContinue && !_connection.sendContinue()) return BodyEnd::cut;

  std::array<std::uint8_t, 65536> buffer;
  while (true) {
    const auto count = _connection.readBody(buffer);
    if (!count) return count.error() == HTTPConnection::ReadError::closed ? BodyEnd::cut : BodyEnd::malformed;
    if (*count == 0) break;
    exchange.bodySize += *count;
    if (exchange.bodySize > limit) return BodyEnd::tooLarge;
    const std::string_view bytes = foundation::textOf(std::span(buffer).first(*count));
    if (exchange.upload) {
      exchange.upload->feed(bytes);
    } else {
      exchange.body += bytes;
    }
  }
  if (exchange.body.empty()) return BodyEnd::whole;
  if (auto document = JSONDocument::parse(exchange.body)) exchange.document = std::move(*document);
  return BodyEnd::whole;
}

Response ConnectionHandler::handle(Exchange& exchange) {
  const Route& route = exchange.route;
  if (!route.endpoint && route.allowedMethods.empty()) return errorResponse(404, "no such path");
  if (!route.endpoint) {
    Response response = errorResponse(405, "the path has no such method");
    response.headers.push_back({"Allow", route.allowedMethods});
    return response;
  }
  return _context.service.answer({*route.endpoint, route.id, exchange.head, exchange.body,
                                  exchange.document ? &*exchange.document : nullptr,
                                  exchange.upload ? &*exchange.upload : nullptr});
}

bool ConnectionHandler::finish(Exchange& exchange, const Response& response) {
  const Fault* fault = exchange.call.fault;
  const Fault::Drop drop = exchange.drop();
  const bool isMute = drop == Fault::Drop::beforeBody || drop == Fault::Drop::afterBody || (fault && fault->garbage);
  log(exchange, isMute ? std::nullopt : std::optional(response.status));
  if (fault && fault->delay.count() > 0 && !_context.stop.waitFor(fault->delay)) return false;
  if (fault && fault->garbage) {
    _connection.writeRaw(*fault->garbage);
    return false;
  }
  switch (drop) {
    case Fault::Drop::never:
      break;
    case Fault::Drop::duringResponse:
      _connection.writeHalf(response);
      return reset();
    case Fault::Drop::afterResponse:
      _connection.write(response, true);
      return reset();
    case Fault::Drop::beforeBody:
    case Fault::Drop::afterBody:
      return reset();
  }
  const bool keepsAlive = exchange.head.isKeptAlive && !_context.stop.isRaised();
  if (exchange.head.method != "HEAD") return _connection.write(response, keepsAlive) && keepsAlive;
  Response headOnly = response;
  headOnly.body.clear();
  return _connection.write(headOnly, keepsAlive) && keepsAlive;
}

void ConnectionHandler::log(const Exchange& exchange, std::optional<unsigned> status) {
  _context.log.write({.time = exchange.time,
                      .endpoint = exchange.route.endpoint,
                      .call = exchange.call,
                      .head = exchange.head,
                      .bodySize = exchange.bodySize,
                      .body = exchange.body,
                      .document = exchange.document ? &*exchange.document : nullptr,
                      .parts = exchange.upload ? &exchange.upload->parts() : nullptr,
                      .status = status});
}

bool ConnectionHandler::reset() {
  _connection.stream().drain();
  _connection.stream().resetOnClose();
  _isReset = true;
  return false;
}

}  // namespace kestrom::sandbox
