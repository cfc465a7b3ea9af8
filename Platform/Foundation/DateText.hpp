#pragma once

#include "Kestrom/Platform/Date.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace kestrom::foundation {

/// The date in UTC with whole seconds, "2024-01-31T12:34:56Z" (ISO 8601); fractions are cut off towards the past.
std::string iso8601String(Date date);

/// Reads "yyyy-MM-dd'T'HH:mm:ss", a fraction of one to nine digits that may be missing, and a zone: "Z", "+0000" or
/// "+02:00". Absent for anything else, and for a day or a time of day that does not exist.
std::optional<Date> parseISO8601(std::string_view text);

/// The date form of answers on the wire: as above, but the fraction must be there.
std::optional<Date> parseAnswerDate(std::string_view text);

}  // namespace kestrom::foundation
