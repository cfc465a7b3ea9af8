#include "Apps/sandbox/StateDirectory.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <system_error>
#include <utility>

namespace kestrom::sandbox {

std::expected<StateDirectory, std::string> StateDirectory::open(const std::filesystem::path& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  const auto failed = [&](const std::string& why) { return std::unexpected(path.string() + ": " + why); };
  if (error) return failed(error.message());
  const bool isNew = std::filesystem::create_directories(absolute, error);
  if (error) return failed(error.message());
  if (isNew) std::filesystem::permissions(absolute, std::filesystem::perms::owner_all, error);
  if (!error) std::filesystem::create_directory(absolute / "media", error);
  if (error) return failed(error.message());

  const int lock = ::open((absolute / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock < 0) return failed("no file can be written there");
  if (flock(lock, LOCK_EX | LOCK_NB) != 0) {
    ::close(lock);
    return failed("another kestrom-sandbox runs on this state directory");
  }
  return StateDirectory(absolute, lock);
}

StateDirectory::StateDirectory(StateDirectory&& other) noexcept
    : _path(std::move(other._path)), _lock(std::exchange(other._lock, -1)) {}

StateDirectory::~StateDirectory() {
  if (_lock >= 0) ::close(_lock);
}

}  // namespace kestrom::sandbox
