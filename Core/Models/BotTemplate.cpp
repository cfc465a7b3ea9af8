#include "Core/Models/BotTemplate.hpp"

#include "Core/Models/BotTemplateCoding.hpp"

namespace kestrom::foundation {

using models::AdventureNode;
using models::BotNode;
using models::BotTemplate;
using models::ConditionalNode;
using models::NodeList;
using Case = ConditionalNode::Case;

template <>
struct Coding<ConditionalNode::LogicalOperator> {
  static constexpr std::array<std::string_view, 2> kCases{"AND", "OR"};
};

template <>
struct Coding<Case::Operator> {
  static constexpr std::array<std::string_view, 6> kCases{"equal",    "notEqual", "greaterThan",
                                                          "lessThan", "contains", "doesNotContain"};
};

/// A bare value, whose JSON type tells its form.
template <>
struct Coder<Case::Value> {
  static void decode(Case::Value& out, JSONValue value, DecodingContext& context) {
    if (const auto number = value.number()) {
      out.form = Case::Value::Number{*number};
    } else if (value.isString()) {
      out.form = Case::Value::String{std::string(value.string())};
    } else if (value.isBoolean()) {
      out.form = Case::Value::Bool{value.boolean()};
    } else {
      context.fail(DecodingError::Kind::typeMismatch, "Value type not recognized");
    }
  }
};

static void decodeNode(void* list, JSONValue element, DecodingContext& context);
static void decodeArm(void* list, JSONValue element, DecodingContext& context);
static void decodeGuard(void* list, JSONValue element, DecodingContext& context);

/// A list of nodes waits for its turn, so that a deep template takes no deep stack.
template <>
struct Coder<NodeList> {
  static void decode(NodeList& out, JSONValue value, DecodingContext& context) {
    if (!value.isArray()) return failType(context, value, "a list");
    out.reserve(std::min(value.size(), kMaximumReserve));
    context.defer(value, &out, &decodeNode, BotTemplate::kMaximumNesting);
  }
};

/// What holds lists of nodes waits too: a list that waits must not be moved by those that come after it.
template <>
struct Coder<std::vector<AdventureNode>> {
  static void decode(std::vector<AdventureNode>& out, JSONValue value, DecodingContext& context) {
    if (!value.isArray()) return failType(context, value, "a list");
    context.defer(value, &out, &decodeArm);
  }
};

template <>
struct Coder<std::vector<ConditionalNode>> {
  static void decode(std::vector<ConditionalNode>& out, JSONValue value, DecodingContext& context) {
    if (!value.isArray()) return failType(context, value, "a list");
    context.defer(value, &out, &decodeGuard);
  }
};

template <>
struct Coding<AdventureNode::Adventure> {
  static constexpr std::array kFields{field<&AdventureNode::Adventure::sequence>("sequence")};
};

template <>
struct Coding<AdventureNode> {
  static constexpr std::array kFields{
      field<&AdventureNode::value>("value"),
      field<&AdventureNode::key>("key"),
      field<&AdventureNode::adventure>("adventure"),
  };
};

template <>
struct Coding<Case> {
  static constexpr std::array kFields{field<&Case::operation>("operator"), field<&Case::value>("value")};
};

template <>
struct Coding<ConditionalNode::Branch> {
  static constexpr std::array kFields{field<&ConditionalNode::Branch::sequence>("sequence")};
};

template <>
struct Coding<ConditionalNode> {
  static constexpr std::array kFields{
      field<&ConditionalNode::logicalOperator>("logicalOperator"),
      field<&ConditionalNode::cases>("cases"),
      field<&ConditionalNode::branch>("branch"),
  };
};

template <>
struct Coding<BotNode::RepeatableDetails> {
  static constexpr std::array kFields{
      field<&BotNode::RepeatableDetails::maxRepeats>("maxRepeats"),
      field<&BotNode::RepeatableDetails::repeatText>("repeatText"),
  };
};

template <>
struct Coding<BotNode> {
  static constexpr std::array kFields{
      field<&BotNode::type>("type"),
      field<&BotNode::options>("options"),
      field<&BotNode::key>("key"),
      field<&BotNode::id>("id"),
      field<&BotNode::text>("text"),
      field<&BotNode::repeatText>("repeatText"),
      field<&BotNode::repeatable>("repeatable"),
      field<&BotNode::sequence>("sequence"),
      field<&BotNode::adventures>("adventures"),
      field<&BotNode::branches>("branches"),
      field<&BotNode::repeatableDetails>("repeatableDetails"),
  };
};

void Coder<BotTemplate>::decode(BotTemplate& out, JSONValue value, DecodingContext& context) {
  static constexpr std::array kFields{field<&BotTemplate::sequence>("sequence")};
  decodeFields(kFields, &out, value, context);
}

static void decodeArm(void* list, JSONValue element, DecodingContext& context) {
  Coder<AdventureNode>::decode(static_cast<std::vector<AdventureNode>*>(list)->emplace_back(), element, context);
}

static void decodeGuard(void* list, JSONValue element, DecodingContext& context) {
  Coder<ConditionalNode>::decode(static_cast<std::vector<ConditionalNode>*>(list)->emplace_back(), element, context);
}

static void decodeNode(void* list, JSONValue element, DecodingContext& context) {
  Coder<BotNode>::decode(static_cast<NodeList*>(list)->append(), element, context);
}

}  // namespace kestrom::foundation

namespace kestrom::models {

std::expected<BotTemplate, std::vector<foundation::DecodingError>> decodeBotTemplate(
    const foundation::JSONDocument& document, const foundation::DecodingOptions& options) {
  return foundation::decodeDocument<BotTemplate>(document, options);
}

foundation::TolerantlyDecoded<BotTemplate> decodeBotTemplateTolerantly(const foundation::JSONDocument& document) {
  return foundation::decodeTolerantly<BotTemplate>(document);
}

std::expected<BotTemplate, foundation::DecodingError> decodeBotTemplate(std::string_view text) {
  return foundation::decodeJSON<BotTemplate>(text, {});
}

}  // namespace kestrom::models
