#include "Apps/sandbox/MediaTypes.hpp"

#include "Apps/sandbox/HTTPMessage.hpp"

namespace kestrom::sandbox {

namespace {

constexpr MediaType kTypes[] = {
    {"png", "png", "image/png"}, {"jpeg", "jpeg", "image/jpeg"},      {"jpg", "jpg", "image/jpeg"},
    {"gif", "gif", "image/gif"}, {"pdf", "pdf", "application/pdf"},   {"plainText", "txt", "text/plain; charset=utf-8"},
    {"mp4", "mp4", "video/mp4"}, {"tar", "tar", "application/x-tar"},
};

}  // namespace

std::optional<MediaType> mediaType(std::string_view contentType) {
  const std::string_view wanted = trimmed(contentType.substr(0, contentType.find(';')));
  for (const MediaType& type : kTypes) {
    if (wanted == type.word) return type;
  }
  for (const MediaType& type : kTypes) {
    if (equalsIgnoringCase(wanted, type.contentType.substr(0, type.contentType.find(';')))) return type;
  }
  return std::nullopt;
}

}  // namespace kestrom::sandbox
