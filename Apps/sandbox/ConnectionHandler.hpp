#pragma once

#include "Apps/sandbox/FaultScript.hpp"
#include "Apps/sandbox/HTTPConnection.hpp"
#include "Apps/sandbox/RequestLog.hpp"
#include "Apps/sandbox/SandboxService.hpp"
#include "Apps/sandbox/StopSignal.hpp"

#include <cstddef>
#include <filesystem>

namespace kestrom::sandbox {

/// What all connections share.
struct ConnectionContext {
  SandboxService& service;
  FaultScript& faults;
  RequestLog& log;
  const StopSignal& stop;
  std::filesystem::path mediaDirectory;
};

/// Serves one client, request after request, faults included. For the connection's own thread.
class ConnectionHandler {
 public:
  /// Bytes that a body may have; JSON bodies lie in memory, uploads do not.
  static constexpr std::size_t kMaximumBody = std::size_t{4} << 20;
  static constexpr std::size_t kMaximumUpload = std::size_t{256} << 20;

  /// Both live as long as the handler.
  ConnectionHandler(HTTPConnection& connection, const ConnectionContext& context)
      : _connection(connection), _context(context) {}

  /// Returns when the connection is to be closed.
  void run();

 private:
  struct Exchange;
  enum class BodyEnd : std::uint8_t { whole, cut, malformed, tooLarge };

  bool serveOne();
  bool refuseHead(Exchange& exchange, HTTPConnection::ReadError error);
  bool refuse(Exchange& exchange, const Response& response);
  BodyEnd readBody(Exchange& exchange);
  void count(Exchange& exchange);
  Response handle(Exchange& exchange);
  bool finish(Exchange& exchange, const Response& response);
  void log(const Exchange& exchange, std::optional<unsigned> status);
  bool reset();

  HTTPConnection& _connection;
  const ConnectionContext& _context;
  bool _isReset = false;
};

}  // namespace kestrom::sandbox
