#pragma once

#include "Apps/kestrom/Lint/Finding.hpp"

#include <array>
#include <string_view>

/// The closed list of rules; docs/template-rules.md tells of each.
namespace kestrom::app::rules {

struct Rule {
  std::string_view name;
  Severity severity;
};

inline constexpr Rule kDecodingError{"decoding-error", Severity::error};
inline constexpr Rule kNestingLimit{"nesting-limit", Severity::error};
inline constexpr Rule kDuplicateKey{"duplicate-key", Severity::warning};
inline constexpr Rule kTopLevelLeaf{"top-level-leaf", Severity::warning};
inline constexpr Rule kModuleLeaf{"module-leaf", Severity::error};
inline constexpr Rule kChoiceWithoutOptions{"choice-without-options", Severity::error};
inline constexpr Rule kInvertedValueRange{"inverted-value-range", Severity::error};
inline constexpr Rule kInvertedLengthRange{"inverted-length-range", Severity::error};
inline constexpr Rule kMenuKeyMismatch{"menu-key-mismatch", Severity::error};
inline constexpr Rule kDuplicateArmKey{"duplicate-arm-key", Severity::error};
inline constexpr Rule kEndlessRepeat{"endless-repeat", Severity::error};
inline constexpr Rule kGateNeverRepeats{"gate-never-repeats", Severity::warning};
inline constexpr Rule kGateNotFirst{"gate-not-first", Severity::warning};
inline constexpr Rule kDeadGuard{"dead-guard", Severity::warning};
inline constexpr Rule kShadowingGuard{"shadowing-guard", Severity::warning};
inline constexpr Rule kDuplicateId{"duplicate-id", Severity::warning};
inline constexpr Rule kWholeCasePlaceholder{"whole-case-placeholder", Severity::warning};
inline constexpr Rule kUnresolvedPlaceholder{"unresolved-placeholder", Severity::warning};

inline constexpr std::array kAll{
    kDecodingError,       kNestingLimit,        kDuplicateKey,         kTopLevelLeaf,
    kModuleLeaf,          kChoiceWithoutOptions, kInvertedValueRange,  kInvertedLengthRange,
    kMenuKeyMismatch,     kDuplicateArmKey,     kEndlessRepeat,        kGateNeverRepeats,
    kGateNotFirst,        kDeadGuard,           kShadowingGuard,       kDuplicateId,
    kWholeCasePlaceholder, kUnresolvedPlaceholder,
};

}  // namespace kestrom::app::rules
