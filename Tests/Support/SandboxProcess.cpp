#include "Tests/Support/SandboxProcess.hpp"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrom::tests {

namespace {

std::filesystem::path makeFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "kestrom-sandbox-XXXXXX").string();
  if (!mkdtemp(name.data())) throw std::runtime_error("no folder for the sandbox");
  return name;
}

/// The value of `NAME=value` or `NAME='value'`.
std::optional<std::string> valueOf(std::string_view line, std::string_view name) {
  if (!line.starts_with(name) || line.size() <= name.size() || line[name.size()] != '=') return std::nullopt;
  std::string_view value = line.substr(name.size() + 1);
  if (value.size() >= 2 && value.front() == '\'' && value.back() == '\'') value = value.substr(1, value.size() - 2);
  return std::string(value);
}

}  // namespace

SandboxProcess::SandboxProcess(const std::optional<std::string>& faults) : _folder(makeFolder()) {
  start(faults);
}

void SandboxProcess::restart(const std::optional<std::string>& faults) {
  stop();
  start(faults);
}

void SandboxProcess::start(const std::optional<std::string>& faults) {
  std::vector<std::string> arguments{KESTROM_SANDBOX_PROGRAM, "--port",     "0", "--state", _folder, "--seed",
                                     KESTROM_SANDBOX_SEED,    "--print-env"};
  if (faults) {
    std::ofstream(_folder / "faults.json") << *faults;
    arguments.insert(arguments.end(), {"--faults", (_folder / "faults.json").string()});
  }
  std::vector<char*> raw;
  for (std::string& argument : arguments) raw.push_back(argument.data());
  raw.push_back(nullptr);

  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe to the sandbox");
  const pid_t parent = getpid();
  _process = fork();
  if (_process == 0) {
    // A test that crashes takes its server along.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    dup2(ends[1], STDOUT_FILENO);
    close(ends[0]);
    close(ends[1]);
    execv(KESTROM_SANDBOX_PROGRAM, raw.data());
    _exit(1);
  }
  close(ends[1]);
  _address.clear();
  readSettings(ends[0]);
  close(ends[0]);
  if (_address.empty()) {
    stop();
    throw std::runtime_error("the sandbox did not start");
  }
}

SandboxProcess::~SandboxProcess() {
  stop();
  std::error_code ignored;
  std::filesystem::remove_all(_folder, ignored);
}

void SandboxProcess::readSettings(int descriptor) {
  std::string line;
  char letter = 0;
  bool isReady = false;
  while (!isReady) {
    const ssize_t count = read(descriptor, &letter, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    if (letter != '\n') {
      line += letter;
      continue;
    }
    if (auto value = valueOf(line, "KESTROM_CONNECT_TO")) _address = *value;
    if (auto value = valueOf(line, "KESTROM_CACERT")) _certificateAuthority = *value;
    if (auto value = valueOf(line, "KESTROM_REQUEST_LOG")) _requestLog = *value;
    isReady = line == "# ready";
    line.clear();
  }
  if (!isReady) _address.clear();
}

std::uint16_t SandboxProcess::port() const {
  return static_cast<std::uint16_t>(std::stoi(_address.substr(_address.rfind(':') + 1)));
}

std::vector<std::string> SandboxProcess::requestLog() const {
  std::vector<std::string> lines;
  std::ifstream file(_requestLog);
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

void SandboxProcess::stop() {
  end(SIGTERM);
}

void SandboxProcess::kill() {
  end(SIGKILL);
}

void SandboxProcess::end(int signal) {
  if (_process < 0) return;
  ::kill(_process, signal);
  while (waitpid(_process, nullptr, 0) < 0 && errno == EINTR) {
  }
  _process = -1;
}

}  // namespace kestrom::tests
