#pragma once

#include "Core/Models/Message.hpp"
#include "Platform/Foundation/JSONWriter.hpp"

#include <span>

namespace kestrom::app {

/// Writes the rows of a chat as a list of objects, each with "type", "identifier", "isEditable" and the fields that its
/// kind has; absent fields leave their key out, points in time are seconds since 1970. "grouping" is each bot bubble's
/// place among the rows around it.
void writeRows(std::span<const models::Message> rows, foundation::JSONWriter& writer);

/// Writes one of them.
void writeRow(std::span<const models::Message> rows, std::size_t index, foundation::JSONWriter& writer);

}  // namespace kestrom::app
