#include "Platform/Networking/CurlURLSession.hpp"

#include "Platform/Networking/CurlLoop.hpp"
#include "Platform/Networking/SessionTask.hpp"

#include <pthread.h>

#include <system_error>
#include <utility>

namespace kestrom::networking {

CurlURLSession::CurlURLSession(CurlSessionConfiguration configuration, reactive::Scheduler* delegateQueue,
                               NetworkProbe hasNetwork, reactive::SerialQueue* idleQueue)
    : _delegateQueue(delegateQueue),
      _loop(std::make_shared<CurlLoop>(std::move(configuration), delegateQueue, std::move(hasNetwork))) {
  if (!_loop->isUsable()) return;
  try {
    _thread = std::thread([loop = _loop] { loop->run(); });
  } catch (const std::system_error&) {
    return;
  }
  if (idleQueue) idleQueue->offer(_loop);
  pthread_setname_np(_thread.native_handle(), "kestrom-network");
}

CurlURLSession::~CurlURLSession() {
  if (!_thread.joinable()) return;
  _loop->stop();
  if (_thread.get_id() == std::this_thread::get_id()) {
    _thread.detach();
  } else {
    _thread.join();
  }
}

reactive::AnyCancellable CurlURLSession::dataTask(URLRequest request, DataCompletion completion) {
  return start(reactive::makeRef<SessionTask>(_loop, std::move(request), std::nullopt, std::move(completion)));
}

reactive::AnyCancellable CurlURLSession::uploadTask(URLRequest request, foundation::URL file,
                                                    DataCompletion completion) {
  return start(reactive::makeRef<SessionTask>(_loop, std::move(request), std::move(file), std::move(completion)));
}

reactive::AnyCancellable CurlURLSession::downloadTask(URLRequest request, DownloadCompletion completion) {
  return start(reactive::makeRef<SessionTask>(_loop, std::move(request), std::nullopt, std::move(completion)));
}

reactive::AnyCancellable CurlURLSession::start(reactive::Ref<SessionTask> task) {
  if (_thread.joinable()) {
    _loop->start(task);
  } else {
    const auto fail = [task] { task->complete(std::unexpected(CurlLoop::unusableError())); };
    _delegateQueue ? _delegateQueue->schedule(fail) : fail();
  }
  return reactive::AnyCancellable(std::move(task));
}

}  // namespace kestrom::networking
