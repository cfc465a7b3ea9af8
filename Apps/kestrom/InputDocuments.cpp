#include "Apps/kestrom/InputDocuments.hpp"

#include "Apps/kestrom/LocalFiles.hpp"
#include "Apps/kestrom/PrintableText.hpp"
#include "Core/Models/BotAPIAnswerCoding.hpp"
#include "Core/Models/BotTemplateCoding.hpp"
#include "Platform/Foundation/JSONCoding.hpp"

#include <filesystem>
#include <istream>
#include <utility>

namespace kestrom::app {

using foundation::DecodingError;
using foundation::DecodingOptions;
using foundation::JSONDocument;
using foundation::JSONType;
using models::BotAPIAnswerDTO;
using Answers = std::vector<BotAPIAnswerDTO>;

namespace {

std::string errorLine(const std::string& name, std::string_view reason) {
  return printableText((name == "-" ? "standard input" : name) + ": " + std::string(reason), LineBreaks::escape);
}

std::string errorLine(const std::string& name, const DecodingError& error) {
  return errorLine(name, error.path.empty() ? error.description : error.path + ": " + error.description);
}

std::expected<std::string, std::string> readStream(std::istream& in) {
  std::string content;
  char buffer[1 << 16];
  while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
    content.append(buffer, static_cast<std::size_t>(in.gcount()));
    if (content.size() > JSONDocument::kMaximumSize) {
      return std::unexpected("larger than " + std::to_string(JSONDocument::kMaximumSize) + " bytes");
    }
  }
  return content;
}

std::expected<std::string, std::string> loadText(const std::string& name, std::istream& in) {
  auto text = name == "-" ? readStream(in) : readFile(name, JSONDocument::kMaximumSize);
  if (!text) return std::unexpected(errorLine(name, text.error()));
  return text;
}

std::expected<JSONDocument, std::string> loadDocument(const std::string& name, std::istream& in) {
  const auto text = loadText(name, in);
  if (!text) return std::unexpected(text.error());
  auto document = JSONDocument::parse(*text);
  if (!document) return std::unexpected(errorLine(name, document.error().description));
  return std::move(*document);
}

std::expected<Answers, std::string> deviceAnswers(const std::string& name, const JSONDocument& document,
                                                  const foundation::URL& documentsDirectory) {
  const DecodingOptions options{.documentsDirectory = documentsDirectory};
  auto answers = foundation::decodeDocument<Answers>(document, options);
  if (!answers) return std::unexpected(errorLine(name, answers.error().front()));
  return std::move(*answers);
}

}  // namespace

std::expected<models::BotTemplate, std::string> loadTemplate(const std::string& name, std::istream& in) {
  const auto text = loadText(name, in);
  if (!text) return std::unexpected(text.error());
  auto botTemplate = models::decodeBotTemplate(*text);
  if (!botTemplate) return std::unexpected(errorLine(name, botTemplate.error()));
  return std::move(*botTemplate);
}

std::expected<std::string, std::string> loadScript(const std::string& name, std::istream& in) {
  return loadText(name, in);
}

std::expected<std::shared_ptr<const JSONDocument>, std::string> loadCase(const std::string& name, std::istream& in) {
  auto document = loadDocument(name, in);
  if (!document) return std::unexpected(document.error());
  if (document->root().type() != JSONType::object) return std::unexpected(errorLine(name, "a case is an object"));
  return std::make_shared<const JSONDocument>(std::move(*document));
}

std::expected<Answers, std::string> loadAnswers(const std::string& name, std::istream& in,
                                                const foundation::URL& documentsDirectory) {
  const auto document = loadDocument(name, in);
  if (!document) return std::unexpected(document.error());
  if (document->root().type() == JSONType::array) return deviceAnswers(name, *document, documentsDirectory);
  const DecodingOptions options{.dates = DecodingOptions::Dates::answers, .documentsDirectory = documentsDirectory};
  auto history = foundation::decodeDocument<models::AnswersHistoryResponse>(*document, options);
  if (!history) return std::unexpected(errorLine(name, history.error().front()));
  return std::move(history->answers);
}

std::expected<Answers, std::string> loadKeptAnswers(const std::string& path,
                                                    const foundation::URL& documentsDirectory) {
  std::error_code error;
  if (!std::filesystem::exists(path, error) && !error) return Answers{};
  const auto text = readFile(path, JSONDocument::kMaximumSize);
  if (!text) return std::unexpected(errorLine(path, text.error()));
  const auto document = JSONDocument::parse(*text);
  if (!document) return std::unexpected(errorLine(path, document.error().description));
  return deviceAnswers(path, *document, documentsDirectory);
}

std::expected<void, std::string> keepAnswers(const std::string& path, const Answers& answers) {
  const auto replaced = replaceFile(path, foundation::encodeJSON(answers));
  if (!replaced) return std::unexpected(errorLine(path, replaced.error()));
  return {};
}

foundation::URL directoryURL(const std::string& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return foundation::URL::fromFilePath((error ? std::filesystem::path(path) : absolute).lexically_normal().string());
}

}  // namespace kestrom::app
