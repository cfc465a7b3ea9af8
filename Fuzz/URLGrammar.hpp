#pragma once

#include <algorithm>
#include <optional>
#include <string_view>

/// A second reading of the grammar of URI references (RFC 3986, appendix A), slow and plain, to hold the parser
/// against.
namespace kestrom::fuzzing {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";

inline bool isIn(char c, std::string_view set) {
  return set.find(c) != std::string_view::npos;
}

/// Only unreserved characters, sub-delimiters, percent escapes and those of `others`.
inline bool isEncoded(std::string_view text, std::string_view others) {
  while (!text.empty()) {
    const char c = text.front();
    if (c == '%') {
      if (text.size() < 3 || !isIn(text[1], kHexDigits) || !isIn(text[2], kHexDigits)) return false;
      text.remove_prefix(3);
    } else {
      if (!isIn(c, kLetters) && !isIn(c, kDigits) && !isIn(c, "-._~!$&'()*+,;=") && !isIn(c, others)) return false;
      text.remove_prefix(1);
    }
  }
  return true;
}

inline bool isIPv4(std::string_view text) {
  for (int part = 0; part < 4; ++part) {
    const std::size_t length = std::min(text.find_first_not_of(kDigits), text.size());
    const std::string_view digits = text.substr(0, length);
    if (digits.empty() || digits.size() > 3 || (digits.size() > 1 && digits.front() == '0')) return false;
    if (digits.size() == 3 && digits > "255") return false;
    text.remove_prefix(length);
    if (part == 3) return text.empty();
    if (!text.starts_with('.')) return false;
    text.remove_prefix(1);
  }
  return false;
}

/// Number of 16-bit groups in colon-separated text; absent when it is no such list. Four dotted numbers at the end are
/// two groups, where `takesIPv4` allows them.
inline std::optional<int> countGroups(std::string_view text, bool takesIPv4) {
  if (text.empty()) return 0;
  int groups = 0;
  while (true) {
    const std::size_t colon = text.find(':');
    const std::string_view group = text.substr(0, colon);
    const bool isLast = colon == std::string_view::npos;
    const bool isHex = !group.empty() && group.size() <= 4 && group.find_first_not_of(kHexDigits) == group.npos;
    if (!isHex && !(isLast && takesIPv4 && isIPv4(group))) return std::nullopt;
    groups += isHex ? 1 : 2;
    if (isLast) return groups;
    text.remove_prefix(colon + 1);
  }
}

inline bool isIPv6(std::string_view text) {
  const std::size_t gap = text.find("::");
  if (gap == std::string_view::npos) return countGroups(text, true) == 8;
  const auto before = countGroups(text.substr(0, gap), false);
  const auto after = countGroups(text.substr(gap + 2), true);
  return before && after && *before + *after <= 7;
}

/// An address form to come; none has been defined. The grammar's "v" may be written "V" as well, which our parser does
/// not take.
inline bool isFutureAddress(std::string_view text) {
  if (!text.starts_with('v')) return false;
  const std::size_t dot = text.find('.');
  if (dot == std::string_view::npos || dot == 1 || dot + 1 == text.size()) return false;
  return text.substr(1, dot - 1).find_first_not_of(kHexDigits) == std::string_view::npos &&
         !isIn('%', text.substr(dot)) && isEncoded(text.substr(dot + 1), ":");
}

inline bool isAuthority(std::string_view text) {
  if (const std::size_t at = text.rfind('@'); at != std::string_view::npos) {
    if (!isEncoded(text.substr(0, at), ":")) return false;
    text.remove_prefix(at + 1);
  }
  const std::size_t colon = text.find(':', text.starts_with('[') ? std::min(text.find(']'), text.size()) : 0);
  const std::string_view host = text.substr(0, colon);
  if (colon != std::string_view::npos && text.find_first_not_of(kDigits, colon + 1) != text.npos) return false;
  if (!host.starts_with('[')) return isEncoded(host, "");
  if (!host.ends_with(']')) return false;
  const std::string_view literal = host.substr(1, host.size() - 2);
  return isIPv6(literal) || isFutureAddress(literal);
}

inline bool isURIReference(std::string_view text) {
  const std::size_t colon = text.find_first_of(":/?#");
  if (colon != std::string_view::npos && text[colon] == ':') {
    const std::string_view scheme = text.substr(0, colon);
    if (scheme.empty() || !isIn(scheme.front(), kLetters)) return false;
    if (!std::all_of(scheme.begin(), scheme.end(),
                     [](char c) { return isIn(c, kLetters) || isIn(c, kDigits) || isIn(c, "+-."); })) {
      return false;
    }
    text.remove_prefix(colon + 1);
  }
  if (const std::size_t hash = text.find('#'); hash != std::string_view::npos) {
    if (!isEncoded(text.substr(hash + 1), ":@/?")) return false;
    text = text.substr(0, hash);
  }
  if (const std::size_t question = text.find('?'); question != std::string_view::npos) {
    if (!isEncoded(text.substr(question + 1), ":@/?")) return false;
    text = text.substr(0, question);
  }
  if (text.starts_with("//")) {
    const std::size_t slash = std::min(text.find('/', 2), text.size());
    if (!isAuthority(text.substr(2, slash - 2))) return false;
    text.remove_prefix(slash);
  }
  return isEncoded(text, ":@/");
}

}  // namespace kestrom::fuzzing
