#pragma once

#include <string_view>

/// What the server sends of the case "c1" of the organization "o1", whose bot is "b1".
namespace kestrom::tests {

constexpr std::string_view kCase =
    R"({"_id":"c1","customer":{"email":"a@b.c","lastName":"Brook","firstName":"Ada"},)"
    R"("property":{"country":"US","zipCode":"05401","state":"VT","city":"Burlington","streetAddress2":"Unit B",)"
    R"("streetAddress1":"12 Maple Street"},"bot":{"_id":"b1","name":"Home"},"accessCode":"K7M","organizationId":"o1",)"
    R"("status":"in_progress","policy":{"itemLimit":2500}})";
constexpr std::string_view kBot = R"({"sequence":[{"type":"module","key":"k","id":"m1"}]})";
constexpr std::string_view kLogin = R"({"token":"t.o.k","organizationId":"o1","kestromId":"c1","expiresIn":3600})";

}  // namespace kestrom::tests
