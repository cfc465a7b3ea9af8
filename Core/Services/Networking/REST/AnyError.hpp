#pragma once

#include <concepts>
#include <memory>
#include <string>
#include <utility>

namespace kestrom::services {

/// An error of any kind: a value that compares and has a `debugDescription(const T&)` in its own namespace. Such a
/// description is made for the log, so that it holds nothing of what the user gave and nothing that a server sent.
class AnyError {
 public:
  template <class T>
    requires(!std::same_as<std::remove_cvref_t<T>, AnyError>)
  explicit AnyError(T error) : _content(std::make_shared<const Holder<T>>(std::move(error))) {}

  /// The error, if it is of this kind; null otherwise. As long as this value lives.
  template <class T>
  const T* as() const {
    const auto* holder = dynamic_cast<const Holder<T>*>(_content.get());
    return holder ? &holder->error : nullptr;
  }

  std::string description() const { return _content->description(); }

  friend bool operator==(const AnyError& a, const AnyError& b) { return a._content->equals(*b._content); }

 private:
  struct Content {
    virtual ~Content() = default;
    virtual std::string description() const = 0;
    virtual bool equals(const Content& other) const = 0;
  };

  template <class T>
  struct Holder final : Content {
    explicit Holder(T held) : error(std::move(held)) {}

    std::string description() const override { return debugDescription(error); }
    bool equals(const Content& other) const override {
      const auto* same = dynamic_cast<const Holder*>(&other);
      return same && same->error == error;
    }

    T error;
  };

  std::shared_ptr<const Content> _content;
};

}  // namespace kestrom::services
