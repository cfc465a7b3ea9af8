#include "Apps/sandbox/MultipartReader.hpp"

#include "Apps/sandbox/HTTPMessage.hpp"

#include <utility>

namespace kestrom::sandbox {

namespace {

/// One parameter of a header value: `name=text` or `name="text"`, in which a backslash takes the next character as it
/// is.
std::optional<std::string> parameter(std::string_view value, std::string_view name) {
  std::size_t at = value.find(';');
  while (at != std::string_view::npos) {
    const std::size_t equals = value.find('=', at + 1);
    if (equals == std::string_view::npos) return std::nullopt;
    const std::string_view key = trimmed(value.substr(at + 1, equals - at - 1));
    std::string text;
    std::size_t end = equals + 1;
    if (end < value.size() && value[end] == '"') {
      for (++end; end < value.size() && value[end] != '"'; ++end) {
        if (value[end] == '\\' && end + 1 < value.size()) ++end;
        text += value[end];
      }
      if (end >= value.size()) return std::nullopt;
      at = value.find(';', end);
    } else {
      at = value.find(';', end);
      text = trimmed(value.substr(end, at == std::string_view::npos ? at : at - end));
    }
    if (equalsIgnoringCase(key, name)) return text;
  }
  return std::nullopt;
}

std::string_view withoutParameters(std::string_view value) {
  return trimmed(value.substr(0, value.find(';')));
}

/// Absent for lines that are no head of a form's part.
std::optional<PartHead> partHead(std::string_view lines) {
  PartHead head;
  bool isNamed = false;
  while (!lines.empty()) {
    const std::size_t end = lines.find("\r\n");
    const std::string_view line = lines.substr(0, end);
    lines = end == std::string_view::npos ? std::string_view() : lines.substr(end + 2);
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    const std::string_view name = line.substr(0, colon);
    const std::string_view value = trimmed(line.substr(colon + 1));
    if (equalsIgnoringCase(name, "Content-Disposition")) {
      if (!equalsIgnoringCase(withoutParameters(value), "form-data")) return std::nullopt;
      const auto field = parameter(value, "name");
      if (!field) return std::nullopt;
      isNamed = true;
      head.name = *field;
      head.fileName = parameter(value, "filename");
    } else if (equalsIgnoringCase(name, "Content-Type")) {
      head.contentType = std::string(value);
    }
  }
  return isNamed ? std::optional(std::move(head)) : std::nullopt;
}

}  // namespace

std::optional<std::string> multipartBoundary(std::string_view contentType) {
  // The longest that the format allows; more would be held for every piece that comes.
  constexpr std::size_t kMaximumBoundary = 70;
  if (!equalsIgnoringCase(withoutParameters(contentType), "multipart/form-data")) return std::nullopt;
  auto boundary = parameter(contentType, "boundary");
  if (!boundary || boundary->empty() || boundary->size() > kMaximumBoundary) return std::nullopt;
  return boundary;
}

MultipartReader::MultipartReader(std::string_view boundary, Callbacks callbacks)
    : _delimiter("\r\n--" + std::string(boundary)),
      _callbacks(std::move(callbacks)),
      // The first delimiter may stand at the very beginning, without the line end before it.
      _pending("\r\n") {}

void MultipartReader::feed(std::string_view bytes) {
  if (_state == State::done || _state == State::broken) return;
  _pending += bytes;
  bool goesOn = true;
  while (goesOn) {
    switch (_state) {
      case State::preamble:
      case State::content:
        goesOn = readContent();
        break;
      case State::delimiter:
        goesOn = readDelimiter();
        break;
      case State::head:
        goesOn = readHead();
        break;
      case State::done:
      case State::broken:
        _pending.clear();
        return;
    }
  }
}

bool MultipartReader::readContent() {
  const std::size_t end = _pending.find(_delimiter);
  if (end == std::string::npos) {
    if (_pending.size() >= _delimiter.size()) emit(_pending.size() - _delimiter.size() + 1);
    return false;
  }
  emit(end);
  _pending.erase(0, _delimiter.size());
  _state = State::delimiter;
  return true;
}

bool MultipartReader::readDelimiter() {
  if (_pending.size() < 2) return false;
  if (_pending.starts_with("--")) {
    _state = State::done;
  } else if (_pending.starts_with("\r\n")) {
    _pending.erase(0, 2);
    _state = State::head;
  } else if (_pending[0] == ' ' || _pending[0] == '\t') {
    _pending.erase(0, 1);
  } else {
    _state = State::broken;
  }
  return true;
}

bool MultipartReader::readHead() {
  const std::size_t end = _pending.find("\r\n\r\n");
  if (end == std::string::npos && _pending.size() <= kMaximumHead) return false;
  auto head = end <= kMaximumHead ? partHead(std::string_view(_pending).substr(0, end)) : std::nullopt;
  if (!head) {
    _state = State::broken;
    return true;
  }
  _pending.erase(0, end + 4);
  _callbacks.beginPart(std::move(*head));
  _state = State::content;
  return true;
}

void MultipartReader::emit(std::size_t count) {
  if (_state == State::content && count > 0) _callbacks.data(std::string_view(_pending).substr(0, count));
  _pending.erase(0, count);
}

}  // namespace kestrom::sandbox
