#include "Tests/Platform/Networking/SessionTest.hpp"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace kestrom::networking {

namespace {

std::filesystem::path makeDirectory() {
  std::string name = (std::filesystem::temp_directory_path() / "kestrom-networking-XXXXXX").string();
  std::filesystem::path directory = ::mkdtemp(name.data());
  std::filesystem::create_directory(directory / "temporary");
  return directory;
}

template <class Result>
std::string label(const Result& result) {
  if (!result) return std::string(nameOf(result.error().code));
  return std::to_string(headOf(result->response).statusCode);
}

}  // namespace

URLRequest requestTo(std::string_view url, std::string method) {
  return {.url = foundation::URL::parse(url).value(), .method = std::move(method), .body = std::nullopt, .headers = {}};
}

URLRequest postTo(std::string_view url, std::string_view body) {
  URLRequest request = requestTo(url, "POST");
  request.body = foundation::Bytes(body.begin(), body.end());
  return request;
}

std::string textOf(const DataResult& result) {
  return result ? std::string(foundation::textOf(result->data)) : labelOf(result);
}

const HTTPURLResponse& headOf(const URLResponse& response) {
  return std::get<HTTPURLResponse>(response);
}

std::string labelOf(const DataResult& result) {
  return label(result);
}

std::string labelOf(const DownloadResult& result) {
  return label(result);
}

SessionTest::SessionTest() : _directory(makeDirectory()) {
  writeFile("authority.pem", authority().pem());
}

SessionTest::~SessionTest() {
  std::filesystem::remove_all(_directory);
}

const tests::LoopbackAuthority& SessionTest::authority() {
  static const tests::LoopbackAuthority shared;
  return shared;
}

std::unique_ptr<tests::LoopbackServer> SessionTest::serve(tests::LoopbackServer::Script script) const {
  return std::make_unique<tests::LoopbackServer>(authority().issue("api.test"), std::move(script));
}

CurlSessionConfiguration SessionTest::configurationFor(std::uint16_t port) const {
  return {.temporaryDirectory = foundation::URL::fromFilePath((_directory / "temporary").string()),
          .connectTo = CurlSessionConfiguration::Endpoint{"127.0.0.1", port},
          .certificateAuthorityFile = (_directory / "authority.pem").string()};
}

std::unique_ptr<CurlURLSession> SessionTest::sessionFor(const tests::LoopbackServer& server) const {
  return std::make_unique<CurlURLSession>(configurationFor(server.port()));
}

foundation::URL SessionTest::writeFile(std::string_view name, std::string_view content) const {
  const std::filesystem::path path = _directory / name;
  std::ofstream(path, std::ios::binary) << content;
  return foundation::URL::fromFilePath(path.string());
}

std::size_t SessionTest::temporaryFileCount() const {
  const std::filesystem::directory_iterator files(_directory / "temporary");
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

DataResult SessionTest::fetch(URLSession& session, URLRequest request) {
  std::promise<DataResult> promise;
  const auto token =
      session.dataTask(std::move(request), [&](DataResult result) { promise.set_value(std::move(result)); });
  return await(promise.get_future());
}

DataResult SessionTest::upload(URLSession& session, URLRequest request, foundation::URL file) {
  std::promise<DataResult> promise;
  const auto token = session.uploadTask(std::move(request), std::move(file),
                                        [&](DataResult result) { promise.set_value(std::move(result)); });
  return await(promise.get_future());
}

DownloadResult SessionTest::download(URLSession& session, URLRequest request) {
  std::promise<DownloadResult> promise;
  const auto token =
      session.downloadTask(std::move(request), [&](DownloadResult result) { promise.set_value(std::move(result)); });
  return await(promise.get_future());
}

}  // namespace kestrom::networking
