#pragma once

#include "Core/Services/Networking/REST/MIMEType.hpp"
#include "Core/Services/Networking/REST/RESTRequest.hpp"

#include <string>
#include <utility>
#include <vector>

namespace kestrom::services {

/// A photo, a video or a bundle of files on its way to the server.
class BotMediaUploadRESTRequest final : public UploadRESTRequest {
 public:
  /// What all kinds of media come with. The two identifiers stay on the device.
  struct Media {
    MIMEType mimeType = MIMEType::jpeg;
    std::string kestromID;
    std::string organizationID;
    std::string filename;
    std::string boundry;
  };

  static BotMediaUploadRESTRequest uploadData(foundation::Bytes data, Media media) {
    return {std::move(data), std::move(media)};
  }
  static BotMediaUploadRESTRequest uploadVideo(foundation::URL videoURL, Media media) {
    return {std::move(videoURL), std::move(media)};
  }
  static BotMediaUploadRESTRequest uploadBundle(foundation::URL bundleURL, Media media) {
    return {std::move(bundleURL), std::move(media)};
  }

  std::string path() const override { return "/integrations/firebase/upload-media"; }
  RESTMethod method() const override { return RESTMethod::post; }
  std::string boundary() const override { return _media.boundry; }
  std::vector<MultipartParameter> parameters() const override {
    return {{"media", _media.filename, std::string(rawValue(_media.mimeType)), _content}};
  }

 private:
  BotMediaUploadRESTRequest(MultipartParameter::MultipartData content, Media media)
      : _content(std::move(content)), _media(std::move(media)) {}

  MultipartParameter::MultipartData _content;
  Media _media;
};

}  // namespace kestrom::services
