#include "Platform/Networking/CurlExchange.hpp"

#include "Kestrom/Platform/MainQueue.hpp"
#include "Platform/Networking/HTTPText.hpp"
#include "Platform/Networking/RequestRules.hpp"

#include <curl/curl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <string>
#include <utility>

namespace kestrom::networking {

namespace {

using Code = URLError::Code;

/// Longer than any wait makes sense, and far from where adding it to the present would overflow.
constexpr reactive::Duration kMaximumTimeout = std::chrono::hours(24 * 365);

/// The least that libcurl takes, and enough for nearly every request; files are read in larger pieces.
constexpr long kBufferSize = 16 * 1024;
constexpr long kFileBufferSize = 64 * 1024;

constexpr int kSwitchingProtocols = 101;

/// What frames the content on the wire is the session's own affair: the content itself says how long it is.
bool isFraming(std::string_view name) {
  return isSameName(name, "Content-Length") || isSameName(name, "Transfer-Encoding");
}

/// CURLE_TOO_LARGE, which libcurl has since 8.6.
constexpr auto kTooLarge = static_cast<CURLcode>(100);

bool isUnreachable(long systemError) {
  constexpr std::array kErrors = {ENETUNREACH, EHOSTUNREACH, ENETDOWN, EHOSTDOWN, EADDRNOTAVAIL};
  return std::ranges::find(kErrors, systemError) != kErrors.end();
}

Code codeOf(CURLcode result) {
  switch (result) {
    case CURLE_URL_MALFORMAT:
      return Code::unsupportedURL;
    case CURLE_OPERATION_TIMEDOUT:
      return Code::timedOut;
    case CURLE_COULDNT_RESOLVE_HOST:
      return Code::cannotFindHost;
    case CURLE_COULDNT_CONNECT:
      return Code::cannotConnectToHost;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_FAIL_REWIND:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
      return Code::networkConnectionLost;
    // The scheme has been looked at before, so it is the version of the answer's protocol that is not supported.
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
      return Code::badServerResponse;
    case CURLE_LOGIN_DENIED:
    case CURLE_AUTH_ERROR:
      return Code::userAuthenticationRequired;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ISSUER_ERROR:
      return Code::serverCertificateUntrusted;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_USE_SSL_FAILED:
      return Code::secureConnectionFailed;
    case CURLE_FILESIZE_EXCEEDED:
    case kTooLarge:
      return Code::dataLengthExceedsMaximum;
    default:
      return Code::unknown;
  }
}

}  // namespace

void CurlEasyCleanup::operator()(void* handle) const {
  curl_easy_cleanup(handle);
}

void CurlExchange::FreeList::operator()(curl_slist* list) const {
  curl_slist_free_all(list);
}

/// What libcurl calls. Nothing is thrown through it: memory that runs out ends the exchange.
struct CurlExchange::Callbacks {
  /// The result of `step`, which fails with an error; the exchange keeps the error, and libcurl gets `failure`.
  template <class Step>
  static std::size_t guarded(CurlExchange& exchange, std::size_t failure, Step step) noexcept {
    try {
      const std::expected<std::size_t, URLError> result = step();
      if (result) return *result;
      exchange._failure = result.error();
    } catch (const std::bad_alloc&) {
      exchange._failure = URLError{Code::unknown, "Out of memory"};
    }
    return failure;
  }

  static std::size_t header(char* data, std::size_t, std::size_t count, void* object) noexcept {
    auto& exchange = *static_cast<CurlExchange*>(object);
    // Any other number than that of the bytes is a failure.
    return guarded(exchange, count + 1, [&]() -> std::expected<std::size_t, URLError> {
      if (exchange._responseHead.addLine({data, count})) return count;
      return std::unexpected(URLError{Code::dataLengthExceedsMaximum, "The head of the answer is too large"});
    });
  }

