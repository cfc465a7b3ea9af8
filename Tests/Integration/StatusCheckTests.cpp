// The status check of a host, from the public object to a server of its own and back.

#include "Core/SDK/KestromSDKBuilder.hpp"
#include "Core/SDK/ProcessValues.hpp"
#include "Kestrom/Kestrom.hpp"
#include "Tests/Support/RecordingLogSink.hpp"
#include "Tests/Support/SandboxProcess.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrom {
namespace {

using foundation::URL;
using tests::SandboxProcess;
using Result = std::variant<KestromStatus, KestromError>;

constexpr const char* kZipCode = "05401";
constexpr const char* kAccessCode = "K7M 2QX";

LinuxPlatformOptions optionsFor(const std::string& authority, std::uint16_t port) {
  LinuxPlatformOptions options;
  options.connectTo = LinuxPlatformOptions::Address{"127.0.0.1", port};
  options.certificateAuthorityFile = URL::fromFilePath(authority);
  options.documentsDirectory = URL::fromFilePath("/nowhere/documents");
  options.temporaryDirectory = URL::fromFilePath(std::filesystem::temp_directory_path().string());
  return options;
}

Result statusOf(KestromSDK& kit, const char* zipCode = kZipCode, const char* accessCode = kAccessCode) {
  try {
    return kit.fetchKestromStatus(zipCode, accessCode).get();
  } catch (const KestromError& error) {
    return error;
  }
}

class StatusCheckIntegration : public testing::Test {
 protected:
  StatusCheckIntegration() { session::setCurrentEnvironment(KestromEnvironment::sandbox); }
  ~StatusCheckIntegration() override { session::setCurrentEnvironment(KestromEnvironment::production); }

  std::unique_ptr<KestromSDK> kitFor(const SandboxProcess& server) {
    return sdk::KestromSDKBuilder::make(linuxPlatform(optionsFor(server.certificateAuthority(), server.port())));
  }
};

TEST_F(StatusCheckIntegration, TellsTheStateOfACaseAndRefusesWrongCodes) {
  const SandboxProcess server;
  const auto kit = kitFor(server);
  const Result good = statusOf(*kit);
  ASSERT_TRUE(std::holds_alternative<KestromStatus>(good));
  EXPECT_EQ(std::get<KestromStatus>(good).status, "in_progress");
  EXPECT_FALSE(std::get<KestromStatus>(good).expiration.empty());
  const Result wrong = statusOf(*kit, kZipCode, "K7M 2QY");
  ASSERT_TRUE(std::holds_alternative<KestromError>(wrong));
  const auto* refused = std::get_if<KestromError::APIError>(&std::get<KestromError>(wrong).form);
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->code, 401);
  EXPECT_FALSE(refused->message.empty());
  EXPECT_EQ(server.requestLog().size(), 2u);
}

TEST_F(StatusCheckIntegration, TurnsWhateverTheServerDoesIntoAFailure) {
  struct Row {
    const char* label;
    const char* fault;
    KestromError want;
  };
  const KestromError kLost = KestromError::networkError();
  const Row rows[] = {
      {"401 without a reason", R"("status": 401)", KestromError::apiError("", 0)},
      {"401 with a reason", R"("status": 401, "body": {"statusCode": 401, "message": "no"})",
       KestromError::apiError("no", 401)},
      {"422 with a code", R"("status": 422, "body": {"statusCode": 422, "message": "x"})",
       KestromError::apiError("x", 422)},
      {"422 without a code", R"("status": 422, "body": {"message": "x"})", KestromError::apiError("", 0)},
      {"the code of the body counts", R"("status": 500, "body": {"statusCode": 422})", KestromError::apiError("", 422)},
      {"500 without JSON", R"("status": 500, "text": "<html>")", KestromError::apiError("", 0)},
      {"nothing where a status is wanted", R"("status": 204)", KestromError::unknown()},
      {"a redirect is not followed",
       R"("status": 302, "headers": {"Location": "https://sandbox-api.kestrom.example/x"})",
       KestromError::apiError("", 0)},
      {"another type", R"("status": 200, "body": {"status": 1, "expiration": "x"})", KestromError::unknown()},
      {"half a document", R"("status": 200, "text": "{\"status\":\"inv")", KestromError::unknown()},
      {"gone before the body was read", R"("drop": "beforeBody")", kLost},
      {"gone after the body was read", R"("drop": "afterBody")", kLost},
      {"gone in the middle of the answer", R"("drop": "duringResponse")", kLost},
      {"no HTTP", R"("garbage": true)", KestromError::unknown()},
  };
  std::string faults = "[";
  int call = 0;
  for (const Row& row : rows) {
    faults += (call ? "," : "") + std::string(R"({"endpoint": "statusCheck", "call": )") + std::to_string(call + 1) +
              ", " + row.fault + "}";
    ++call;
  }
  // A server that leaves after its answer has answered.
  faults += R"(,{"endpoint": "statusCheck", "call": )" + std::to_string(call + 1) + R"(, "drop": "afterResponse"}])";
  const SandboxProcess server(faults);
  const auto kit = kitFor(server);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    const Result result = statusOf(*kit);
    ASSERT_TRUE(std::holds_alternative<KestromError>(result));
    EXPECT_EQ(std::get<KestromError>(result), row.want);
  }
  EXPECT_TRUE(std::holds_alternative<KestromStatus>(statusOf(*kit)));
  // One attempt each: whatever failed was not sent again.
  EXPECT_EQ(server.requestLog().size(), std::size(rows) + 1);
}

