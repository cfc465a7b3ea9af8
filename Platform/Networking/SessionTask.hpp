#pragma once

#include "Kestrom/Platform/AnyCancellable.hpp"
#include "Kestrom/Platform/URLSession.hpp"
#include "Platform/Networking/ResponseContent.hpp"

#include <expected>
#include <memory>
#include <mutex>
#include <optional>
#include <variant>

namespace kestrom::networking {

class CurlLoop;

/// One task of a session: what is to be done, and whom to tell. Shared by the token, the loop and the queue that
/// completes it; whichever of them takes the completion first decides how the task ends.
class SessionTask final : public reactive::CancelTarget {
 public:
  using Completion = std::variant<URLSession::DataCompletion, URLSession::DownloadCompletion>;

  struct Answer {
    HTTPURLResponse response;
    ResponseContent content;
  };
  using Outcome = std::expected<Answer, URLError>;

  SessionTask(std::weak_ptr<CurlLoop> loop, URLRequest request, std::optional<foundation::URL> file,
              Completion completion);

  const URLRequest& request() const { return _request; }
  /// The file that is the content of the request, in place of its own.
  const std::optional<foundation::URL>& file() const { return _file; }
  bool isDownload() const { return _isDownload; }

  /// Calls the completion, on the calling thread, unless the task is cancelled.
  void complete(Outcome outcome);

  /// Destroys the completion on the calling thread, then has the loop end the exchange.
  void cancel() override;
  bool isDone() const override;

 private:
  std::optional<Completion> takeCompletion();

  const std::weak_ptr<CurlLoop> _loop;
  const URLRequest _request;
  const std::optional<foundation::URL> _file;
  const bool _isDownload;
  mutable std::mutex _mutex;
  std::optional<Completion> _completion;
};

}  // namespace kestrom::networking
