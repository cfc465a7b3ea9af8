#pragma once

#include "Kestrom/Export.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace kestrom::foundation {

/// A URL as RFC 3986 has it: its text, known to parse. Value type; any thread.
/// The text is kept exactly as it was given: nothing is normalised, decoded or re-encoded.
class KESTROM_API URL {
 public:
  /// Parses an absolute URL or a relative reference. Absent when `text` is no RFC 3986 URI reference: a blank, a
  /// character outside ASCII, a control character, a bad percent escape. The empty text is absent too.
  static std::optional<URL> parse(std::string_view text);

  /// The "file" URL of a path of the file system; characters that a URL path may not hold are percent-encoded (UTF-8
  /// bytes). A relative path is taken from the process's working directory.
  static URL fromFilePath(std::string_view path);

  /// The whole text, for example "https://example.com/a.jpeg?x=1".
  const std::string& absoluteString() const { return _text; }

  /// The scheme as written, empty for a relative reference.
  std::string_view scheme() const;

  /// Percent-decoded path of the URL without a trailing slash ("/" stays): for a file URL the path of the file system.
  std::string path() const;

  /// Percent-decoded last component of the path: "b.jpeg" of "file:///a/b.jpeg", "b" of "/a/b/", "/" of the root and
  /// empty of an empty path. Query and fragment take no part.
  std::string lastPathComponent() const;

  /// What follows the last "." of the last path component, without the dot; empty when there is none, when the name
  /// starts with its only dot or ends with a dot.
  std::string pathExtension() const;

  /// This URL with `component` added to the path behind exactly one slash. The component is percent-encoded, its
  /// slashes included, so that it stays one component. Query and fragment stay.
  URL appendingPathComponent(std::string_view component) const;

  /// True when the scheme is "file", in any case.
  bool isFileURL() const;

  friend bool operator==(const URL&, const URL&) = default;

 private:
  explicit URL(std::string text) : _text(std::move(text)) {}

  std::string _text;
};

}  // namespace kestrom::foundation
