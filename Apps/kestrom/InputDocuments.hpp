#pragma once

#include "Core/Models/BotAPIAnswerDTO.hpp"
#include "Core/Models/BotTemplate.hpp"
#include "Kestrom/Platform/URL.hpp"
#include "Platform/Foundation/JSONDocument.hpp"

#include <expected>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

/// The documents that commands are given by name: a path, or "-" for the standard input. An error is one line that can
/// be printed as it is and begins with the name: "FILE: reason" or, for a fault inside the document,
/// "FILE: PATH: reason".
namespace kestrom::app {

std::expected<models::BotTemplate, std::string> loadTemplate(const std::string& name, std::istream& in);

/// The text of a script.
std::expected<std::string, std::string> loadScript(const std::string& name, std::istream& in);

/// The raw JSON of a case, an object.
std::expected<std::shared_ptr<const foundation::JSONDocument>, std::string> loadCase(const std::string& name,
                                                                                     std::istream& in);

/// Answers in either of their forms: the server's history, an object, or the device's file, a list. Local files in them
/// are moved onto the documents directory.
std::expected<std::vector<models::BotAPIAnswerDTO>, std::string> loadAnswers(const std::string& name, std::istream& in,
                                                                             const foundation::URL& documentsDirectory);

/// The answers of a file that a device keeps; none when there is no such file yet.
std::expected<std::vector<models::BotAPIAnswerDTO>, std::string> loadKeptAnswers(
    const std::string& path, const foundation::URL& documentsDirectory);

/// Replaces the file whole, so that it holds either the old answers or the new ones.
std::expected<void, std::string> keepAnswers(const std::string& path,
                                             const std::vector<models::BotAPIAnswerDTO>& answers);

/// The file URL of a directory given by a path, absolute or from the present directory.
foundation::URL directoryURL(const std::string& path);

}  // namespace kestrom::app
