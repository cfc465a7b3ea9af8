#include "Apps/sandbox/RequestLog.hpp"

#include "Apps/sandbox/DateForms.hpp"
#include "Kestrom/Platform/Bytes.hpp"
#include "Platform/Foundation/Base64.hpp"
#include "Platform/Foundation/JSONWriter.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <utility>

namespace kestrom::sandbox {

namespace {

using foundation::JSONWriter;

void writeText(JSONWriter& writer, std::string_view key, const std::optional<std::string_view>& text) {
  writer.key(key);
  if (text) {
    writer.string(*text);
  } else {
    writer.null();
  }
}

/// Whether the text says the same in JSON: the writer mends what is no UTF-8.
bool isText(std::string_view bytes) {
  JSONWriter writer;
  writer.string(bytes);
  const auto document = foundation::JSONDocument::parse(writer.text());
  return document && document->root().string() == bytes;
}

void writeBody(JSONWriter& writer, const LoggedRequest& request) {
  std::string_view form = "none";
  writer.key("body");
  if (request.document) {
    form = "json";
    writer.value(request.document->root());
  } else if (request.body.empty()) {
    writer.null();
  } else {
    const std::string_view kept = request.body.substr(0, RequestLog::kMaximumText);
    form = isText(kept) ? "text" : "base64";
    writer.string(form == "text" ? std::string(kept) : foundation::encodeBase64(foundation::bytesOf(kept)));
  }
  writeText(writer, "bodyForm", form);
  // Numbers of a value may have been written in another way.
  if (form == "json") writeText(writer, "raw", request.body.substr(0, RequestLog::kMaximumText));
}

void writeParts(JSONWriter& writer, const std::vector<UploadReceiver::Part>& parts) {
  writer.key("parts");
  writer.beginArray();
  for (const UploadReceiver::Part& part : parts) {
    writer.beginObject();
    writeText(writer, "name", part.head.name);
    writeText(writer, "fileName", part.head.fileName);
    writeText(writer, "contentType", part.head.contentType);
    writer.key("size");
    writer.integer(static_cast<std::int64_t>(part.size));
    writer.endObject();
  }
  writer.endArray();
}

std::string line(const LoggedRequest& request, std::int64_t number) {
  JSONWriter writer;
  writer.beginObject();
  writer.key("number");
  writer.integer(number);
  writeText(writer, "time", millisecondsText(request.time));
  writeText(writer, "endpoint", request.endpoint ? std::optional(endpointName(*request.endpoint)) : std::nullopt);
  writer.key("call");
  writer.integer(request.call.number);
  writeText(writer, "method", request.head.method);
  writeText(writer, "target", request.head.target);
  writeText(writer, "host", request.head.header("Host"));
  writer.key("headers");
  writer.beginArray();
  for (const Header& header : request.head.headers) {
    writer.beginArray();
    writer.string(header.name);
    writer.string(header.value);
    writer.endArray();
  }
  writer.endArray();
  writer.key("bodySize");
  writer.integer(static_cast<std::int64_t>(request.bodySize));
  writeBody(writer, request);
  if (request.parts) writeParts(writer, *request.parts);
  writer.key("status");
  if (request.status) {
    writer.integer(*request.status);
  } else {
    writer.null();
  }
  writer.key("fault");
  if (request.call.fault) {
    writer.value(request.call.fault->rule);
  } else {
    writer.null();
  }
  writer.endObject();
  return std::move(writer).text() + '\n';
}

/// A server that was killed may have left half a line, which would spoil the next one too.
bool removePartialLine(int file) {
  const off_t size = ::lseek(file, 0, SEEK_END);
  off_t end = size;
  char last = 0;
  while (end > 0 && ::pread(file, &last, 1, end - 1) == 1 && last != '\n') --end;
  return size >= 0 && (end == size || ::ftruncate(file, end) == 0);
}

}  // namespace

std::expected<RequestLog, std::string> RequestLog::open(const std::filesystem::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (descriptor < 0) return std::unexpected(file.string() + ": cannot be written");
  RequestLog log(descriptor);
  if (!removePartialLine(descriptor)) return std::unexpected(file.string() + ": cannot be mended");
  return log;
}

RequestLog::RequestLog(RequestLog&& other) noexcept : _file(std::exchange(other._file, -1)), _number(other._number) {}

RequestLog::~RequestLog() {
  if (_file >= 0) ::close(_file);
}

void RequestLog::write(const LoggedRequest& request) {
  // Under the lock as a whole, so that the numbers rise from line to line.
  const std::lock_guard lock(_mutex);
  const std::string text = line(request, ++_number);
  std::string_view rest = text;
  while (!rest.empty()) {
    const ssize_t count = ::write(_file, rest.data(), rest.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      removePartialLine(_file);
      std::cerr << "kestrom-sandbox: the request log cannot be written\n";
      return;
    }
    rest.remove_prefix(static_cast<std::size_t>(count));
  }
}

}  // namespace kestrom::sandbox
