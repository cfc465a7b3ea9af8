#pragma once

#include "Kestrom/Platform/URLSession.hpp"
#include "Platform/Networking/CurlSessionConfiguration.hpp"
#include "Platform/Networking/NetworkInterfaces.hpp"

#include <memory>
#include <optional>
#include <thread>

namespace kestrom::networking {

class CurlLoop;
class SessionTask;

/// A session over libcurl: https only, certificates always checked, HTTP/2 where the server has it, no cookies, no
/// cache, no redirects, no proxy. It has one thread, on which completions run when there is no delegate queue.
///
/// When it goes, its tasks end with `cancelled`: with a delegate queue that is scheduled there before the destructor
/// returns, without one it has been called before the destructor returns. A session that goes in a completion on its
/// own thread lets that thread end by itself, after the completion: the other tasks' calls come then.
class CurlURLSession final : public URLSession {
 public:
  explicit CurlURLSession(CurlSessionConfiguration configuration, reactive::Scheduler* delegateQueue = nullptr,
                          NetworkProbe hasNetwork = hasNetworkInterface);
  CurlURLSession(const CurlURLSession&) = delete;
  CurlURLSession& operator=(const CurlURLSession&) = delete;
  ~CurlURLSession() override;

  reactive::AnyCancellable dataTask(URLRequest request, DataCompletion completion) override;
  reactive::AnyCancellable uploadTask(URLRequest request, foundation::URL file, DataCompletion completion) override;
  reactive::AnyCancellable downloadTask(URLRequest request, DownloadCompletion completion) override;

 private:
  reactive::AnyCancellable start(reactive::Ref<SessionTask> task);

  const std::shared_ptr<CurlLoop> _loop;
  std::thread _thread;
};

}  // namespace kestrom::networking
