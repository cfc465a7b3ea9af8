#include "Apps/sandbox/CertificateStore.hpp"
#include "Apps/sandbox/Database.hpp"
#include "Apps/sandbox/SandboxServer.hpp"
#include "Apps/sandbox/Seed.hpp"
#include "Apps/sandbox/StateDirectory.hpp"
#include "Apps/sandbox/TextFile.hpp"

#include <sys/stat.h>
#include <CLI/CLI.hpp>

#include <cstdint>
#include <expected>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace kestrom::sandbox;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

struct Arguments {
  std::uint16_t port = 0;
  std::string state = ".kestrom-sandbox";
  std::string seed = "examples/sandbox.json";
  std::optional<std::string> faults;
  bool printsEnvironment = false;
};

/// As one word of a shell.
std::string shellWord(std::string_view text) {
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? "'\\''" : std::string(1, c);
  return word + "'";
}

void tellReady(const Arguments& arguments, const std::string& address, const StateDirectory& state,
               const CertificateFiles& certificates) {
  if (arguments.printsEnvironment) {
    std::cout << "KESTROM_CONNECT_TO=" << shellWord(address)
              << "\nKESTROM_CACERT=" << shellWord(certificates.authority.string())
              << "\nKESTROM_REQUEST_LOG=" << shellWord(state.requestLog().string()) << "\n# ready" << std::endl;
  } else {
    std::cout << "listening on " << address << ", certificate authority " << certificates.authority.string()
              << std::endl;
  }
}

std::expected<FaultScript, std::string> loadFaults(const std::optional<std::string>& file) {
  if (!file) return FaultScript();
  const auto text = readTextFile(*file);
  if (!text) return std::unexpected(text.error());
  auto script = FaultScript::parse(*text);
  if (!script) return std::unexpected(*file + ": " + script.error());
  return script;
}

std::expected<void, std::string> serve(const Arguments& arguments) {
  auto faults = loadFaults(arguments.faults);
  if (!faults) return std::unexpected(faults.error());
  const auto state = StateDirectory::open(arguments.state);
  if (!state) return std::unexpected(state.error());
  const auto certificates = prepareCertificates(state->path());
  if (!certificates) return std::unexpected(certificates.error());
  const auto tls = TLSContext::load(certificates->certificate, certificates->key);
  if (!tls) return std::unexpected(tls.error());

  SandboxStore store(state->path() / "sandbox.db");
  if (auto planted = plantSeed(arguments.seed, store); !planted) return planted;
  UploadReceiver::removeLeftovers(state->media());
  auto log = RequestLog::open(state->requestLog());
  if (!log) return std::unexpected(log.error());

  const auto server = SandboxServer::listen(arguments.port);
  if (!server) return std::unexpected(server.error());
  SandboxService service(store, state->media());
  const ConnectionContext context{service, *faults, *log, (*server)->stopSignal(), state->media()};
  tellReady(arguments, "127.0.0.1:" + std::to_string((*server)->port()), *state, *certificates);
  (*server)->run(*tls, context);
  return {};
}

}  // namespace

int main(int argc, char** argv) {
  // Everything here bears tokens and codes: for the eyes of who started it only.
  umask(0077);
  Arguments arguments;
  CLI::App program{"A server with the kit's whole REST interface, for one machine", "kestrom-sandbox"};
  program.add_option("--port", arguments.port, "Port on 127.0.0.1; 0 is any that is free")->capture_default_str();
  program.add_option("--state", arguments.state, "Directory in which everything is kept")->capture_default_str();
  program.add_option("--seed", arguments.seed, "Cases, bots and brands to begin with")->capture_default_str();
  program.add_option("--faults", arguments.faults, "Script of what goes wrong, JSON");
  program.add_flag("--print-env", arguments.printsEnvironment,
                   "Tells address, certificate authority and request log as variables for a shell to evaluate");
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return program.exit(error, std::cout, std::cerr) == 0 ? 0 : kWrongUsage;
  }
  try {
    const auto served = serve(arguments);
    if (served) return 0;
    std::cerr << "kestrom-sandbox: " << served.error() << '\n';
  } catch (const DatabaseFault& fault) {
    std::cerr << "kestrom-sandbox: " << fault.what() << '\n';
  }
  return kFailed;
}
