#include "Apps/sandbox/FaultScript.hpp"

#include "Platform/Foundation/JSONWriter.hpp"

#include <algorithm>
#include <utility>

namespace kestrom::sandbox {

namespace {

using namespace std::string_view_literals;
using foundation::JSONValue;

/// A preface of a protocol that nobody speaks, with bytes that are no text at all.
constexpr std::string_view kGarbage = "\x16\x03\xff\0garbage\r\n\x80\xfe\r\n\r\n"sv;

constexpr std::pair<std::string_view, Fault::Drop> kDrops[] = {
    {"beforeBody", Fault::Drop::beforeBody},
    {"afterBody", Fault::Drop::afterBody},
    {"duringResponse", Fault::Drop::duringResponse},
    {"afterResponse", Fault::Drop::afterResponse},
};

bool isHeaderName(std::string_view name) {
  return !name.empty() && name.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_") ==
                              std::string_view::npos;
}

bool isHeaderValue(std::string_view value) {
  return std::ranges::all_of(value, [](char c) { return c == '\t' || static_cast<unsigned char>(c) >= ' '; });
}

/// What the server itself decides, since it delimits answers.
bool isOwnHeader(std::string_view name) {
  return equalsIgnoringCase(name, "Content-Length") || equalsIgnoringCase(name, "Transfer-Encoding") ||
         equalsIgnoringCase(name, "Connection");
}

}  // namespace

/// Reads one rule; the first error counts.
class FaultScript::Reader {
 public:
  explicit Reader(JSONValue rule) : _rule(rule) {}

  std::expected<Rule, std::string> read() {
    if (!_rule.isObject()) return std::unexpected(": not an object");
    Rule rule{Endpoint::mobileLogin, {}, Fault{.answer = {}, .garbage = {}, .rule = _rule}};
    readMembers(rule);
    if (!_hasEndpoint) fail("", "\"endpoint\" is missing");
    if (!_hasCall) fail("", "\"call\" is missing");
    finish(rule.fault);
    if (!_error.empty()) return std::unexpected(_error);
    return rule;
  }

 private:
  void readMembers(Rule& rule) {
    for (auto it = _rule.begin(); it != _rule.end(); ++it) {
      const std::string_view key = (*it).string();
      ++it;
      readMember(rule, key, *it);
    }
  }

  void readMember(Rule& rule, std::string_view key, JSONValue value) {
    if (key == "endpoint") {
      readEndpoint(rule, value);
    } else if (key == "call") {
      readCalls(rule, value);
    } else if (key == "status") {
      readStatus(value);
    } else if (key == "body") {
      foundation::JSONWriter writer;
      writer.value(value);
      setBody(key, std::move(writer).text(), "application/json");
    } else if (key == "text") {
      if (!value.isString()) return fail(key, "not a string");
      setBody(key, std::string(value.string()), "text/plain; charset=utf-8");
    } else if (key == "headers") {
      readHeaders(value);
    } else if (key == "delay") {
      const auto seconds = value.number();
      if (!seconds || *seconds < 0 || *seconds > kMaximumDelay) return fail(key, "not a number from 0 to 3600");
      rule.fault.delay = std::chrono::duration<double>(*seconds);
    } else if (key == "drop") {
      readDrop(rule.fault, value);
    } else if (key == "garbage") {
      if (!value.isBoolean() || !value.boolean()) return fail(key, "can only be true");
      rule.fault.garbage = kGarbage;
    } else if (key == "handle") {
      if (!value.isBoolean()) return fail(key, "neither true nor false");
      _handle = value.boolean();
    } else {
      fail(key, "not a key of a rule");
    }
  }

  void readEndpoint(Rule& rule, JSONValue value) {
    const auto endpoint = value.isString() ? endpointNamed(value.string()) : std::nullopt;
    if (!endpoint) return fail("endpoint", "not an endpoint's name");
    rule.endpoint = *endpoint;
    _hasEndpoint = true;
  }

  void readCalls(Rule& rule, JSONValue value) {
    _hasCall = true;
    if (value.isString() && value.string() == "all") return;
    const auto add = [&](JSONValue number) {
      const auto call = number.integer();
      if (!call || *call < 1) return fail("call", "neither a number from 1, a list of such numbers, nor \"all\"");
      rule.calls.push_back(*call);
    };
    if (!value.isArray()) return add(value);
    if (value.size() == 0) return fail("call", "an empty list");
    for (const JSONValue number : value) add(number);
  }

