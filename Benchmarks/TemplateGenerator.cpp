#include "Benchmarks/TemplateGenerator.hpp"

#include "Platform/Foundation/JSONWriter.hpp"

#include <string_view>

namespace kestrom::benchmarks {

namespace {

using foundation::JSONWriter;

class Generator {
 public:
  std::string run(std::size_t bytes) {
    _writer.beginObject();
    _writer.key("sequence");
    _writer.beginArray();
    while (_writer.text().size() < bytes) module();
    _writer.endArray();
    _writer.endObject();
    return std::move(_writer).text();
  }

 private:
  void member(std::string_view key, std::string_view text) {
    _writer.key(key);
    _writer.string(text);
  }

  void open(std::string_view type, std::string_view text) {
    const std::string number = std::to_string(++_count);
    _writer.beginObject();
    member("type", type);
    member("key", "node_key_" + number);
    member("id", "6f1d8a52-0c1e-4a37-node-" + number);
    member("text", text);
  }

  void choices(int count) {
    _writer.key("options");
    _writer.beginObject();
    _writer.key("values");
    _writer.beginArray();
    for (int index = 0; index < count; ++index) {
      _writer.beginObject();
      member("text", "Choice number " + std::to_string(index) + " of this question");
      member("key", "choice_" + std::to_string(index));
      _writer.endObject();
    }
    _writer.endArray();
    _writer.endObject();
  }

  void leaf(int index) {
    switch (index % 5) {
      case 0:
        open("bot", "Thank you. Next we will have a look at the {{case.address.street}} side of the house.");
        break;
      case 1:
        open("select_one", "In which condition is the roof covering, as far as you can see it from the ground?");
        choices(4);
        break;
      case 2:
        open("number", "How many \"square feet\" does the room have, roughly?");
        _writer.key("options");
        _writer.beginObject();
        _writer.key("minValue");
        _writer.integer(1);
        _writer.key("maxValue");
        _writer.integer(20000);
        _writer.endObject();
        break;
      case 3:
        open("select_multiple", "Which of these can you find in the kitchen?\nTick all that apply.");
        choices(6);
        break;
      default:
        open("text", "Please describe what you see in your own words.");
        break;
    }
    _writer.endObject();
  }

  void leaves(std::string_view key, int count) {
    _writer.key(key);
    _writer.beginArray();
    for (int index = 0; index < count; ++index) leaf(index);
    _writer.endArray();
  }

  void menu() {
    open("cyoa", "Which part of the house would you like to inspect next?");
    choices(3);
    _writer.key("adventures");
    _writer.beginArray();
    for (int arm = 0; arm < 3; ++arm) {
      _writer.beginObject();
      member("value", "Part " + std::to_string(arm));
      member("key", "choice_" + std::to_string(arm));
      _writer.key("adventure");
      _writer.beginObject();
      leaves("sequence", 3);
      _writer.endObject();
      _writer.endObject();
    }
    _writer.endArray();
    _writer.endObject();
  }

  void branching() {
    open("boolean", "Is there a basement?");
    choices(2);
    _writer.key("branches");
    _writer.beginArray();
    for (const std::string_view key : {"choice_0", "choice_1"}) {
      _writer.beginObject();
      member("logicalOperator", "OR");
      _writer.key("cases");
      _writer.beginArray();
      _writer.beginObject();
      member("operator", "equal");
      member("value", key);
      _writer.endObject();
      _writer.endArray();
      _writer.key("branch");
      _writer.beginObject();
      leaves("sequence", 2);
      _writer.endObject();
      _writer.endObject();
    }
    _writer.endArray();
    _writer.endObject();
  }

  void module() {
    open("module", "Module");
    _writer.key("repeatable");
    _writer.boolean(true);
    _writer.key("repeatableDetails");
    _writer.beginObject();
    _writer.key("maxRepeats");
    _writer.integer(5);
    member("repeatText", "Is there one more of these?");
    _writer.endObject();
    _writer.key("sequence");
    _writer.beginArray();
    for (int index = 0; index < 10; ++index) leaf(index);
    menu();
    branching();
    _writer.endArray();
    _writer.endObject();
  }

  JSONWriter _writer;
  std::size_t _count = 0;
};

}  // namespace

std::string generateTemplate(std::size_t bytes) {
  return Generator().run(bytes);
}

}  // namespace kestrom::benchmarks
