#pragma once

#include "Core/Services/Networking/REST/OutputStreamError.hpp"
#include "Core/Services/Networking/REST/RESTRequest.hpp"
#include "Kestrom/Platform/FileError.hpp"
#include "Kestrom/Platform/URL.hpp"

#include <expected>

namespace kestrom::services {

/// Brings the multipart body of an upload into a file, so that it never lies in memory as a whole. Any thread.
class MultipartFileWriter {
 public:
  virtual ~MultipartFileWriter() = default;

  /// The file that was written; the caller removes it.
  virtual std::expected<foundation::URL, OutputStreamError> write(const UploadRESTRequest& request) = 0;

  virtual std::expected<void, foundation::FileError> remove(const foundation::URL& file) = 0;
};

}  // namespace kestrom::services
