#pragma once

#include "Platform/Foundation/JSONDecoding.hpp"
#include "Platform/Foundation/JSONWriter.hpp"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

/// One table for each record, from which both its decoding and its encoding follow:
///
///     template <>
///     struct Coding<ProgressDTO> {
///       static constexpr std::array kFields{field<&ProgressDTO::totalModuleCount>("totalModuleCount"), …};
///     };
///
/// A member of type std::optional is an optional key (absent or null), any other a required one. A closed list of texts
/// gives `kCases` instead, a type with a form of its own its own `Coder`.
namespace kestrom::foundation {

/// Room that is made at once for the elements of a list. A document of two bytes an element must not claim memory for a
/// large record each before it is known that they are records.
constexpr std::size_t kMaximumReserve = 1024;

/// How a value of type T is read from and written to JSON: `decode(T&, JSONValue, DecodingContext&)`, which notes an
/// error in the context, and `encode(const T&, JSONWriter&)`.
template <class T>
struct Coder;

/// The table of a record or a closed list.
template <class T>
struct Coding;

/// One member of a record in JSON.
struct FieldCoding {
  std::string_view key;
  bool isRequired;
  void (*decode)(void* record, JSONValue value, DecodingContext& context);
  /// Writes key and value; nothing when the value is absent. Null for a member that is only ever read.
  void (*encode)(const void* record, std::string_view key, JSONWriter& writer);
  /// Whether `encode` is there. Apart from it, because under the sanitizers g++ 12 compares no pointer to a function in
  /// a constant expression.
  bool isEncodable = false;
};

/// Decodes the members of a record in the order of its table.
void decodeFields(std::span<const FieldCoding> fields, void* record, JSONValue value, DecodingContext& context);

/// Writes a record as an object with its members in the order of its table.
void encodeFields(std::span<const FieldCoding> fields, const void* record, JSONWriter& writer);

/// Notes that `value` is not what was wanted there, for example "a string".
void failType(DecodingContext& context, JSONValue value, std::string_view wanted);

namespace detail {

template <class T>
struct MemberTraits;
template <class Record, class Member>
struct MemberTraits<Member Record::*> {
  using RecordType = Record;
  using MemberType = Member;
};

template <class T>
struct IsOptional : std::false_type {
  using Content = T;
};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {
  using Content = T;
};

template <class T>
concept HasFields = requires { Coding<T>::kFields; };
template <class T>
concept HasCases = requires { Coding<T>::kCases; };

}  // namespace detail

/// What can be written too; records that are only ever read have no encoding.
template <class T>
concept Encodable = requires(const T& value, JSONWriter& writer) { Coder<T>::encode(value, writer); };

constexpr bool areEncodable(std::span<const FieldCoding> fields) {
  for (const FieldCoding& field : fields) {
    if (!field.isEncodable) return false;
  }
  return true;
}

/// The table's line for a member, for example `field<&BotNode::key>("key")`.
template <auto Member>
constexpr FieldCoding field(std::string_view key) {
  using Traits = detail::MemberTraits<decltype(Member)>;
  using Record = typename Traits::RecordType;
  using Optional = detail::IsOptional<typename Traits::MemberType>;
  using Content = typename Optional::Content;
  FieldCoding coding{key, !Optional::value, nullptr, nullptr};
  coding.decode = [](void* record, JSONValue value, DecodingContext& context) {
    auto& member = static_cast<Record*>(record)->*Member;
    if constexpr (Optional::value) {
      Coder<Content>::decode(member.emplace(), value, context);
    } else {
      Coder<Content>::decode(member, value, context);
    }
  };
  if constexpr (Encodable<Content>) {
    coding.isEncodable = true;
    coding.encode = [](const void* record, std::string_view name, JSONWriter& writer) {
      const auto& member = static_cast<const Record*>(record)->*Member;
      if constexpr (Optional::value) {
        if (!member) return;
        writer.key(name);
        Coder<Content>::encode(*member, writer);
      } else {
        writer.key(name);
        Coder<Content>::encode(member, writer);
      }
    };
  }
  return coding;
}

template <>
struct Coder<std::string> {
  static void decode(std::string& out, JSONValue value, DecodingContext& context);
  static void encode(const std::string& in, JSONWriter& writer) { writer.string(in); }
};

template <>
struct Coder<bool> {
  static void decode(bool& out, JSONValue value, DecodingContext& context);
  static void encode(bool in, JSONWriter& writer) { writer.boolean(in); }
};

template <>
struct Coder<std::int64_t> {
  static void decode(std::int64_t& out, JSONValue value, DecodingContext& context);
  static void encode(std::int64_t in, JSONWriter& writer) { writer.integer(in); }
};

template <>
struct Coder<double> {
  static void decode(double& out, JSONValue value, DecodingContext& context);
  static void encode(double in, JSONWriter& writer) { writer.number(in); }
};

template <>
struct Coder<Date> {
  static void decode(Date& out, JSONValue value, DecodingContext& context);
  static void encode(Date in, JSONWriter& writer) { writer.date(in); }
};

template <>
struct Coder<URL> {
  static void decode(URL& out, JSONValue value, DecodingContext& context);
  static void encode(const URL& in, JSONWriter& writer) { writer.string(in.absoluteString()); }
};

template <class T>
struct Coder<std::vector<T>> {
  static void decode(std::vector<T>& out, JSONValue value, DecodingContext& context) {
    if (!value.isArray()) return failType(context, value, "a list");
    out.clear();
    out.reserve(std::min(value.size(), kMaximumReserve));
    std::size_t index = 0;
    for (const JSONValue element : value) {
      context.enterIndex(index++);
      Coder<T>::decode(out.emplace_back(), element, context);
      context.leave();
      if (context.isStopped()) return;
    }
  }
  static void encode(const std::vector<T>& in, JSONWriter& writer)
    requires Encodable<T>
  {
    writer.beginArray();
    for (const T& element : in) Coder<T>::encode(element, writer);
    writer.endArray();
  }
};

/// A record with a table.
template <detail::HasFields T>
struct Coder<T> {
  static void decode(T& out, JSONValue value, DecodingContext& context) {
    decodeFields(Coding<T>::kFields, &out, value, context);
  }
  static void encode(const T& in, JSONWriter& writer)
    requires(areEncodable(Coding<T>::kFields))
  {
    encodeFields(Coding<T>::kFields, &in, writer);
  }
};

/// A closed list of texts: `kCases` holds them in the order of the enumeration, which counts from 0.
template <detail::HasCases T>
struct Coder<T> {
  static void decode(T& out, JSONValue value, DecodingContext& context) {
    if (!value.isString()) return failType(context, value, "a string");
    const std::string_view text = value.string();
    for (std::size_t index = 0; index < Coding<T>::kCases.size(); ++index) {
      if (Coding<T>::kCases[index] == text) {
        out = static_cast<T>(index);
        return;
      }
    }
    context.fail(DecodingError::Kind::dataCorrupted, unknownCase(text));
  }
  static void encode(T in, JSONWriter& writer) { writer.string(Coding<T>::kCases[static_cast<std::size_t>(in)]); }

