#pragma once

#include "Core/Services/Networking/REST/MultipartParameter.hpp"
#include "Kestrom/Platform/Bytes.hpp"
#include "Kestrom/Platform/Clock.hpp"
#include "Kestrom/Platform/URLRequest.hpp"
#include "Platform/Foundation/JSONCoding.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kestrom::services {

enum class RESTMethod : std::uint8_t { get, head, post, put, patch, del };

/// One call of the server: what it is made of, and how it becomes a request of the platform. Immutable.
class RESTRequest {
 public:
  virtual ~RESTRequest() = default;

  virtual std::string scheme() const { return "https"; }
  /// That of the environment which is current at this moment.
  virtual std::string host() const;
  /// As plain text; the URL percent-encodes what it must.
  virtual std::string path() const = 0;
  virtual std::map<std::string, std::string> queryParameters() const { return {}; }
  virtual RESTMethod method() const = 0;
  /// Absent when there is none, and when the value has no form in JSON: such a request goes out without a body.
  virtual std::optional<foundation::Bytes> body(const foundation::Clock& clock) const = 0;
  virtual networking::HTTPHeaders headers() const = 0;

  /// The request of the platform, as of this moment: the host of the present environment, the present time where the
  /// body holds one. It may wait 60 seconds for bytes.
  networking::URLRequest urlRequest(const foundation::Clock& clock) const;
};

/// A request whose body, if it has one, is JSON.
class CodableRESTRequest : public RESTRequest {
 public:
  networking::HTTPHeaders headers() const override;

 protected:
  /// The JSON of a record, absent if a number in it is none that JSON knows.
  template <class Record>
  static std::optional<foundation::Bytes> encoded(const Record& record, foundation::DateStrategy dates) {
    foundation::JSONWriter writer(dates);
    foundation::Coder<Record>::encode(record, writer);
    return bytesOf(std::move(writer));
  }
  /// The JSON that was written, under the same condition.
  static std::optional<foundation::Bytes> bytesOf(foundation::JSONWriter writer);
  /// An object of texts.
  static std::optional<foundation::Bytes> encodedTexts(
      std::initializer_list<std::pair<std::string_view, std::string_view>> members);
};

/// A request that carries files in a multipart body, which goes through a file of its own.
class UploadRESTRequest : public RESTRequest {
 public:
  std::optional<foundation::Bytes> body(const foundation::Clock&) const override { return std::nullopt; }
  networking::HTTPHeaders headers() const override;

  /// What separates the parts; unique for each upload.
  virtual std::string boundary() const = 0;
  virtual std::vector<MultipartParameter> parameters() const = 0;
};

}  // namespace kestrom::services