  static std::size_t write(char* data, std::size_t, std::size_t count, void* object) noexcept {
    auto& exchange = *static_cast<CurlExchange*>(object);
    return guarded(exchange, count + 1, [&]() -> std::expected<std::size_t, URLError> {
      auto appended = exchange._responseContent->append(foundation::bytesOf({data, count}));
      if (!appended) return std::unexpected(std::move(appended.error()));
      return count;
    });
  }

  static std::size_t read(char* data, std::size_t, std::size_t count, void* object) noexcept {
    auto& exchange = *static_cast<CurlExchange*>(object);
    return guarded(exchange, CURL_READFUNC_ABORT,
                   [&] { return exchange._requestContent->read({reinterpret_cast<std::uint8_t*>(data), count}); });
  }

  /// Called before the request goes out, once a connection stands. libcurl makes a second attempt by itself when a
  /// connection that it uses again ends before an answer comes; the server may have acted on the first one.
  static int aboutToSend(void* object, char*, char*, int, int) noexcept {
    auto& exchange = *static_cast<CurlExchange*>(object);
    return ++exchange._attemptCount == 1 ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
  }

  static int closeSocket(void* keptConnections, curl_socket_t socket) noexcept {
    return static_cast<KeptConnections*>(keptConnections)->close(socket);
  }
};

CurlEasyHandle CurlExchange::makeHandle(const CurlSessionConfiguration& configuration, curl_slist* connectTo,
                                        KeptConnections& keptConnections) {
  CurlEasyHandle handle(curl_easy_init());
  if (!handle) return handle;
  bool isTaken = true;
  const auto set = [&](CURLoption option, auto value) {
    isTaken = (curl_easy_setopt)(handle.get(), option, value) == CURLE_OK && isTaken;
  };
  // No handler is changed; writing to a connection that is gone raises no signal anyway.
  set(CURLOPT_NOSIGNAL, 1L);
  // A look-up of a name that has been given up goes on by itself, so that the loop need not wait for it.
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_PROTOCOLS_STR, "https");
  // Nothing comes from the environment or the user's files.
  set(CURLOPT_PROXY, "");
  set(CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  set(CURLOPT_TCP_NODELAY, 1L);
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  if (configuration.certificateAuthorityFile) {
    set(CURLOPT_CAINFO, configuration.certificateAuthorityFile->c_str());
    // Its default is the system's directory, which would be trusted beside the file.
    set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
  }
  if (connectTo) set(CURLOPT_CONNECT_TO, connectTo);
  // The library of a device may lack HTTP/2, so a refusal is none.
  (curl_easy_setopt)(handle.get(), CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
  set(CURLOPT_PATH_AS_IS, 1L);
  // All codings that this libcurl knows.
  set(CURLOPT_ACCEPT_ENCODING, "");
  set(CURLOPT_HEADERFUNCTION, &Callbacks::header);
  set(CURLOPT_WRITEFUNCTION, &Callbacks::write);
  set(CURLOPT_READFUNCTION, &Callbacks::read);
  set(CURLOPT_PREREQFUNCTION, &Callbacks::aboutToSend);
  set(CURLOPT_CLOSESOCKETFUNCTION, &Callbacks::closeSocket);
  // A connection lives on after the exchange.
  set(CURLOPT_CLOSESOCKETDATA, &keptConnections);
  return isTaken ? std::move(handle) : nullptr;
}

CurlExchange::CurlExchange(reactive::Ref<SessionTask> task, CurlEasyHandle handle, KeptConnections& keptConnections)
    : _task(std::move(task)),
      _handle(std::move(handle)),
      _keptConnections(keptConnections),
      _timeout(
          std::clamp<reactive::Duration>(_task->request().timeoutInterval, reactive::Duration(0), kMaximumTimeout)),
      _lastActivity(reactive::steadyNow()) {}

CurlExchange::~CurlExchange() = default;

CurlEasyHandle CurlExchange::releaseHandle() {
  // Nothing of this exchange stays, whatever it was.
  set(CURLOPT_HTTPGET, 1L);
  set(CURLOPT_CUSTOMREQUEST, static_cast<const char*>(nullptr));
  set(CURLOPT_POSTFIELDS, static_cast<const char*>(nullptr));
  set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(-1));
  set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(0));
  set(CURLOPT_HTTPHEADER, static_cast<curl_slist*>(nullptr));
  set(CURLOPT_PRIVATE, static_cast<void*>(nullptr));
  set(CURLOPT_ERRORBUFFER, static_cast<char*>(nullptr));
  return std::move(_handle);
}

