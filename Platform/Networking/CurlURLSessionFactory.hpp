#pragma once

#include "Platform/Networking/CurlURLSession.hpp"

#include <memory>
#include <utility>

namespace kestrom::networking {

/// Makes sessions of one configuration.
class CurlURLSessionFactory final : public URLSessionFactory {
 public:
  /// `idleQueue`, as long as it exists, may relieve the threads of sessions that have no delegate queue.
  CurlURLSessionFactory(CurlSessionConfiguration configuration, std::weak_ptr<reactive::SerialQueue> idleQueue)
      : _configuration(std::move(configuration)), _idleQueue(std::move(idleQueue)) {}

  std::shared_ptr<URLSession> makeSession(reactive::Scheduler* delegateQueue) override {
    const auto idleQueue = delegateQueue ? nullptr : _idleQueue.lock();
    return std::make_shared<CurlURLSession>(_configuration, delegateQueue, hasNetworkInterface, idleQueue.get());
  }

 private:
  const CurlSessionConfiguration _configuration;
  const std::weak_ptr<reactive::SerialQueue> _idleQueue;
};

}  // namespace kestrom::networking
