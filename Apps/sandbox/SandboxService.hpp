#pragma once

#include "Apps/sandbox/HTTPMessage.hpp"
#include "Apps/sandbox/Routes.hpp"
#include "Apps/sandbox/SandboxStore.hpp"
#include "Apps/sandbox/UploadReceiver.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <filesystem>
#include <string_view>

namespace kestrom::sandbox {

/// A request that has come in whole.
struct ServiceRequest {
  Endpoint endpoint;
  /// The case, bot or medium that the path names.
  std::string_view id;
  const RequestHead& head;
  std::string_view body;
  /// The body, if it is JSON.
  const foundation::JSONDocument* document = nullptr;
  /// What came of a multipart body.
  UploadReceiver* upload = nullptr;
};

/// What the server does and answers. Any thread.
class SandboxService {
 public:
  /// `store` outlives the service.
  SandboxService(SandboxStore& store, std::filesystem::path mediaDirectory)
      : _store(store), _mediaDirectory(std::move(mediaDirectory)) {}

  Response answer(const ServiceRequest& request);

  /// The answer to a request that needs a token and has none that is known; absent when it has one.
  std::optional<Response> refusalOfHead(const RequestHead& head);

 private:
  std::expected<std::string, Response> caseOfHolder(const RequestHead& head);

  Response answerAnybody(const ServiceRequest& request);
  Response answerHolder(const ServiceRequest& request, const std::string& caseId);
  Response answerOnCase(const ServiceRequest& request, const std::string& caseId);

  Response logIn(const ServiceRequest& request);
  Response checkStatus(const ServiceRequest& request);
  Response brand(const ServiceRequest& request);
  Response medium(const ServiceRequest& request);
  Response bot(const ServiceRequest& request, const std::string& caseId);
  Response saveUserProfile(const ServiceRequest& request, const std::string& caseId);
  Response saveAnswer(const ServiceRequest& request, const std::string& caseId);
  Response submit(const ServiceRequest& request, const std::string& caseId);
  Response address(const ServiceRequest& request);
  Response keepUpload(const ServiceRequest& request, const std::string& caseId);

  SandboxStore& _store;
  std::filesystem::path _mediaDirectory;
};

}  // namespace kestrom::sandbox