std::expected<void, URLError> CurlExchange::prepare(const CurlSessionConfiguration& configuration) {
  if (auto fault = faultOf(_task->request())) return std::unexpected(std::move(*fault));
  if (auto opened = openContents(configuration); !opened) return opened;
  setRequest();
  setHeaders();
  // An option that does not stand could be the one that checks the certificate.
  const auto refusal = static_cast<CURLcode>(_refusal);
  if (refusal != CURLE_OK) return std::unexpected(URLError{codeOf(refusal), curl_easy_strerror(refusal)});
  return {};
}

std::expected<void, URLError> CurlExchange::openContents(const CurlSessionConfiguration& configuration) {
  const URLRequest& request = _task->request();
  if (_task->file()) {
    auto content = RequestContent::ofFile(*_task->file());
    if (!content) return std::unexpected(std::move(content.error()));
    _requestContent = std::move(*content);
  } else if (request.body) {
    _requestContent.emplace(*request.body);
  } else if (request.method == "POST" || request.method == "PUT" || request.method == "PATCH") {
    // These say that they have no content, by a length of 0.
    _requestContent.emplace(std::span<const std::uint8_t>());
  }
  if (_requestContent && request.method == "HEAD") {
    return std::unexpected(URLError{Code::invalidRequest, "A HEAD request has no content"});
  }

  if (!_task->isDownload()) {
    _responseContent = ResponseContent::inMemory(configuration.maximumDataSize);
    return {};
  }
  auto content = ResponseContent::inFile(configuration.temporaryDirectory, configuration.maximumDownloadSize);
  if (!content) return std::unexpected(std::move(content.error()));
  _responseContent = std::move(*content);
  return {};
}

template <class Value>
void CurlExchange::set(int option, Value value) {
  const CURLcode result = (curl_easy_setopt)(_handle.get(), static_cast<CURLoption>(option), value);
  if (result != CURLE_OK && _refusal == CURLE_OK) _refusal = result;
}

void CurlExchange::append(List& list, const std::string& text) {
  curl_slist* longer = curl_slist_append(list.get(), text.c_str());
  if (!longer) throw std::bad_alloc();
  // The first element stays the head of the list.
  if (!list) list.reset(longer);
}

void CurlExchange::setRequest() {
  set(CURLOPT_PRIVATE, this);
  set(CURLOPT_ERRORBUFFER, _errorText.data());
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEDATA, this);
  set(CURLOPT_READDATA, this);
  set(CURLOPT_PREREQDATA, this);
  // The loop keeps the time. libcurl has a limit of its own, five minutes until a connection stands, of which it gives
  // each of a host's addresses a share: it gets the request's time, and a second more so as to never come first.
  const auto seconds = std::chrono::ceil<std::chrono::seconds>(_timeout) + std::chrono::seconds(1);
  set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(std::min<std::int64_t>(seconds.count(), 24 * 60 * 60)));
  const URLRequest& request = _task->request();
  set(CURLOPT_URL, request.url.absoluteString().c_str());
  // Refuses by the length that the server names, before the content comes; to HEAD none comes, whatever the length.
  if (request.method != "HEAD") {
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(_responseContent->maximumSize()));
  }
  if (_requestContent) {
    set(CURLOPT_POST, 1L);
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(_requestContent->size()));
    // A body in memory goes out in one piece with the head.
    // A buffer of this size is made for each request.
    set(CURLOPT_UPLOAD_BUFFERSIZE, _task->file() ? kFileBufferSize : kBufferSize);
    if (_requestContent->bytes()) set(CURLOPT_POSTFIELDS, reinterpret_cast<const char*>(_requestContent->bytes()));
    if (request.method != "POST") set(CURLOPT_CUSTOMREQUEST, request.method.c_str());
  } else if (request.method == "HEAD") {
    set(CURLOPT_NOBODY, 1L);
  } else {
    set(CURLOPT_HTTPGET, 1L);
    if (request.method != "GET") set(CURLOPT_CUSTOMREQUEST, request.method.c_str());
  }
}