 private:
  static std::string unknownCase(std::string_view text) {
    std::string description = "unknown value \"" + std::string(text.substr(0, 64)) + "\"; allowed are";
    for (const std::string_view known : Coding<T>::kCases) description += " \"" + std::string(known) + '"';
    return description;
  }
};

/// A record and all errors of its document. What an error stands at is left as a new record has it; the rest is sound.
/// A list of records has a record for each element, the broken ones too.
template <class T>
struct TolerantlyDecoded {
  T record{};
  std::vector<DecodingError> errors;
};

/// Decodes what can be decoded of a parsed document.
template <class T>
TolerantlyDecoded<T> decodeTolerantly(const JSONDocument& document) {
  const DecodingOptions options{.collectAllErrors = true};
  TolerantlyDecoded<T> result;
  DecodingContext context(options);
  Coder<T>::decode(result.record, document.root(), context);
  context.runDeferred();
  result.errors = std::move(context.errors());
  return result;
}

/// Decodes a record from a parsed document. All errors are given where the options ask for them, else the first one.
template <class T>
std::expected<T, std::vector<DecodingError>> decodeDocument(const JSONDocument& document,
                                                            const DecodingOptions& options) {
  T record{};
  DecodingContext context(options);
  Coder<T>::decode(record, document.root(), context);
  context.runDeferred();
  if (!context.errors().empty()) return std::unexpected(std::move(context.errors()));
  return record;
}

/// Decodes a record from the text of a document; the first error is given.
template <class T>
std::expected<T, DecodingError> decodeJSON(std::string_view text, const DecodingOptions& options) {
  const auto document = JSONDocument::parse(text);
  if (!document) {
    return std::unexpected(DecodingError{DecodingError::Kind::syntax, {}, document.error().description});
  }
  auto record = decodeDocument<T>(*document, options);
  if (!record) return std::unexpected(std::move(record.error().front()));
  return std::move(*record);
}

/// The JSON text of a record.
template <class T>
std::string encodeJSON(const T& record, DateStrategy dates = DateStrategy::secondsSinceReferenceDate) {
  JSONWriter writer(dates);
  Coder<T>::encode(record, writer);
  return std::move(writer).text();
}

}  // namespace kestrom::foundation
