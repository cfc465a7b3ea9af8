#include "Apps/kestrom/CaptureInput.hpp"

#include "Kestrom/Platform/URL.hpp"
#include "Platform/Foundation/Text.hpp"

#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <vector>

namespace kestrom::app {

using foundation::URL;
using models::BotAnswer;
using LocalAction = models::SingleSelectionMessage::Option::LocalAction;

namespace {

constexpr std::array<std::string_view, 4> kImageExtensions{"png", "jpg", "jpeg", "gif"};

std::expected<URL, std::string> mediaURL(std::string_view path, const FindMediaFile& findMediaFile) {
  const auto file = findMediaFile(std::string(path));
  if (!file) return std::unexpected("there is no file " + std::string(path));
  return URL::fromFilePath(*file);
}

std::expected<std::vector<URL>, std::string> mediaURLs(std::string_view paths, const FindMediaFile& findMediaFile) {
  std::vector<URL> urls;
  while (!paths.empty()) {
    const std::size_t end = std::min(paths.find_first_of(" \t"), paths.size());
    auto url = mediaURL(paths.substr(0, end), findMediaFile);
    if (!url) return std::unexpected(std::move(url.error()));
    urls.push_back(std::move(*url));
    paths = foundation::trimmedBlanks(paths.substr(end));
  }
  return urls;
}

/// The first URL with one of the extensions, in any case.
std::optional<URL> firstWithExtension(std::span<const URL> urls, std::span<const std::string_view> extensions) {
  const auto found = std::ranges::find_if(urls, [extensions](const URL& url) {
    std::string extension = url.pathExtension();
    std::ranges::transform(extension, extension.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return std::ranges::find(extensions, extension) != extensions.end();
  });
  if (found == urls.end()) return {};
  return *found;
}

std::expected<CapturedMedia, std::string> readBundle(std::string_view paths,
                                                     std::span<const std::string_view> imageExtensions,
                                                     const FindMediaFile& findMediaFile) {
  const auto urls = mediaURLs(paths, findMediaFile);
  if (!urls) return std::unexpected(urls.error());
  constexpr std::array<std::string_view, 1> kMediaExtension{"tar"};
  const auto thumbnail = firstWithExtension(*urls, imageExtensions);
  const auto media = firstWithExtension(*urls, kMediaExtension);
  if (!thumbnail) return std::unexpected("the path of an image is missing");
  if (!media) return std::unexpected("the path of a .tar file is missing");
  return CapturedMedia{{BotAnswer::Value::MediaBundle{*media, *thumbnail, true}},
                       BotAnswer::BotAnswerType::mediaBundle};
}

}  // namespace

std::expected<CapturedMedia, std::string> readCapture(LocalAction action, std::string_view paths,
                                                      const std::string& messageKey,
                                                      const FindMediaFile& findMediaFile) {
  constexpr std::span<const std::string_view> kAllImages{kImageExtensions};
  if (action == LocalAction::panorama) return readBundle(paths, kAllImages.first(3), findMediaFile);
  if (action == LocalAction::meshscan) return readBundle(paths, kAllImages, findMediaFile);

  auto url = mediaURL(paths, findMediaFile);
  if (!url) return std::unexpected(std::move(url.error()));
  if (action == LocalAction::fnol) {
    return CapturedMedia{{BotAnswer::Value::MediaBundle{std::move(*url), std::nullopt, true}},
                         BotAnswer::BotAnswerType::mediaBundle};
  }
  return CapturedMedia{{BotAnswer::Value::Url{std::move(*url), messageKey, true}}, BotAnswer::BotAnswerType::url};
}

}  // namespace kestrom::app
