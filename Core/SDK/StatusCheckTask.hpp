#pragma once

#include "Core/UseCases/StatusCheckUseCase.hpp"
#include "Kestrom/KestromError.hpp"
#include "Kestrom/KestromStatus.hpp"
#include "Kestrom/Platform/AnyCancellable.hpp"

#include <expected>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace kestrom::sdk {

/// One status check on its way: runs until its result is there and then lets everything go. Safe from any thread.
class StatusCheckTask final {
 public:
  using Result = std::expected<KestromStatus, KestromError>;
  using Resume = std::move_only_function<void(Result)>;

  /// Starts on this thread; `resume` is called exactly once, on the main thread.
  static void start(const usecases::StatusCheckUseCase& useCase, const std::string& zipCode,
                    const std::string& accessCode, Resume resume);

 private:
  explicit StatusCheckTask(Resume resume) : _resume(std::move(resume)) {}

  void finish(Result result);
  void hold(reactive::AnyCancellable subscription);

  std::mutex _mutex;
  Resume _resume;
  bool _isFinished = false;
  reactive::AnyCancellable _subscription;
};

}  // namespace kestrom::sdk
