#include "Core/Services/Networking/REST/RESTRequest.hpp"

#include "Core/SDK/ProcessValues.hpp"
#include "Core/Services/Networking/REST/APIHosts.hpp"
#include "Platform/Foundation/FatalError.hpp"
#include "Platform/Foundation/URLComponents.hpp"

#include <array>
#include <chrono>
#include <cstddef>

namespace kestrom::services {

namespace {

std::string wireText(RESTMethod method) {
  constexpr std::array kTexts{"GET", "HEAD", "POST", "PUT", "PATCH", "DELETE"};
  return kTexts[static_cast<std::size_t>(method)];
}

foundation::URL urlOf(const RESTRequest& request) {
  foundation::URLComponents components;
  components.setScheme(request.scheme());
  components.setHost(request.host());
  components.setPath(request.path());
  const auto parameters = request.queryParameters();
  if (!parameters.empty()) {
    std::vector<foundation::URLQueryItem> items;
    for (const auto& [name, value] : parameters) items.push_back({name, value});
    components.setQueryItems(items);
  }
  auto url = components.url();
  if (!url) foundation::fatalError("Cannot create URL from provided data");
  return std::move(*url);
}

}  // namespace

std::string RESTRequest::host() const {
  return std::string(apiHost(session::currentEnvironment()));
}

networking::URLRequest RESTRequest::urlRequest(const foundation::Clock& clock) const {
  networking::URLRequest request{
      .url = urlOf(*this),
      .method = wireText(method()),
      .body = body(clock),
      .timeoutInterval = std::chrono::seconds(60),
  };
  for (const auto& header : headers()) request.headers.set(header.name, header.value);
  return request;
}

networking::HTTPHeaders CodableRESTRequest::headers() const {
  networking::HTTPHeaders headers;
  headers.set("Content-Type", "application/json");
  return headers;
}

std::optional<foundation::Bytes> CodableRESTRequest::bytesOf(foundation::JSONWriter writer) {
  if (!writer.isFaithful()) return std::nullopt;
  const std::string& text = writer.text();
  return foundation::Bytes(text.begin(), text.end());
}

std::optional<foundation::Bytes> CodableRESTRequest::encodedTexts(
    std::initializer_list<std::pair<std::string_view, std::string_view>> members) {
  foundation::JSONWriter writer;
  writer.beginObject();
  for (const auto& [key, text] : members) {
    writer.key(key);
    writer.string(text);
  }
  writer.endObject();
  return bytesOf(std::move(writer));
}

networking::HTTPHeaders UploadRESTRequest::headers() const {
  networking::HTTPHeaders headers;
  headers.set("Content-Type", "multipart/form-data; boundary=" + boundary());
  return headers;
}

}  // namespace kestrom::services
