#pragma once

#include "Platform/Networking/CurlURLSession.hpp"

#include <memory>
#include <utility>

namespace kestrom::networking {

/// Makes sessions of one configuration.
class CurlURLSessionFactory final : public URLSessionFactory {
 public:
  explicit CurlURLSessionFactory(CurlSessionConfiguration configuration) : _configuration(std::move(configuration)) {}

  std::shared_ptr<URLSession> makeSession(reactive::Scheduler* delegateQueue) override {
    return std::make_shared<CurlURLSession>(_configuration, delegateQueue);
  }

 private:
  const CurlSessionConfiguration _configuration;
};

}  // namespace kestrom::networking