/// Sessions whose requests wait for a moment only.
class HurriedSessionFactory final : public networking::URLSessionFactory {
 public:
  explicit HurriedSessionFactory(std::shared_ptr<networking::URLSessionFactory> factory)
      : _factory(std::move(factory)) {}

  std::shared_ptr<networking::URLSession> makeSession(reactive::Scheduler* delegateQueue) override {
    return std::make_shared<Session>(_factory->makeSession(delegateQueue));
  }

 private:
  struct Session final : networking::URLSession {
    explicit Session(std::shared_ptr<networking::URLSession> patient) : session(std::move(patient)) {}

    reactive::AnyCancellable dataTask(networking::URLRequest request, DataCompletion completion) override {
      EXPECT_EQ(request.timeoutInterval, std::chrono::seconds(60));
      request.timeoutInterval = std::chrono::milliseconds(300);
      return session->dataTask(std::move(request), std::move(completion));
    }
    reactive::AnyCancellable uploadTask(networking::URLRequest, URL, DataCompletion) override { return {}; }
    reactive::AnyCancellable downloadTask(networking::URLRequest, DownloadCompletion) override { return {}; }

    std::shared_ptr<networking::URLSession> session;
  };

  std::shared_ptr<networking::URLSessionFactory> _factory;
};

TEST_F(StatusCheckIntegration, EndsWhenTheServerSaysNothing) {
  const SandboxProcess server(R"([{"endpoint": "statusCheck", "call": 1, "delay": 3600}])");
  Platform platform = linuxPlatform(optionsFor(server.certificateAuthority(), server.port()));
  platform.urlSessionFactory = std::make_shared<HurriedSessionFactory>(platform.urlSessionFactory);
  const auto kit = sdk::KestromSDKBuilder::make(platform);
  EXPECT_EQ(std::get<KestromError>(statusOf(*kit)), KestromError::unknown());
  EXPECT_EQ(server.requestLog().size(), 1u);
}

TEST_F(StatusCheckIntegration, TrustsNobodyElse) {
  SandboxProcess server;
  const SandboxProcess stranger;
  const auto deceived =
      sdk::KestromSDKBuilder::make(linuxPlatform(optionsFor(stranger.certificateAuthority(), server.port())));
  EXPECT_EQ(std::get<KestromError>(statusOf(*deceived)), KestromError::unknown());
  LinuxPlatformOptions system = optionsFor("", server.port());
  system.certificateAuthorityFile = std::nullopt;
  const auto ordinary = sdk::KestromSDKBuilder::make(linuxPlatform(system));
  EXPECT_EQ(std::get<KestromError>(statusOf(*ordinary)), KestromError::unknown());
  EXPECT_TRUE(server.requestLog().empty());

  const auto kit = kitFor(server);
  server.stop();
  EXPECT_EQ(std::get<KestromError>(statusOf(*kit)), KestromError::unknown());
}

TEST_F(StatusCheckIntegration, LogsNothingThatTheUserGave) {
  const SandboxProcess server(R"([{"endpoint": "statusCheck", "call": 2, "status": 401, "headers": {"X": "CANARY"},
    "body": {"statusCode": 401, "message": "CANARY", "error": "CANARY"}},
    {"endpoint": "statusCheck", "call": 3, "status": 200, "body": {"CANARY": "CANARY"}},
    {"endpoint": "statusCheck", "call": 4, "drop": "duringResponse"}])");
  const auto log = std::make_shared<tests::RecordingLogSink>();
  Platform platform = linuxPlatform(optionsFor(server.certificateAuthority(), server.port()));
  platform.logSink = log;
  const auto kit = sdk::KestromSDKBuilder::make(platform);
  kit->enableLogs();
  for (int call = 0; call < 4; ++call) statusOf(*kit, "CANARY-zip", "CANARY-code");
  session::setLoggingEnabled(false);
  const auto lines = log->lines();
  EXPECT_EQ(lines.size(), 11u);
  for (const std::string& line : lines) EXPECT_EQ(line.find("CANARY"), std::string::npos) << line;
}

}  // namespace
}  // namespace kestrom
