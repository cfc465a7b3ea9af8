#pragma once

#include <expected>
#include <filesystem>
#include <string>

namespace kestrom::sandbox {

/// The directory in which the server keeps everything, held by one server at a time.
class StateDirectory {
 public:
  /// Makes the directory, for its owner's eyes only, when it is not there. Fails when another server runs on it.
  static std::expected<StateDirectory, std::string> open(const std::filesystem::path& path);

  StateDirectory(StateDirectory&& other) noexcept;
  StateDirectory& operator=(StateDirectory&&) = delete;
  ~StateDirectory();

  /// Absolute.
  const std::filesystem::path& path() const { return _path; }
  std::filesystem::path media() const { return _path / "media"; }
  std::filesystem::path requestLog() const { return _path / "requests.jsonl"; }

 private:
  StateDirectory(std::filesystem::path path, int lock) : _path(std::move(path)), _lock(lock) {}

  std::filesystem::path _path;
  int _lock;
};

}  // namespace kestrom::sandbox