  void readStatus(JSONValue value) {
    const auto status = value.integer();
    if (!status || *status < 200 || *status > 599) return fail("status", "not a number from 200 to 599");
    _answer.status = static_cast<unsigned>(*status);
    _hasStatus = true;
  }

  void setBody(std::string_view key, std::string body, std::string_view contentType) {
    if (_hasBody) return fail(key, "there is a body already");
    _hasBody = true;
    _answer.body = std::move(body);
    _answer.contentType = contentType;
  }

  void readHeaders(JSONValue value) {
    if (!value.isObject()) return fail("headers", "not an object");
    for (auto it = value.begin(); it != value.end(); ++it) {
      const std::string_view name = (*it).string();
      ++it;
      if (!isHeaderName(name) || isOwnHeader(name) || !(*it).isString() || !isHeaderValue((*it).string()))
        return fail("headers", "\"" + std::string(name) + "\" cannot be set so");
      _hasHeaders = true;
      if (equalsIgnoringCase(name, "Content-Type")) {
        _contentType = (*it).string();
      } else {
        _answer.headers.push_back({std::string(name), std::string((*it).string())});
      }
    }
  }

  void readDrop(Fault& fault, JSONValue value) {
    if (value.isString()) {
      for (const auto& [name, drop] : kDrops) {
        if (value.string() != name) continue;
        fault.drop = drop;
        return;
      }
    }
    fail("drop", "neither \"beforeBody\", \"afterBody\", \"duringResponse\" nor \"afterResponse\"");
  }

  /// What the keys mean together.
  void finish(Fault& fault) {
    const bool isMute = fault.garbage || fault.drop == Fault::Drop::beforeBody || fault.drop == Fault::Drop::afterBody;
    if ((_hasBody || _hasHeaders) && !_hasStatus) fail("", "a body or headers without \"status\"");
    if (_hasBody && (_answer.status == 204 || _answer.status == 304)) fail("status", "no body goes with it");
    if (isMute && _hasStatus) fail("status", "there is no answer to bear it");
    if (fault.garbage && fault.drop != Fault::Drop::never) fail("garbage", "does not go with \"drop\"");
    if (fault.drop == Fault::Drop::beforeBody && _handle.value_or(false))
      fail("handle", "nothing can be handled before the body is there");
    fault.isHandled = _handle.value_or(!isMute && !_hasStatus);
    if (!isMute && !_hasStatus && !fault.isHandled) fail("handle", "there is no answer without \"status\"");
    if (!isMute && !_hasStatus && fault.drop == Fault::Drop::never && fault.delay.count() == 0)
      fail("", "nothing goes wrong");
    if (!_hasStatus) return;
    if (!_contentType.empty()) _answer.contentType = _contentType;
    fault.answer = std::move(_answer);
  }

  void fail(std::string_view key, std::string_view why) {
    if (!_error.empty()) return;
    if (!key.empty()) _error = "." + std::string(key);
    _error += ": " + std::string(why);
  }

  JSONValue _rule;
  Response _answer;
  std::string _contentType;
  std::optional<bool> _handle;
  bool _hasEndpoint = false;
  bool _hasCall = false;
  bool _hasStatus = false;
  bool _hasBody = false;
  bool _hasHeaders = false;
  std::string _error;
};

std::expected<FaultScript, std::string> FaultScript::parse(std::string_view text) {
  auto document = foundation::JSONDocument::parse(text);
  if (!document) return std::unexpected(document.error().description);
  if (!document->root().isArray()) return std::unexpected("not a list of rules");
  FaultScript script;
  script._document = std::move(*document);
  for (const JSONValue value : script._document->root()) {
    auto rule = Reader(value).read();
    if (!rule) return std::unexpected("[" + std::to_string(script._rules.size()) + "]" + rule.error());
    script._rules.push_back(std::move(*rule));
  }
  return script;
}

FaultScript::FaultScript(FaultScript&& other) noexcept
    : _document(std::move(other._document)), _rules(std::move(other._rules)), _counts(other._counts) {}

FaultScript::Call FaultScript::next(Endpoint endpoint) {
  Call call;
  {
    const std::lock_guard lock(_mutex);
    call.number = ++_counts[static_cast<std::size_t>(endpoint)];
  }
  for (const Rule& rule : _rules) {
    if (rule.endpoint != endpoint) continue;
    if (!rule.calls.empty() && std::ranges::find(rule.calls, call.number) == rule.calls.end()) continue;
    call.fault = &rule.fault;
    return call;
  }
  return call;
}

}  // namespace kestrom::sandbox
