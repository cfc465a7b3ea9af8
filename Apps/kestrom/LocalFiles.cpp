#include "Apps/kestrom/LocalFiles.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace kestrom::app {

namespace {

std::string lastError() {
  return std::generic_category().message(errno);
}

/// An open file, closed with it.
class Descriptor {
 public:
  explicit Descriptor(int descriptor) : _descriptor(descriptor) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (_descriptor >= 0) ::close(_descriptor);
  }

  int get() const { return _descriptor; }
  bool isOpen() const { return _descriptor >= 0; }

  /// Closes it now, to see an error that was put off until then.
  bool close() { return ::close(std::exchange(_descriptor, -1)) == 0; }

 private:
  int _descriptor;
};

bool writeAll(int descriptor, std::string_view content) {
  while (!content.empty()) {
    const ssize_t count = ::write(descriptor, content.data(), content.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    content.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace

std::expected<std::string, std::string> readFile(const std::string& path, std::size_t limit) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isOpen()) return std::unexpected(lastError());
  std::string content;
  std::size_t size = 0;
  while (true) {
    content.resize(std::max<std::size_t>(64 << 10, size * 2));
    const ssize_t count = ::read(file.get(), content.data() + size, content.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::unexpected(lastError());
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
    if (size > limit) return std::unexpected("larger than " + std::to_string(limit) + " bytes");
  }
  content.resize(size);
  return content;
}

std::expected<void, std::string> replaceFile(const std::string& path, std::string_view content) {
  // A link stays a link: what it points to is replaced.
  std::error_code ignored;
  const std::filesystem::path target = std::filesystem::weakly_canonical(path, ignored);
  const std::string name = ignored ? path : target.string();
  std::string temporary = name + ".XXXXXX";
  Descriptor file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.isOpen()) return std::unexpected(lastError());

  struct stat earlier{};
  const mode_t mode = ::stat(name.c_str(), &earlier) == 0 ? earlier.st_mode & 0777 : 0600;
  const bool isOnDisk = writeAll(file.get(), content) && ::fchmod(file.get(), mode) == 0 && ::fsync(file.get()) == 0 &&
                        file.close() && ::rename(temporary.c_str(), name.c_str()) == 0;
  if (!isOnDisk) {
    std::string reason = lastError();
    ::unlink(temporary.c_str());
    return std::unexpected(std::move(reason));
  }
  // The new name itself must survive a power cut too; where a file system has no way to say so, the rename stands.
  const Descriptor directory(
      ::open(std::filesystem::path(name).parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (directory.isOpen()) ::fsync(directory.get());
  return {};
}

}  // namespace kestrom::app
