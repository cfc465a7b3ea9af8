#pragma once

#include "Apps/sandbox/HTTPMessage.hpp"
#include "Apps/sandbox/MultipartReader.hpp"
#include "Apps/sandbox/SandboxStore.hpp"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

namespace kestrom::sandbox {

/// Takes one uploaded form piece by piece and keeps its medium in a file of its own. What is not accepted in the end is
/// removed. For one thread.
class UploadReceiver {
 public:
  struct Part {
    PartHead head;
    std::uint64_t size = 0;
  };

  /// `directory` is where media lie.
  UploadReceiver(const std::filesystem::path& directory, std::string_view boundary);
  UploadReceiver(const UploadReceiver&) = delete;
  UploadReceiver& operator=(const UploadReceiver&) = delete;
  ~UploadReceiver() { discard(); }

  void feed(std::string_view bytes) { _reader.feed(bytes); }

  /// The parts so far.
  const std::vector<Part>& parts() const { return _parts; }

  /// Gives the medium a name of ours in the directory, once the body has come to its end; else the refusal.
  std::expected<MediaRecord, Response> accept();

  /// Removes what has not been accepted.
  void discard();

  /// Removes what servers that were killed have left in the middle of an upload.
  static void removeLeftovers(const std::filesystem::path& directory);

 private:
  void beginPart(PartHead head);
  void write(std::string_view bytes);

  std::filesystem::path _directory;
  std::filesystem::path _file;
  std::ofstream _content;
  std::vector<Part> _parts;
  bool _hasTooManyParts = false;
  MultipartReader _reader;
};

}  // namespace kestrom::sandbox
