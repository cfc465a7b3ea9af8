#include "Platform/Networking/CurlURLSession.hpp"

#include "Platform/Networking/CurlLoop.hpp"
#include "Platform/Networking/SessionTask.hpp"

#include <pthread.h>

#include <utility>

namespace kestrom::networking {

CurlURLSession::CurlURLSession(CurlSessionConfiguration configuration, reactive::Scheduler* delegateQueue,
                               NetworkProbe hasNetwork)
    : _loop(std::make_shared<CurlLoop>(std::move(configuration), delegateQueue, std::move(hasNetwork))),
      _thread([loop = _loop] { loop->run(); }) {
  pthread_setname_np(_thread.native_handle(), "kestrom-network");
}

CurlURLSession::~CurlURLSession() {
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
  _loop->start(task);
  return reactive::AnyCancellable(std::move(task));
}

}  // namespace kestrom::networking
