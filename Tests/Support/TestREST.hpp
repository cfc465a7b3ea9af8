#pragma once

#include "Core/SDK/SDKStore.hpp"
#include "Core/Services/Networking/REST/AuthenticatedRequestInserter.hpp"
#include "Core/Services/Networking/REST/ErrorHandlers/GenericErrorHandler.hpp"
#include "Core/Services/Networking/REST/RESTNetworkService.hpp"
#include "Platform/Reactive/ManualScheduler.hpp"
#include "Tests/Support/FakeClock.hpp"
#include "Tests/Support/FakeURLSession.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::tests {

/// The road to the server with nobody at its end but the test.
struct TestREST {
  std::shared_ptr<const services::RESTService> service() {
    return std::make_shared<services::RESTNetworkService>(services::RESTNetworkService::Parts{
        .session = session,
        .requestModifiers = {std::make_shared<services::AuthenticatedRequestInserter>(store)},
        .errorHandlers = {std::make_shared<services::GenericErrorHandler>()},
        .multipartFileWriter = nullptr,
        .mainQueue = mainQueue,
        .clock = clock,
    });
  }

  /// The newest request gets this, and the main queue runs.
  void answer(int status, std::string_view body) {
    session->finish(session->tasks.size() - 1, status, body);
    mainQueue.runReady();
  }
  void fail(networking::URLError::Code code) {
    session->fail(session->tasks.size() - 1, code);
    mainQueue.runReady();
  }

  /// What was asked for so far, each as "POST /path {body}".
  std::vector<std::string> sent() const {
    std::vector<std::string> lines;
    for (const auto& task : session->tasks) {
      std::string line = task->request.method + " " + task->request.url.path();
      if (const auto& body = task->request.body) line.append(" ").append(body->begin(), body->end());
      lines.push_back(std::move(line));
    }
    return lines;
  }

  reactive::ManualScheduler mainQueue;
  FakeClock clock;
  std::shared_ptr<FakeURLSession> session = std::make_shared<FakeURLSession>();
  std::shared_ptr<session::SessionStore> store = std::make_shared<session::SDKStore>();
};

}  // namespace kestrom::tests
