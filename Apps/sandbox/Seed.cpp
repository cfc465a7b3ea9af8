#include "Apps/sandbox/Seed.hpp"

#include "Apps/sandbox/BodyRecords.hpp"
#include "Apps/sandbox/TextFile.hpp"

#include <system_error>
#include <vector>

namespace kestrom::sandbox {

namespace {

using foundation::DecodingError;
using foundation::DecodingOptions;
using foundation::JSONDocument;

std::unexpected<std::string> fault(const std::filesystem::path& file, const std::string& why) {
  return std::unexpected(file.string() + ": " + why);
}

std::unexpected<std::string> fault(const std::filesystem::path& file, const DecodingError& error) {
  return fault(file, error.path.empty() ? error.description : error.path + ": " + error.description);
}

struct JSONFile {
  std::string text;
  JSONDocument document;
};

std::expected<JSONFile, std::string> readJSON(const std::filesystem::path& file) {
  auto text = readTextFile(file);
  if (!text) return std::unexpected(text.error());
  auto document = JSONDocument::parse(*text);
  if (!document) return fault(file, document.error().description);
  return JSONFile{std::move(*text), std::move(*document)};
}

/// Plants one seed file.
class Planter {
 public:
  Planter(const std::filesystem::path& seedFile, SandboxStore& store) : _seedFile(seedFile), _store(store) {}

  std::expected<void, std::string> plant() {
    const auto seed = readJSON(_seedFile);
    if (!seed) return std::unexpected(seed.error());
    const auto record = foundation::decodeDocument<SeedBody>(seed->document, DecodingOptions{});
    if (!record) return fault(_seedFile, record.error().front());
    for (const SeedFile& bot : record->bots) {
      const auto file = read(bot.file);
      if (!file) return std::unexpected(file.error());
      _store.addBot(bot.id, file->text);
    }
    for (const SeedFile& brand : record->brands) {
      const auto file = read(brand.file);
      if (!file) return std::unexpected(file.error());
      _store.addBrand(brand.id, file->text);
    }
    for (const SeedCase& seedCase : record->cases) {
      if (auto planted = plantCase(seedCase); !planted) return planted;
    }
    return {};
  }

 private:
  std::expected<void, std::string> plantCase(const SeedCase& seedCase) {
    const auto file = read(seedCase.file);
    if (!file) return std::unexpected(file.error());
    const auto record = foundation::decodeDocument<CaseBody>(file->document, DecodingOptions{});
    if (!record) return fault(seedCase.file, record.error().front());
    if (!_store.findBot(record->bot.id)) return fault(seedCase.file, "bot._id: the seed has no such bot");
    const Credentials credentials{record->property.zipCode, record->accessCode};
    const auto other = _store.findCase(credentials);
    if (other && other->id != record->id)
      return fault(seedCase.file, "another case has this postal code and access code");
    _store.addCase(
        {record->id, record->organizationId, record->bot.id, record->status, seedCase.expiration, file->text},
        credentials);
    return {};
  }

  /// A seed is a folder that can be handed on; what it names lies inside.
  std::expected<JSONFile, std::string> read(const std::string& name) const {
    std::error_code error;
    const auto folder = std::filesystem::canonical(std::filesystem::absolute(_seedFile).parent_path(), error);
    if (error) return fault(_seedFile, error.message());
    const auto file = std::filesystem::canonical(folder / name, error);
    if (error) return fault(name, "no such file beside the seed");
    const auto relative = file.lexically_relative(folder);
    if (relative.empty() || *relative.begin() == "..") return fault(name, "lies outside the folder of the seed");
    return readJSON(file);
  }

  std::filesystem::path _seedFile;
  SandboxStore& _store;
};

}  // namespace

std::expected<void, std::string> plantSeed(const std::filesystem::path& seedFile, SandboxStore& store) {
  return Planter(seedFile, store).plant();
}

}  // namespace kestrom::sandbox
