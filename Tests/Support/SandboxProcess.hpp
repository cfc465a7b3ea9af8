#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kestrom::tests {

/// The sandbox server as a process of its own, with a state folder that goes with it. Ends with this object.
class SandboxProcess {
 public:
  /// Starts the server of this build and waits until it listens. `faults` is the text of a faults file. Throws
  /// std::runtime_error when it does not come up.
  explicit SandboxProcess(const std::optional<std::string>& faults = std::nullopt);
  ~SandboxProcess();
  SandboxProcess(const SandboxProcess&) = delete;
  SandboxProcess& operator=(const SandboxProcess&) = delete;

  /// "127.0.0.1:PORT".
  const std::string& address() const { return _address; }
  std::uint16_t port() const;
  const std::string& certificateAuthority() const { return _certificateAuthority; }
  /// Lines of the request log so far, one JSON object each.
  std::vector<std::string> requestLog() const;
  /// Ends the server now.
  void stop();
  /// Ends the server as a crash does.
  void kill();
  /// Starts the server again, on the same state and another port, with these faults.
  void restart(const std::optional<std::string>& faults = std::nullopt);

 private:
  void start(const std::optional<std::string>& faults);
  void end(int signal);
  void readSettings(int descriptor);

  std::filesystem::path _folder;
  pid_t _process = -1;
  std::string _address;
  std::string _certificateAuthority;
  std::string _requestLog;
};

}  // namespace kestrom::tests
