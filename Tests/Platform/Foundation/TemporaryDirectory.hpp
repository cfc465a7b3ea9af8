#pragma once

#include "Kestrom/Platform/URL.hpp"

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::foundation {

/// A directory of one test, removed with it.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "kestrom-test-XXXXXX").string();
    _path = ::mkdtemp(name.data());
  }
  ~TemporaryDirectory() { std::filesystem::remove_all(_path); }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  std::string path(std::string_view name) const { return (_path / name).string(); }
  URL url(std::string_view name) const { return URL::fromFilePath(path(name)); }

  void put(std::string_view name, std::string_view content) const {
    std::ofstream(path(name), std::ios::binary) << content;
  }

  std::string content(std::string_view name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  /// The names in it, sorted.
  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(_path)) names.push_back(entry.path().filename());
    std::ranges::sort(names);
    return names;
  }

 private:
  std::filesystem::path _path;
};

}  // namespace kestrom::foundation
