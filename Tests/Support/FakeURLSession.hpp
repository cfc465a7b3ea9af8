#pragma once

#include "Kestrom/Platform/URLSession.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrom::tests {

/// A session without a network: keeps what it is asked for, and answers when it is told. One thread.
class FakeURLSession final : public networking::URLSession {
 public:
  struct Task {
    networking::URLRequest request;
    std::optional<foundation::URL> file;
    DataCompletion completion;
    bool isCancelled = false;
  };

  reactive::AnyCancellable dataTask(networking::URLRequest request, DataCompletion completion) override {
    return start({std::move(request), std::nullopt, std::move(completion)});
  }
  reactive::AnyCancellable uploadTask(networking::URLRequest request, foundation::URL file,
                                      DataCompletion completion) override {
    return start({std::move(request), std::move(file), std::move(completion)});
  }
  reactive::AnyCancellable downloadTask(networking::URLRequest, DownloadCompletion) override { return {}; }

  /// Answers the next tasks at once, inside the call that starts them.
  void answerAtOnce(int status, std::string_view body) { _standing = answer(status, body); }

  void finish(std::size_t index, int status, std::string_view body) {
    complete(index, answer(status, body)(*tasks[index]));
  }
  void fail(std::size_t index, networking::URLError::Code code) {
    complete(index, std::unexpected(networking::URLError{code, "made by a test"}));
  }
  void complete(std::size_t index, std::expected<networking::DataResponse, networking::URLError> result) {
    if (!tasks[index]->isCancelled) std::exchange(tasks[index]->completion, nullptr)(std::move(result));
  }

  std::vector<std::shared_ptr<Task>> tasks;

 private:
  using Answer = std::function<networking::DataResponse(const Task&)>;

  static Answer answer(int status, std::string_view body) {
    return [status, text = std::string(body)](const Task& task) {
      return networking::DataResponse{{text.begin(), text.end()},
                                      networking::HTTPURLResponse{task.request.url, status, {}}};
    };
  }

  reactive::AnyCancellable start(Task given) {
    auto task = std::make_shared<Task>(std::move(given));
    tasks.push_back(task);
    if (_standing) {
      std::exchange(task->completion, nullptr)(_standing(*task));
      return {};
    }
    return reactive::AnyCancellable([task] {
      task->isCancelled = true;
      task->completion = nullptr;
    });
  }

  Answer _standing;
};

}  // namespace kestrom::tests
