#pragma once

#include "Kestrom/Platform/Scheduler.hpp"
#include "Platform/Networking/CurlEasyHandle.hpp"
#include "Platform/Networking/CurlSessionConfiguration.hpp"
#include "Platform/Networking/KeptConnections.hpp"
#include "Platform/Networking/NetworkInterfaces.hpp"
#include "Platform/Networking/RequestContent.hpp"
#include "Platform/Networking/ResponseHead.hpp"
#include "Platform/Networking/SessionTask.hpp"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

struct curl_slist;

namespace kestrom::networking {

/// One request on its way and the answer as far as it has come. It holds what libcurl points to, so it must stay where
/// it is while the handle runs. Used by whoever drives the exchanges, one at a time.
class CurlExchange {
 public:
  /// A handle for exchanges of the configuration, whose connections are told to `keptConnections`; null when libcurl
  /// does not take what keeps an exchange safe. `connectTo` is a list of libcurl's, or null. All of them outlive it.
  static CurlEasyHandle makeHandle(const CurlSessionConfiguration& configuration, curl_slist* connectTo,
                                   KeptConnections& keptConnections);

  CurlExchange(reactive::Ref<SessionTask> task, CurlEasyHandle handle, KeptConnections& keptConnections);
  CurlExchange(const CurlExchange&) = delete;
  CurlExchange& operator=(const CurlExchange&) = delete;
  ~CurlExchange();

  const SessionTask& task() const { return *_task; }
  void* handle() const { return _handle.get(); }
  /// The handle for another exchange, free of this one.
  CurlEasyHandle releaseHandle();

  /// Opens the files and tells the handle what to do. On a failure nothing may be sent.
  std::expected<void, URLError> prepare(const CurlSessionConfiguration& configuration);

  /// Bytes have come, or could go.
  void noteActivity();
  /// When it has timed out unless bytes come or go before.
  reactive::TimePoint deadline() const { return _lastActivity + _timeout; }

  /// What became of it, by libcurl's result. To be called once.
  SessionTask::Outcome takeOutcome(int result, const NetworkProbe& hasNetwork);

  reactive::Ref<SessionTask> takeTask() { return std::move(_task); }

 private:
  struct Callbacks;
  struct FreeList {
    void operator()(curl_slist* list) const;
  };
  using List = std::unique_ptr<curl_slist, FreeList>;

  template <class Value>
  void set(int option, Value value);
  static void append(List& list, const std::string& text);
  void setRequest();
  void setHeaders();
  std::expected<void, URLError> openContents(const CurlSessionConfiguration& configuration);
  URLError errorOf(int result, const NetworkProbe& hasNetwork) const;
  void keepConnection();

  reactive::Ref<SessionTask> _task;
  CurlEasyHandle _handle;
  KeptConnections& _keptConnections;
  List _headers;
  std::optional<RequestContent> _requestContent;
  std::optional<ResponseContent> _responseContent;
  ResponseHead _responseHead;
  /// What libcurl says of a failure beside its code, of the size that it asks for.
  std::array<char, 256> _errorText{};
  /// Why a callback ended the exchange.
  std::optional<URLError> _failure;
  /// The first option that libcurl did not take.
  int _refusal = 0;
  int _attemptCount = 0;
  reactive::Duration _timeout;
  reactive::TimePoint _lastActivity;
};

}  // namespace kestrom::networking
