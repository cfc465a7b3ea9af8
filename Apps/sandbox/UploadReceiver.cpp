#include "Apps/sandbox/UploadReceiver.hpp"

#include "Apps/sandbox/MediaTypes.hpp"
#include "Platform/Foundation/UUID.hpp"

#include <string>
#include <system_error>
#include <utility>

namespace kestrom::sandbox {

namespace {

constexpr std::string_view kField = "media";
constexpr std::string_view kUnfinished = ".unfinished";
/// More than any client sends; the bound keeps a form of nothing but parts out of memory.
constexpr std::size_t kMaximumParts = 16;

std::unexpected<Response> refused(unsigned status, const std::string& message) {
  return std::unexpected(errorResponse(status, message));
}

}  // namespace

UploadReceiver::UploadReceiver(const std::filesystem::path& directory, std::string_view boundary)
    : _directory(directory),
      _file(directory / (foundation::makeUUIDString() + std::string(kUnfinished))),
      _reader(boundary, {.beginPart = [this](PartHead head) { beginPart(std::move(head)); },
                         .data = [this](std::string_view bytes) { write(bytes); }}) {}

void UploadReceiver::discard() {
  std::error_code ignored;
  std::filesystem::remove(_file, ignored);
}

void UploadReceiver::beginPart(PartHead head) {
  _hasTooManyParts = _parts.size() == kMaximumParts;
  if (_hasTooManyParts) return;
  // What stands behind the medium is counted, not kept.
  if (_parts.empty()) {
    _content.open(_file, std::ios::binary);
  } else if (_parts.size() == 1) {
    _content.close();
  }
  _parts.push_back({std::move(head), 0});
}

void UploadReceiver::write(std::string_view bytes) {
  if (_hasTooManyParts) return;
  _parts.back().size += bytes.size();
  if (_content.is_open()) _content.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::expected<MediaRecord, Response> UploadReceiver::accept() {
  if (!_reader.isComplete()) return refused(422, "the multipart form is malformed or has no closing delimiter");
  if (_parts.size() != 1 || _parts[0].head.name != kField)
    return refused(422, "media: the form has one part of this name");
  const auto type = mediaType(_parts[0].head.contentType.value_or(""));
  if (!type)
    return refused(415, "media: the part's content type is none of png, jpeg, jpg, gif, pdf, plainText, mp4, tar");

  _content.close();
  MediaRecord record{foundation::makeUUIDString() + '.' + std::string(type->extension), std::string(type->contentType)};
  std::error_code error;
  if (_content) std::filesystem::rename(_file, _directory / record.name, error);
  if (!_content || error) return refused(500, "the medium cannot be written");
  return record;
}

void UploadReceiver::removeLeftovers(const std::filesystem::path& directory) {
  std::error_code ignored;
  std::vector<std::filesystem::path> leftovers;
  for (const auto& entry : std::filesystem::directory_iterator(directory, ignored)) {
    if (entry.path().extension() == kUnfinished) leftovers.push_back(entry.path());
  }
  for (const auto& file : leftovers) std::filesystem::remove(file, ignored);
}

}  // namespace kestrom::sandbox
