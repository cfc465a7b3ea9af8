#pragma once

#include <string>
#include <utility>
#include <variant>

namespace kestrom::services {

/// Names one of the lists that the kit keeps in the documents directory.
class CacheFilename {
 public:
  /// The answers of one case.
  static CacheFilename answers(std::string organizationID, std::string kestromID) {
    return CacheFilename(Answers{std::move(organizationID), std::move(kestromID)});
  }
  /// The events that are not delivered yet, of all cases.
  static CacheFilename kestromEvents() { return CacheFilename(KestromEvents{}); }

  /// The name of the file, without a directory. Identifiers are joined as they stand, but for what a file's name cannot
  /// hold ("/" and NUL): that is percent-encoded, so that a case from a strange server is kept too, and kept here.
  std::string name() const;

 private:
  struct Answers {
    std::string organizationID;
    std::string kestromID;
  };
  struct KestromEvents {};
  using Form = std::variant<Answers, KestromEvents>;

  explicit CacheFilename(Form form) : _form(std::move(form)) {}

  Form _form;
};

}  // namespace kestrom::services
