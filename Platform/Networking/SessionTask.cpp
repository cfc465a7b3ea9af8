#include "Platform/Networking/SessionTask.hpp"

#include "Platform/Networking/CurlLoop.hpp"

#include <utility>

namespace kestrom::networking {

namespace {

void call(URLSession::DataCompletion& completion, SessionTask::Outcome outcome) {
  if (!outcome) return completion(std::unexpected(std::move(outcome.error())));
  completion(DataResponse{outcome->content.takeBytes(), std::move(outcome->response)});
}

void call(URLSession::DownloadCompletion& completion, SessionTask::Outcome outcome) {
  if (!outcome) return completion(std::unexpected(std::move(outcome.error())));
  completion(DownloadResponse{outcome->content.takeFile(), std::move(outcome->response)});
}

}  // namespace

SessionTask::SessionTask(std::weak_ptr<CurlLoop> loop, URLRequest request, std::optional<foundation::URL> file,
                         Completion completion)
    : _loop(std::move(loop)),
      _request(std::move(request)),
      _file(std::move(file)),
      _isDownload(std::holds_alternative<URLSession::DownloadCompletion>(completion)),
      _completion(std::move(completion)) {}

void SessionTask::complete(Outcome outcome) {
  auto completion = takeCompletion();
  if (completion) std::visit([&](auto& function) { call(function, std::move(outcome)); }, *completion);
}

void SessionTask::cancel() {
  if (!takeCompletion()) return;
  if (const auto loop = _loop.lock()) loop->drop(reactive::Ref<SessionTask>(this));
}

bool SessionTask::isDone() const {
  const std::lock_guard lock(_mutex);
  return !_completion;
}

std::optional<SessionTask::Completion> SessionTask::takeCompletion() {
  const std::lock_guard lock(_mutex);
  return std::exchange(_completion, std::nullopt);
}

}  // namespace kestrom::networking
