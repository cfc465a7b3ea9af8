// Decoding a template into its records, freeing included, beside a decoder written by hand over simdjson's DOM and one
// over nlohmann-json, which fill the same records from the same bytes.

#include "Benchmarks/TemplateGenerator.hpp"
#include "Core/Models/BotTemplateCoding.hpp"

#include <benchmark/benchmark.h>
#include <simdjson.h>
#include <nlohmann/json.hpp>

#include <map>

namespace kestrom::benchmarks {
namespace {

using models::AdventureNode;
using models::BotNode;
using models::BotTemplate;
using models::ConditionalNode;
using models::ConversationDTO;
using models::NodeList;
using OptionsDTO = ConversationDTO::MessageDTO::OptionsDTO;
using Operators = std::array<std::string_view, 6>;

constexpr Operators kOperators{"equal", "notEqual", "greaterThan", "lessThan", "contains", "doesNotContain"};

ConditionalNode::Case::Operator operatorOf(std::string_view text) {
  return static_cast<ConditionalNode::Case::Operator>(std::find(kOperators.begin(), kOperators.end(), text) -
                                                      kOperators.begin());
}

namespace dom = simdjson::dom;

void simdjsonOptions(dom::object in, OptionsDTO& out) {
  for (const auto [key, value] : in) {
    if (key == "values") {
      const dom::array list = value.get_array();
      auto& values = out.values.emplace();
      values.reserve(list.size());
      for (const dom::object choice : list) {
        auto& made = values.emplace_back();
        for (const auto [name, content] : choice) {
          if (name == "text") {
            made.text = std::string_view(content);
          } else if (name == "key") {
            if (content.is_bool()) {
              made.key = bool(content) ? "true" : "false";
            } else if (content.is_int64()) {
              made.key = std::to_string(std::int64_t(content));
            } else {
              made.key = std::string_view(content);
            }
          } else if (name == "showCamera") {
            made.showCamera = bool(content);
          } else if (name == "completed") {
            made.completed = bool(content);
          } else if (name == "deselectOthers") {
            made.deselectOthers = bool(content);
          }
        }
      }
    } else if (key == "maxValue") {
      out.maxValue = std::int64_t(value);
    } else if (key == "minValue") {
      out.minValue = std::int64_t(value);
    } else if (key == "maxLength") {
      out.maxLength = std::int64_t(value);
    } else if (key == "minLength") {
      out.minLength = std::int64_t(value);
    } else if (key == "cvEndpoint") {
      out.cvEndpoint = std::string_view(value);
    }
  }
}

void simdjsonNodes(dom::array in, NodeList& out);

void simdjsonGuard(dom::object in, ConditionalNode& out) {
  for (const auto [key, value] : in) {
    if (key == "logicalOperator") {
      out.logicalOperator = std::string_view(value) == "AND" ? ConditionalNode::LogicalOperator::AND
                                                             : ConditionalNode::LogicalOperator::OR;
    } else if (key == "cases") {
      const dom::array list = value.get_array();
      out.cases.reserve(list.size());
      for (const dom::object test : list) {
        auto& made = out.cases.emplace_back();
        for (const auto [name, content] : test) {
          if (name == "operator") {
            made.operation = operatorOf(content);
          } else if (name == "value") {
            if (content.is_number()) {
              made.value.form = ConditionalNode::Case::Value::Number{double(content)};
            } else if (content.is_string()) {
              made.value.form = ConditionalNode::Case::Value::String{std::string(std::string_view(content))};
            } else {
              made.value.form = ConditionalNode::Case::Value::Bool{bool(content)};
            }
          }
        }
      }
    } else if (key == "branch") {
      simdjsonNodes(value.at_key("sequence").get_array(), out.branch.emplace().sequence);
    }
  }
}

void simdjsonNode(dom::object in, BotNode& out) {
  for (const auto [key, value] : in) {
    if (key == "type") {
      out.type = models::messageTypeOfWireString(value).value();
    } else if (key == "options") {
      simdjsonOptions(value, out.options.emplace());
    } else if (key == "key") {
      out.key = std::string_view(value);
    } else if (key == "id") {
      out.id = std::string_view(value);
    } else if (key == "text") {
      out.text = std::string_view(value);
    } else if (key == "repeatText") {
      out.repeatText = std::string_view(value);
    } else if (key == "repeatable") {
      out.repeatable = bool(value);
    } else if (key == "sequence") {
      simdjsonNodes(value, out.sequence.emplace());
    } else if (key == "adventures") {
      const dom::array list = value.get_array();
      auto& arms = out.adventures.emplace();
      arms.reserve(list.size());
      for (const dom::object arm : list) {
        auto& made = arms.emplace_back();
        for (const auto [name, content] : arm) {
          if (name == "value") {
            made.value = std::string_view(content);
          } else if (name == "key") {
            made.key = std::string_view(content);
          } else if (name == "adventure") {
            simdjsonNodes(content.at_key("sequence").get_array(), made.adventure.sequence);
          }
        }
      }
    } else if (key == "branches") {
      const dom::array list = value.get_array();
      auto& guards = out.branches.emplace();
      guards.reserve(list.size());
      for (const dom::object guard : list) simdjsonGuard(guard, guards.emplace_back());
    } else if (key == "repeatableDetails") {
      auto& details = out.repeatableDetails.emplace();
      for (const auto [name, content] : dom::object(value)) {
        if (name == "maxRepeats") {
          details.maxRepeats = std::int64_t(content);
        } else if (name == "repeatText") {
          details.repeatText = std::string_view(content);
        }
      }
    }
  }
}

void simdjsonNodes(dom::array in, NodeList& out) {
  out.reserve(in.size());
  for (const dom::object node : in) simdjsonNode(node, out.append());
}

using nlohmann::json;

void nlohmannNodes(const json& in, NodeList& out);

template <class T>
void nlohmannOptional(const json& in, const char* key, std::optional<T>& out) {
  if (const auto found = in.find(key); found != in.end()) out = found->get<T>();
}

void nlohmannOptions(const json& in, OptionsDTO& out) {
  if (const auto values = in.find("values"); values != in.end()) {
    for (const json& choice : *values) {
      auto& made = out.values ? out.values->emplace_back() : out.values.emplace().emplace_back();
      const json& key = choice.at("key");
      made.text = choice.at("text");
      made.key = key.is_string() ? key.get<std::string>() : key.dump();
      nlohmannOptional(choice, "showCamera", made.showCamera);
      nlohmannOptional(choice, "completed", made.completed);
      nlohmannOptional(choice, "deselectOthers", made.deselectOthers);
    }
  }
  nlohmannOptional(in, "maxValue", out.maxValue);
  nlohmannOptional(in, "minValue", out.minValue);
  nlohmannOptional(in, "maxLength", out.maxLength);
  nlohmannOptional(in, "minLength", out.minLength);
  nlohmannOptional(in, "cvEndpoint", out.cvEndpoint);
}

void nlohmannGuard(const json& in, ConditionalNode& out) {
  out.logicalOperator =
      in.at("logicalOperator") == "AND" ? ConditionalNode::LogicalOperator::AND : ConditionalNode::LogicalOperator::OR;
  for (const json& test : in.at("cases")) {
    auto& made = out.cases.emplace_back();
    made.operation = operatorOf(test.at("operator").get<std::string_view>());
    const json& value = test.at("value");
    if (value.is_number()) {
      made.value.form = ConditionalNode::Case::Value::Number{value.get<double>()};
    } else if (value.is_string()) {
      made.value.form = ConditionalNode::Case::Value::String{value.get<std::string>()};
    } else {
      made.value.form = ConditionalNode::Case::Value::Bool{value.get<bool>()};
    }
  }
  if (in.contains("branch")) nlohmannNodes(in.at("branch").at("sequence"), out.branch.emplace().sequence);
}

void nlohmannNodes(const json& in, NodeList& out) {
  out.reserve(in.size());
  for (const json& node : in) {
    BotNode& made = out.append();
    made.type = models::messageTypeOfWireString(node.at("type").get<std::string_view>()).value();
    made.key = node.at("key");
    made.id = node.at("id");
    if (node.contains("options")) nlohmannOptions(node.at("options"), made.options.emplace());
    nlohmannOptional(node, "text", made.text);
    nlohmannOptional(node, "repeatText", made.repeatText);
    nlohmannOptional(node, "repeatable", made.repeatable);
    if (node.contains("sequence")) nlohmannNodes(node.at("sequence"), made.sequence.emplace());
    if (node.contains("adventures")) {
      for (const json& arm : node.at("adventures")) {
        auto& adventure = made.adventures ? made.adventures->emplace_back() : made.adventures.emplace().emplace_back();
        adventure.value = arm.at("value");
        adventure.key = arm.at("key");
        nlohmannNodes(arm.at("adventure").at("sequence"), adventure.adventure.sequence);
      }
    }
    if (node.contains("branches")) {
      auto& guards = made.branches.emplace();
      for (const json& guard : node.at("branches")) nlohmannGuard(guard, guards.emplace_back());
    }
    if (node.contains("repeatableDetails")) {
      const json& details = node.at("repeatableDetails");
      nlohmannOptional(details, "maxRepeats", made.repeatableDetails.emplace().maxRepeats);
      made.repeatableDetails->repeatText = details.at("repeatText");
    }
  }
}

BotTemplate decodeWithKestrom(std::string_view text) {
  return std::move(*models::decodeBotTemplate(text));
}

BotTemplate decodeWithSimdjson(std::string_view text) {
  dom::parser parser;
  BotTemplate result;
  simdjsonNodes(parser.parse(text.data(), text.size()).at_key("sequence").get_array(), result.sequence);
  return result;
}

BotTemplate decodeWithNlohmann(std::string_view text) {
  BotTemplate result;
  nlohmannNodes(json::parse(text).at("sequence"), result.sequence);
  return result;
}

template <BotTemplate (*decode)(std::string_view)>
void decoding(benchmark::State& state) {
  static std::map<std::int64_t, std::string> texts;
  std::string& text = texts[state.range(0)];
  if (text.empty()) text = generateTemplate(static_cast<std::size_t>(state.range(0)) << 20);
  if (decode(text) != decodeWithKestrom(text)) state.SkipWithError("the decoders disagree");
  for (auto step : state) {
    const BotTemplate decoded = decode(text);
    benchmark::DoNotOptimize(decoded.sequence.size());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

BENCHMARK(decoding<decodeWithKestrom>)->Name("decode/kestrom")->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(decoding<decodeWithSimdjson>)->Name("decode/simdjson")->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(decoding<decodeWithNlohmann>)->Name("decode/nlohmann")->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrom::benchmarks