void CurlExchange::setHeaders() {
  const HTTPHeaders& headers = _task->request().headers;
  for (const HTTPHeader& header : headers) {
    if (isFraming(header.name)) continue;
    const std::string_view value = trimmed(header.value);
    // "Name:" would tell libcurl to leave the header out; this is its way to say that the value is empty.
    append(_headers, value.empty() ? header.name + ";" : header.name + ": " + std::string(value));
  }
  // Those that libcurl adds by itself to a request with content.
  if (!headers.value("Content-Type")) append(_headers, "Content-Type:");
  if (!headers.value("Expect")) append(_headers, "Expect:");
  set(CURLOPT_HTTPHEADER, _headers.get());
}

SessionTask::Outcome CurlExchange::takeOutcome(int result, const NetworkProbe& hasNetwork) {
  keepConnection();
  if (_failure) return std::unexpected(std::move(*_failure));
  if (_responseHead.statusCode() == kSwitchingProtocols) {
    return std::unexpected(URLError{Code::badServerResponse, "The server changes to another protocol"});
  }
  if (result != CURLE_OK) return std::unexpected(errorOf(result, hasNetwork));
  // To libcurl a head that breaks off is an answer without content.
  if (!_responseHead.isWhole()) {
    return std::unexpected(URLError{Code::networkConnectionLost, "The connection ended within the head of the answer"});
  }
  return SessionTask::Answer{{_task->request().url, _responseHead.statusCode(), _responseHead.headers()},
                             std::move(*_responseContent)};
}

URLError CurlExchange::errorOf(int result, const NetworkProbe& hasNetwork) const {
  const auto curlCode = static_cast<CURLcode>(result);
  if (_attemptCount > 1) return {Code::networkConnectionLost, "The connection ended before an answer came"};
  Code code = codeOf(curlCode);
  // libcurl keeps one line of a head at a time and tells so when it grows too long.
  if (curlCode == CURLE_OUT_OF_MEMORY && _attemptCount == 1 && !_responseHead.isWhole()) {
    code = Code::dataLengthExceedsMaximum;
  }
  // Chunks that are none have the code of a broken connection; only the text tells.
  if (curlCode == CURLE_RECV_ERROR && std::string_view(_errorText.data()).find("chunk") != std::string_view::npos) {
    code = Code::badServerResponse;
  }
  long systemError = 0;
  curl_easy_getinfo(_handle.get(), CURLINFO_OS_ERRNO, &systemError);
  const bool isOut = code == Code::cannotFindHost || (code == Code::cannotConnectToHost && isUnreachable(systemError));
  if (isOut && !hasNetwork()) code = Code::notConnectedToInternet;
  return {code, curl_easy_strerror(curlCode)};
}

void CurlExchange::keepConnection() {
  curl_socket_t socket = CURL_SOCKET_BAD;
  // There is none when the connection is not kept.
  curl_easy_getinfo(_handle.get(), CURLINFO_ACTIVESOCKET, &socket);
  if (socket != CURL_SOCKET_BAD) _keptConnections.keep(socket);
}

void CurlExchange::noteActivity() {
  _lastActivity = reactive::steadyNow();
}

}  // namespace kestrom::networking
