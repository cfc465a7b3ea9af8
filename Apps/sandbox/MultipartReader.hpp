#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kestrom::sandbox {

/// The head of one part of a form.
struct PartHead {
  std::string name;
  std::optional<std::string> fileName;
  std::optional<std::string> contentType;
};

/// The boundary that a multipart form's "Content-Type" names; absent for another type and for none.
std::optional<std::string> multipartBoundary(std::string_view contentType);

/// Takes a multipart form (RFC 7578) in pieces of any size and tells its parts as they come; holds no more of it than a
/// delimiter or a part's head. The callbacks are called inside `feed`.
class MultipartReader {
 public:
  /// Bytes that a part's head may have.
  static constexpr std::size_t kMaximumHead = std::size_t{16} << 10;

  struct Callbacks {
    std::function<void(PartHead)> beginPart;
    /// Not empty; its bytes are good during the call.
    std::function<void(std::string_view)> data;
  };

  MultipartReader(std::string_view boundary, Callbacks callbacks);

  void feed(std::string_view bytes);

  /// Whether the closing delimiter has come and everything before it was a form.
  bool isComplete() const { return _state == State::done; }

 private:
  enum class State : std::uint8_t { preamble, delimiter, head, content, done, broken };

  bool readContent();
  bool readDelimiter();
  bool readHead();
  void emit(std::size_t count);

  std::string _delimiter;
  Callbacks _callbacks;
  std::string _pending;
  State _state = State::preamble;
};

}  // namespace kestrom::sandbox
