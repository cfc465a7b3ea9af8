#include "Core/SDK/StatusCheckTask.hpp"

#include "Core/SDK/StatusCheckFailure.hpp"

#include <utility>

namespace kestrom::sdk {

void StatusCheckTask::start(const usecases::StatusCheckUseCase& useCase, const std::string& zipCode,
                            const std::string& accessCode, Resume resume) {
  using models::StatusCheckResponseBody;
  using services::RESTError;
  const std::shared_ptr<StatusCheckTask> task(new StatusCheckTask(std::move(resume)));
  task->hold(useCase.execute(zipCode, accessCode)
                 .sink(
                     [task](reactive::Completion<RESTError>&& completion) {
                       // An end without a value would leave the host waiting.
                       task->finish(std::unexpected(completion.isFailure() ? statusCheckFailure(completion.failure())
                                                                           : KestromError::unknown()));
                     },
                     [task](StatusCheckResponseBody&& body) {
                       task->finish(KestromStatus(std::move(body.status), std::move(body.expiration)));
                     }));
}

void StatusCheckTask::finish(Result result) {
  Resume resume;
  reactive::AnyCancellable done;
  {
    const std::lock_guard lock(_mutex);
    if (_isFinished) return;
    _isFinished = true;
    resume = std::move(_resume);
    done = std::move(_subscription);
  }
  resume(std::move(result));
}

void StatusCheckTask::hold(reactive::AnyCancellable subscription) {
  const std::lock_guard lock(_mutex);
  // The result may be quicker than the token.
  if (!_isFinished) _subscription = std::move(subscription);
}

}  // namespace kestrom::sdk
