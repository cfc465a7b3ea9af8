#pragma once

#include "Kestrom/Export.hpp"
#include "Kestrom/Platform/AnyCancellable.hpp"
#include "Kestrom/Platform/Bytes.hpp"
#include "Kestrom/Platform/Scheduler.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Kestrom/Platform/URLError.hpp"
#include "Kestrom/Platform/URLRequest.hpp"
#include "Kestrom/Platform/URLResponse.hpp"

#include <expected>
#include <functional>
#include <memory>

namespace kestrom::networking {

/// A whole answer.
struct DataResponse {
  foundation::Bytes data;
  URLResponse response;
};

/// An answer whose content lies in a file.
struct DownloadResponse {
  foundation::URL file;
  URLResponse response;
};

/// Sends requests and brings the answers. One request is one attempt: nothing is repeated, and an answer that points
/// elsewhere (a redirect) is given as it is. All members may be called from any thread.
///
/// A task runs from the call on. Its completion is called exactly once, on the session's queue, unless the token is
/// dropped first: then the exchange is ended and the completion is dropped without a call. A call that is under way on
/// another thread at that moment is not waited for. When the session goes, its tasks end with `cancelled`.
class KESTROM_API URLSession {
 public:
  using DataCompletion = std::move_only_function<void(std::expected<DataResponse, URLError>)>;
  using DownloadCompletion = std::move_only_function<void(std::expected<DownloadResponse, URLError>)>;

  virtual ~URLSession() = default;

  virtual reactive::AnyCancellable dataTask(URLRequest request, DataCompletion completion) = 0;

  /// Sends the content of `file` as the body, without reading it whole. The request's own body does not count.
  virtual reactive::AnyCancellable uploadTask(URLRequest request, foundation::URL file, DataCompletion completion) = 0;

  /// Writes the content of the answer, whatever its status, to a new file in the temporary directory, which is the
  /// receiver's from then on.
  virtual reactive::AnyCancellable downloadTask(URLRequest request, DownloadCompletion completion) = 0;
};

/// Makes sessions.
class KESTROM_API URLSessionFactory {
 public:
  virtual ~URLSessionFactory() = default;

  /// A session that completes on `delegateQueue`, which must outlive it; null stands for a queue of its own.
  virtual std::shared_ptr<URLSession> makeSession(reactive::Scheduler* delegateQueue) = 0;
};

}  // namespace kestrom::networking
