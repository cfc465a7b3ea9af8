#pragma once

#include "Apps/kestrom/Lint/Finding.hpp"

#include <array>
#include <string_view>

/// The closed list of rules; docs/template-rules.md tells of each.
namespace kestrom::app::rules {

struct Rule {
  std::string_view name;
  /// What its findings are, unless a case of the rule says otherwise.
  Severity severity;
};

inline constexpr Rule kDecodingError{"decoding-error", Severity::error};
inline constexpr Rule kNestingLimit{"nesting-limit", Severity::error};
inline constexpr Rule kDuplicateKey{"duplicate-key", Severity::warning};
inline constexpr Rule kMisspeltKey{"misspelt-key", Severity::warning};
inline constexpr Rule kIgnoredField{"ignored-field", Severity::warning};
inline constexpr Rule kMissingText{"missing-text", Severity::warning};
inline constexpr Rule kTopLevelLeaf{"top-level-leaf", Severity::warning};
inline constexpr Rule kModuleLeaf{"module-leaf", Severity::error};
inline constexpr Rule kChoiceWithoutOptions{"choice-without-options", Severity::error};
inline constexpr Rule kCaptureWithoutCamera{"capture-without-camera", Severity::error};
inline constexpr Rule kDuplicateOptionKey{"duplicate-option-key", Severity::warning};
inline constexpr Rule kInvertedValueRange{"inverted-value-range", Severity::error};
inline constexpr Rule kInvertedLengthRange{"inverted-length-range", Severity::error};
inline constexpr Rule kMenuKeyMismatch{"menu-key-mismatch", Severity::error};
inline constexpr Rule kDuplicateArmKey{"duplicate-arm-key", Severity::error};
inline constexpr Rule kMenuType{"menu-type", Severity::error};
inline constexpr Rule kMenuInRepeat{"menu-in-repeat", Severity::error};
inline constexpr Rule kEndlessRepeat{"endless-repeat", Severity::error};
inline constexpr Rule kMissingRepeatText{"missing-repeat-text", Severity::warning};
inline constexpr Rule kGateNeverRepeats{"gate-never-repeats", Severity::warning};
inline constexpr Rule kGateAlwaysRepeats{"gate-always-repeats", Severity::error};
inline constexpr Rule kGateNotFirst{"gate-not-first", Severity::warning};
inline constexpr Rule kNestedRepeat{"nested-repeat", Severity::error};
inline constexpr Rule kDeadGuard{"dead-guard", Severity::warning};
inline constexpr Rule kShadowingGuard{"shadowing-guard", Severity::warning};
inline constexpr Rule kMisleadingCase{"misleading-case", Severity::warning};
inline constexpr Rule kDuplicateId{"duplicate-id", Severity::warning};
inline constexpr Rule kWholeCasePlaceholder{"whole-case-placeholder", Severity::warning};
inline constexpr Rule kUnresolvedPlaceholder{"unresolved-placeholder", Severity::warning};
inline constexpr Rule kUnfilledPlaceholder{"unfilled-placeholder", Severity::warning};

inline constexpr std::array kAll{
    kDecodingError,         kNestingLimit,         kDuplicateKey,       kMisspeltKey,
    kIgnoredField,          kMissingText,          kTopLevelLeaf,       kModuleLeaf,
    kChoiceWithoutOptions,  kCaptureWithoutCamera, kDuplicateOptionKey, kInvertedValueRange,
    kInvertedLengthRange,   kMenuKeyMismatch,      kDuplicateArmKey,    kMenuType,
    kMenuInRepeat,          kEndlessRepeat,        kMissingRepeatText,  kGateNeverRepeats,
    kGateAlwaysRepeats,     kGateNotFirst,         kNestedRepeat,       kDeadGuard,
    kShadowingGuard,        kMisleadingCase,       kDuplicateId,        kWholeCasePlaceholder,
    kUnresolvedPlaceholder, kUnfilledPlaceholder,
};

}  // namespace kestrom::app::rules
