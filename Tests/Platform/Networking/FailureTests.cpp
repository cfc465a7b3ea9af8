#include "Tests/Platform/Networking/SessionTest.hpp"

#include <unistd.h>

namespace kestrom::networking {
namespace {

using namespace std::chrono_literals;
using tests::answerOf;
using tests::LoopbackConnection;
using tests::LoopbackServer;
using FailureTest = SessionTest;

TEST_F(FailureTest, TellsWhatBecameOfABrokenExchange) {
  struct Row {
    std::string_view label;
    std::string_view sent;
    enum { cut, properly, reset } end;
    std::string_view want;
  };
  constexpr std::string_view kChunks = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n";
  constexpr std::string_view kPart = "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc";
  const Row rows[] = {
      {"nothing at all", "", Row::cut, "networkConnectionLost"},
      {"nothing, and an end as TLS wants it", "", Row::properly, "networkConnectionLost"},
      {"a reset", "", Row::reset, "networkConnectionLost"},
      {"half a head", "HTTP/1.1 200 OK\r\nContent-Le", Row::cut, "networkConnectionLost"},
      {"less than the length says", kPart, Row::cut, "networkConnectionLost"},
      {"less, and an end as TLS wants it", kPart, Row::properly, "networkConnectionLost"},
      {"less, and a reset", kPart, Row::reset, "networkConnectionLost"},
      {"no last chunk", kChunks, Row::cut, "networkConnectionLost"},
      {"no last chunk, and an end as TLS wants it", kChunks, Row::properly, "networkConnectionLost"},
      {"another protocol", "SSH-2.0-server\r\n", Row::properly, "badServerResponse"},
      {"a version that is none", "HTTP/7 200 OK\r\n\r\n", Row::properly, "badServerResponse"},
      {"an interim answer alone", "HTTP/1.1 103 Early\r\n\r\n", Row::properly, "networkConnectionLost"},
      {"a chunk without a size", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nno\r\n", Row::properly,
       "badServerResponse"},
      {"another protocol that nobody asked for", "HTTP/1.1 101 Switching Protocols\r\n\r\n", Row::properly,
       "badServerResponse"},
      {"two blanks before the status", "HTTP/1.1  401 No\r\nContent-Length: 0\r\n\r\n", Row::properly, "401"},
      {"a header that looks like a first line", "HTTP/1.1 200 OK\r\nHTTP/1.1 500: x\r\nContent-Length: 0\r\n\r\n",
       Row::properly, "200"},
      {"a coding that is broken", "HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 3\r\n\r\nabc",
       Row::properly, "badServerResponse"},
  };
  for (const Row& row : rows) {
    for (const std::string_view method : {"GET", "POST"}) {
      const auto server = serve([&](LoopbackConnection& connection, int) {
        connection.readRequest();
        if (!row.sent.empty()) connection.send(row.sent);
        if (row.end == Row::properly) connection.closeProperly();
        if (row.end == Row::reset) connection.reset();
      });
      const auto session = sessionFor(*server);
      const DataResult result = fetch(*session, requestTo("https://api.test/secret", std::string(method)));
      EXPECT_EQ(labelOf(result), row.want) << row.label;
      EXPECT_EQ(server->requests().size(), 1u) << row.label;
      if (result) continue;
      EXPECT_FALSE(result.error().description.empty()) << row.label;
      EXPECT_EQ(result.error().description.find("secret"), std::string::npos) << row.label;
      EXPECT_EQ(labelOf(download(*session, requestTo("https://api.test/"))), row.want) << row.label;
      EXPECT_EQ(temporaryFileCount(), 0u) << row.label;
    }
  }
}

TEST_F(FailureTest, NeverSendsARequestTwice) {
  enum End { cut, properly, reset };
  for (const End end : {cut, properly, reset}) {
    for (const std::string_view method : {"GET", "POST"}) {
      const auto server = serve([&](LoopbackConnection& connection, int index) {
        if (index > 0) return LoopbackServer::answering(answerOf("again"))(connection, index);
        connection.readRequest();
        connection.send(answerOf("first"));
        connection.readRequest();
        if (end == properly) connection.closeProperly();
        if (end == reset) connection.reset();
      });
      const auto session = sessionFor(*server);
      const auto request = method == "GET" ? requestTo("https://api.test/") : postTo("https://api.test/", "body");
      EXPECT_EQ(textOf(fetch(*session, request)), "first");
      EXPECT_EQ(labelOf(fetch(*session, request)), "networkConnectionLost") << method << end;
      EXPECT_EQ(server->requests().size(), 2u) << method << end;
      EXPECT_EQ(textOf(fetch(*session, request)), "again") << method << end;
    }
  }
}

TEST_F(FailureTest, TakesANewConnectionWhenTheServerHasEndedAnIdleOne) {
  for (const bool isProper : {true, false}) {
    CountDown isEnded(1);
    const auto server = serve([&](LoopbackConnection& connection, int index) {
      if (index > 0) return LoopbackServer::answering(answerOf("second"))(connection, index);
      connection.readRequest();
      connection.send(answerOf("first"));
      if (isProper) connection.closeProperly();
      connection.endStream();
      isEnded.count();
      connection.waitForEnd();
    });
    const auto session = sessionFor(*server);
    const auto request = postTo("https://api.test/", "body");
    EXPECT_EQ(textOf(fetch(*session, request)), "first") << isProper;
    EXPECT_TRUE(isEnded.wait());
    EXPECT_EQ(textOf(fetch(*session, request)), "second") << isProper;
    EXPECT_EQ(textOf(fetch(*session, request)), "second") << isProper;
    EXPECT_EQ(server->connectionCount(), 2) << isProper;
  }
}

TEST_F(FailureTest, ChecksWhoTheServerIs) {
  const tests::LoopbackAuthority other("Other authority");
  const std::string garbage = writeFile("garbage.pem", "no certificate").path();
  const std::string trusted = (_directory / "authority.pem").string();
  struct Row {
    std::string_view label;
    tests::LoopbackCertificate certificate;
    std::optional<std::string> trust;
    std::string_view want;
  };
  Row rows[] = {
      {"all is well", authority().issue("api.test"), trusted, "200"},
      {"another host", authority().issue("other.test"), trusted, "serverCertificateUntrusted"},
      {"run out", authority().issue("api.test", -60), trusted, "serverCertificateUntrusted"},
      {"an authority that nobody knows", other.issue("api.test"), trusted, "serverCertificateUntrusted"},
      {"not among the system's", authority().issue("api.test"), std::nullopt, "serverCertificateUntrusted"},
      {"no trust file", authority().issue("api.test"), trusted + ".missing", "secureConnectionFailed"},
      {"nothing in the trust file", authority().issue("api.test"), garbage, "secureConnectionFailed"},
  };
  for (const Row& row : rows) {
    const LoopbackServer server(row.certificate, LoopbackServer::answering(answerOf("x")));
    CurlSessionConfiguration configuration = configurationFor(server.port());
    configuration.certificateAuthorityFile = row.trust;
    CurlURLSession session(configuration);
    EXPECT_EQ(labelOf(fetch(session, requestTo("https://api.test/"))), row.want) << row.label;
    EXPECT_EQ(server.requests().empty(), row.want != "200") << row.label;
  }
}

TEST_F(FailureTest, TellsWhetherTheHostOrTheNetworkIsMissing) {
  const int listener = tests::listenOnLoopback();
  const std::uint16_t closedPort = tests::portOf(listener);
  ::close(listener);
  // Too long a label fails without asking anybody.
  const std::string nameless = std::string(64, 'a') + ".test";
  struct Row {
    std::string host;
    bool hasNetwork;
    std::string_view want;
  };
  const Row rows[] = {
      {"127.0.0.1", true, "cannotConnectToHost"},
      {"127.0.0.1", false, "cannotConnectToHost"},
      // No connection goes to a broadcast address: the system says that the network is unreachable.
      {"127.255.255.255", true, "cannotConnectToHost"},
      {"127.255.255.255", false, "notConnectedToInternet"},
      {nameless, true, "cannotFindHost"},
      {nameless, false, "notConnectedToInternet"},
  };
  for (const Row& row : rows) {
    CurlSessionConfiguration configuration = configurationFor(closedPort);
    configuration.connectTo->host = row.host;
    CurlURLSession session(configuration, nullptr, [&] { return row.hasNetwork; });
    EXPECT_EQ(labelOf(fetch(session, requestTo("https://api.test/"))), row.want) << row.host << row.hasNetwork;
  }
}

TEST_F(FailureTest, TimesOutWhenNothingComesOrGoes) {
  const auto file = writeFile("upload", std::string(32 << 20, 'u'));
  const auto server = serve([](LoopbackConnection& connection, int) {
    const auto head = connection.readHead();
    if (head && head->starts_with("GET /part")) connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc");
    if (head && head->starts_with("POST")) return connection.pause(20s);
    connection.waitForEnd();
  });
  const auto impatient = [](URLRequest request) {
    request.timeoutInterval = 150ms;
    return request;
  };
  const auto session = sessionFor(*server);
  EXPECT_EQ(labelOf(fetch(*session, impatient(requestTo("https://api.test/none")))), "timedOut");
  EXPECT_EQ(labelOf(fetch(*session, impatient(requestTo("https://api.test/part")))), "timedOut");
  EXPECT_EQ(labelOf(upload(*session, impatient(requestTo("https://api.test/", "POST")), file)), "timedOut");

  const int silent = tests::listenOnLoopback();
  CurlURLSession handshaking(configurationFor(tests::portOf(silent)));
  EXPECT_EQ(labelOf(fetch(handshaking, impatient(requestTo("https://api.test/")))), "timedOut");
  ::close(silent);
}

TEST_F(FailureTest, WaitsAsLongAsBytesComeOrGo) {
  constexpr int kPieces = 12;
  constexpr std::size_t kSize = 24 << 20;
  constexpr std::size_t kPiece = kSize / kPieces;
  const auto server = serve([&](LoopbackConnection& connection, int) {
    while (const auto head = connection.readHead()) {
      std::size_t left = head->starts_with("POST") ? kSize : 0;
      while (left > 0) {
        const std::size_t count = connection.readSome().size();
        if (count == 0) return;
        // Now and then the client has to wait for room.
        if (left / kPiece != (left - count) / kPiece) connection.pause(100ms);
        left -= count;
      }
      // Bytes of half a line count as well.
      connection.send("HTTP/1.1 200 OK\r\nX-Slow: ");
      for (int i = 0; i < kPieces && connection.send("x"); ++i) connection.pause(100ms);
      connection.send("\r\nContent-Length: 12\r\n\r\n");
      for (int i = 0; i < kPieces && connection.send("x"); ++i) connection.pause(100ms);
    }
  });
  const auto session = sessionFor(*server);
  URLRequest request = requestTo("https://api.test/");
  request.timeoutInterval = 1s;
  EXPECT_EQ(textOf(fetch(*session, request)), std::string(kPieces, 'x'));
  request.method = "POST";
  EXPECT_EQ(textOf(upload(*session, request, writeFile("upload", std::string(kSize, 'u')))), std::string(kPieces, 'x'));
}

}  // namespace
}  // namespace kestrom::networking
