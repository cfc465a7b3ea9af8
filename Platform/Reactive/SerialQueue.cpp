#include "Platform/Reactive/SerialQueue.hpp"

#include <pthread.h>

namespace kestrom::reactive {

SerialQueue::SerialQueue(const std::string& label) : _thread([this] { _queue.run(); }) {
  pthread_setname_np(_thread.native_handle(), label.substr(0, 15).c_str());
}

SerialQueue::~SerialQueue() {
  _queue.stop();
  _thread.join();
}

}  // namespace kestrom::reactive
