#pragma once

#include "Kestrom/Platform/URLSession.hpp"
#include "Platform/Networking/CurlSessionConfiguration.hpp"
#include "Platform/Networking/NetworkInterfaces.hpp"
#include "Platform/Reactive/SerialQueue.hpp"

#include <memory>
#include <optional>
#include <thread>

namespace kestrom::networking {

class CurlLoop;
class SessionTask;

/// A session over libcurl: https only, certificates always checked, HTTP/2 where the server has it, no cookies, no
/// cache, no redirects, no proxy. It has one thread, on which completions run when there is no delegate queue. An idle
/// queue that is offered relieves that thread while it has nothing else to do: then they run there.
///
/// When it goes, its tasks end with `cancelled`: with a delegate queue that is scheduled there before the destructor
/// returns, without one it has been called before the destructor returns. A session that goes in a completion on its
/// own thread lets that thread end by itself, after the completion: the other tasks' calls come then.
///
/// A session for which the system has no descriptors or no thread left fails each task with `unknown`: on the delegate
/// queue, or, as it has no thread, on the calling one.
class CurlURLSession final : public URLSession {
 public:
  explicit CurlURLSession(CurlSessionConfiguration configuration, reactive::Scheduler* delegateQueue = nullptr,
                          NetworkProbe hasNetwork = hasNetworkInterface, reactive::SerialQueue* idleQueue = nullptr);
  CurlURLSession(const CurlURLSession&) = delete;
  CurlURLSession& operator=(const CurlURLSession&) = delete;
  ~CurlURLSession() override;

  reactive::AnyCancellable dataTask(URLRequest request, DataCompletion completion) override;
  reactive::AnyCancellable uploadTask(URLRequest request, foundation::URL file, DataCompletion completion) override;
  reactive::AnyCancellable downloadTask(URLRequest request, DownloadCompletion completion) override;

 private:
  reactive::AnyCancellable start(reactive::Ref<SessionTask> task);

  reactive::Scheduler* const _delegateQueue;
  const std::shared_ptr<CurlLoop> _loop;
  /// None when the system has not given what the session takes.
  std::thread _thread;
};

}  // namespace kestrom::networking
