#include "Apps/sandbox/SandboxService.hpp"

#include "Apps/sandbox/BodyRecords.hpp"
#include "Apps/sandbox/Database.hpp"
#include "Apps/sandbox/DateForms.hpp"
#include "Apps/sandbox/Hosts.hpp"
#include "Apps/sandbox/Places.hpp"
#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Models/LoginDTO.hpp"
#include "Platform/Foundation/DateText.hpp"

#include <algorithm>
#include <cmath>
#include <expected>

namespace kestrom::sandbox {

namespace {

using foundation::DecodingError;
using foundation::DecodingOptions;
using foundation::JSONValue;

Response unfit(const DecodingError& error) {
  return errorResponse(422, error.path.empty() ? error.description : error.path + ": " + error.description);
}

Response done() {
  Response response;
  response.status = 204;
  return response;
}

Response unauthorized(std::string_view message) {
  return errorResponse(401, message);
}

/// The record that a body holds, or the refusal of a body that does not.
template <class Record>
std::expected<Record, Response> decodeBody(const ServiceRequest& request) {
  const auto contentType = request.head.header("Content-Type");
  if (contentType && !equalsIgnoringCase(trimmed(contentType->substr(0, contentType->find(';'))), "application/json"))
    return std::unexpected(errorResponse(415, "the body must be application/json"));
  if (!request.document) return std::unexpected(errorResponse(422, "the body is no JSON document"));
  auto record =
      foundation::decodeDocument<Record>(*request.document, DecodingOptions{.dates = DecodingOptions::Dates::answers});
  if (!record) return std::unexpected(unfit(record.error().front()));
  return std::move(*record);
}

std::optional<std::string_view> bearerToken(const RequestHead& head) {
  constexpr std::string_view kScheme = "Bearer ";
  const auto value = head.header("Authorization");
  if (!value || value->size() <= kScheme.size() || !equalsIgnoringCase(value->substr(0, kScheme.size()), kScheme))
    return std::nullopt;
  return trimmed(value->substr(kScheme.size()));
}

/// An answer as the history gives it back: its date with a fraction, and without the mark that only devices have.
std::string storedAnswer(JSONValue answer) {
  foundation::JSONWriter writer;
  writer.beginObject();
  for (auto it = answer.begin(); it != answer.end(); ++it) {
    const std::string_view key = (*it).string();
    ++it;
    if (key == "wasSynced") continue;
    writer.key(key);
    const auto date = key == "answeredAt" && (*it).isString() ? foundation::parseISO8601((*it).string()) : std::nullopt;
    if (date) {
      writer.string(millisecondsText(*date));
    } else {
      writer.value(*it);
    }
  }
  writer.endObject();
  return std::move(writer).text();
}

/// The host that the client talks to, if media can be had there again.
std::string mediaHost(const RequestHead& head) {
  const std::string_view host = head.header("Host").value_or("");
  const std::size_t colon = host.find(':');
  const std::string_view name = host.substr(0, colon);
  const std::string_view port = colon == std::string_view::npos ? std::string_view() : host.substr(colon + 1);
  const bool isKnown =
      std::ranges::find(kAPIHosts, name) != kAPIHosts.end() || name == "localhost" || name == "127.0.0.1";
  const bool isPort = port.size() <= 5 && port.find_first_not_of("0123456789") == std::string_view::npos;
  return std::string(isKnown && isPort ? host : kSandboxAPIHost);
}

}  // namespace

Response SandboxService::answer(const ServiceRequest& request) {
  try {
    if (!needsToken(request.endpoint)) return answerAnybody(request);
    const auto caseId = caseOfHolder(request.head);
    return caseId ? answerHolder(request, *caseId) : caseId.error();
  } catch (const DatabaseFault& fault) {
    return errorResponse(500, fault.what());
  }
}

std::optional<Response> SandboxService::refusalOfHead(const RequestHead& head) {
  try {
    const auto caseId = caseOfHolder(head);
    return caseId ? std::nullopt : std::optional(caseId.error());
  } catch (const DatabaseFault& fault) {
    return errorResponse(500, fault.what());
  }
}

std::expected<std::string, Response> SandboxService::caseOfHolder(const RequestHead& head) {
  const auto token = bearerToken(head);
  if (!token) return std::unexpected(unauthorized("a bearer token is needed"));
  auto caseId = _store.caseOfToken(*token);
  if (!caseId) return std::unexpected(unauthorized("the token is not known"));
  return std::move(*caseId);
}

Response SandboxService::answerAnybody(const ServiceRequest& request) {
  switch (request.endpoint) {
    case Endpoint::mobileLogin:
      return logIn(request);
    case Endpoint::statusCheck:
      return checkStatus(request);
    case Endpoint::getConfiguration:
      return brand(request);
    default:
      return medium(request);
  }
}

Response SandboxService::answerHolder(const ServiceRequest& request, const std::string& caseId) {
  switch (request.endpoint) {
    case Endpoint::getBot:
      return bot(request, caseId);
    case Endpoint::saveUserProfile:
      return saveUserProfile(request, caseId);
    case Endpoint::submitUserConstent: {
      if (auto body = decodeBody<ConsentBody>(request); !body) return std::move(body.error());
      _store.addConsent(caseId, request.body);
      return done();
    }
    case Endpoint::uploadEvents: {
      if (auto body = decodeBody<EventsBody>(request); !body) return std::move(body.error());
      _store.addEvents(caseId, request.body);
      return done();
    }
    case Endpoint::getAddress:
      return address(request);
    case Endpoint::uploadMedia:
      return keepUpload(request, caseId);
    default:
      break;
  }
  if (request.id == caseId) return answerOnCase(request, caseId);
  if (_store.findCase(request.id)) return errorResponse(403, "the token is for another case");
  return errorResponse(404, "no such case");
}

Response SandboxService::answerOnCase(const ServiceRequest& request, const std::string& caseId) {
  switch (request.endpoint) {
    case Endpoint::submitAnswer:
      return saveAnswer(request, caseId);
    case Endpoint::getHistory:
      return jsonResponse(_store.history(caseId));
    case Endpoint::submit:
      return submit(request, caseId);
    default: {
      auto record = _store.findCase(caseId);
      return record ? jsonResponse(std::move(record->body)) : errorResponse(404, "no such case");
    }
  }
}

Response SandboxService::logIn(const ServiceRequest& request) {
  const auto body = decodeBody<models::MobileLoginRequestBody>(request);
  if (!body) return body.error();
  const auto record = _store.findCase(Credentials{body->zipCode, body->accessCode});
  if (!record) return unauthorized("no case has this postal code and access code");
  foundation::JSONWriter writer;
  writer.beginObject();
  writer.key("token");
  writer.string(_store.issueToken(record->id));
  writer.key("organizationId");
  writer.string(record->organizationId);
  writer.key("kestromId");
  writer.string(record->id);
  writer.endObject();
  return jsonResponse(std::move(writer).text());
}

Response SandboxService::checkStatus(const ServiceRequest& request) {
  const auto body = decodeBody<models::MobileLoginRequestBody>(request);
  if (!body) return body.error();
  const auto record = _store.findCase(Credentials{body->zipCode, body->accessCode});
  if (!record) return unauthorized("no case has this postal code and access code");
  foundation::JSONWriter writer;
  writer.beginObject();
  writer.key("expiration");
  writer.string(record->expiration);
  writer.key("status");
  writer.string(record->status);
  writer.endObject();
  return jsonResponse(std::move(writer).text());
}

Response SandboxService::brand(const ServiceRequest& request) {
  // A signed-in client names its organization twice, joined by a comma on the way.
  const std::string_view value = request.head.header("organizationId").value_or("");
  const std::string_view organizationId = trimmed(value.substr(0, value.find(',')));
  if (organizationId.empty()) return errorResponse(422, "the header organizationId is missing");
  auto body = _store.findBrand(organizationId);
  return body ? jsonResponse(std::move(*body)) : errorResponse(404, "no such organization");
}

Response SandboxService::medium(const ServiceRequest& request) {
  // Only names that the server itself gave are found, so that none leads anywhere else.
  const auto record = _store.findMedia(request.id);
  if (!record) return errorResponse(404, "no such medium");
  const std::filesystem::path file = _mediaDirectory / record->name;
  if (!std::ifstream(file)) return errorResponse(500, "the file cannot be read");
  Response response;
  response.contentType = record->contentType;
  response.file = file;
  return response;
}

Response SandboxService::bot(const ServiceRequest& request, const std::string& caseId) {
  auto sequence = _store.findBot(request.id);
  if (!sequence) return errorResponse(404, "no such bot");
  const auto record = _store.findCase(caseId);
  if (!record || record->botId != request.id) return errorResponse(403, "the token is for a case of another bot");
  return jsonResponse(std::move(*sequence));
}

Response SandboxService::saveUserProfile(const ServiceRequest& request, const std::string& caseId) {
  const auto body = decodeBody<UserProfileBody>(request);
  if (!body) return body.error();
  const auto record = _store.findCase(caseId);
  if (!record || body->kestromId != caseId || body->organizationId != record->organizationId)
    return errorResponse(403, "the token is for another case");
  _store.addUserProfile(caseId, request.body);
  return done();
}

Response SandboxService::saveAnswer(const ServiceRequest& request, const std::string& caseId) {
  std::string stored(request.body);
  if (request.document && request.document->root().isObject()) stored = storedAnswer(request.document->root());
  const auto document = foundation::JSONDocument::parse(stored);
  const auto answer = decodeBody<models::BotAPIAnswerDTO>(
      {request.endpoint, request.id, request.head, stored, document ? &*document : nullptr, nullptr});
  if (!answer) return answer.error();
  _store.saveAnswer(caseId, {answer->messageId, answer->moduleId, answer->iterationId}, stored);
  return done();
}

Response SandboxService::submit(const ServiceRequest& request, const std::string& caseId) {
  const auto body = decodeBody<SubmitBody>(request);
  if (!body) return body.error();
  if (body->status.empty()) return errorResponse(422, "status: empty");
  _store.setStatus(caseId, body->status);
  return done();
}

Response SandboxService::address(const ServiceRequest& request) {
  const auto body = decodeBody<GeocodeBody>(request);
  if (!body) return body.error();
  if (std::abs(body->lat) > 90) return errorResponse(422, "lat: not from -90 to 90");
  if (std::abs(body->lng) > 180) return errorResponse(422, "lng: not from -180 to 180");
  return jsonResponse(addressNear({body->lat, body->lng}));
}

Response SandboxService::keepUpload(const ServiceRequest& request, const std::string& caseId) {
  if (!request.upload) return errorResponse(415, "the body must be multipart/form-data with a boundary");
  auto record = request.upload->accept();
  if (!record) return std::move(record.error());
  try {
    _store.addMedia(caseId, *record);
  } catch (const DatabaseFault&) {
    std::error_code ignored;
    std::filesystem::remove(_mediaDirectory / record->name, ignored);
    throw;
  }
  foundation::JSONWriter writer;
  writer.beginObject();
  writer.key("url");
  writer.string("https://" + mediaHost(request.head) + "/media/" + record->name);
  writer.endObject();
  return jsonResponse(std::move(writer).text());
}

}  // namespace kestrom::sandbox
