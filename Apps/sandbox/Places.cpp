#include "Apps/sandbox/Places.hpp"

#include "Platform/Foundation/JSONWriter.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string_view>

namespace kestrom::sandbox {

namespace {

/// A long and a short form of one name.
struct Name {
  std::string_view full;
  std::string_view brief;
};

struct Place {
  Position position;
  std::string_view number;
  Name route;
  std::string_view city;
  Name state;
  std::string_view postalCode;
  Name country;
};

constexpr Name kUnitedStates{"United States", "US"};
constexpr Name kCanada{"Canada", "CA"};

constexpr Place kPlaces[] = {
    {{44.4759, -73.2121}, "12", {"Maple Street", "Maple St"}, "Burlington", {"Vermont", "VT"}, "05401", kUnitedStates},
    {{40.7128, -74.0060}, "41", {"Harbor Street", "Harbor St"}, "New York", {"New York", "NY"}, "10007", kUnitedStates},
    {{25.7617, -80.1918}, "230", {"Palm Avenue", "Palm Ave"}, "Miami", {"Florida", "FL"}, "33131", kUnitedStates},
    {{41.8781, -87.6298}, "905", {"Lake Drive", "Lake Dr"}, "Chicago", {"Illinois", "IL"}, "60604", kUnitedStates},
    {{29.7604, -95.3698}, "77", {"Bayou Road", "Bayou Rd"}, "Houston", {"Texas", "TX"}, "77002", kUnitedStates},
    {{39.7392, -104.9903},
     "1600",
     {"Summit Street", "Summit St"},
     "Denver",
     {"Colorado", "CO"},
     "80202",
     kUnitedStates},
    {{34.0522, -118.2437},
     "8",
     {"Orange Lane", "Orange Ln"},
     "Los Angeles",
     {"California", "CA"},
     "90012",
     kUnitedStates},
    {{47.6062, -122.3321},
     "514",
     {"Cedar Street", "Cedar St"},
     "Seattle",
     {"Washington", "WA"},
     "98101",
     kUnitedStates},
    {{21.3069, -157.8583},
     "19",
     {"Hibiscus Way", "Hibiscus Way"},
     "Honolulu",
     {"Hawaii", "HI"},
     "96813",
     kUnitedStates},
    {{43.6532, -79.3832}, "100", {"Queen Street", "Queen St"}, "Toronto", {"Ontario", "ON"}, "M5H 2N2", kCanada},
    {{45.5019, -73.5674}, "3", {"Rue des Lilas", "Rue des Lilas"}, "Montreal", {"Quebec", "QC"}, "H2Y 1C6", kCanada},
    {{49.2827, -123.1207},
     "62",
     {"Fir Avenue", "Fir Ave"},
     "Vancouver",
     {"British Columbia", "BC"},
     "V6B 1A1",
     kCanada},
};

/// A small map with a pin, a PNG in base64.
constexpr std::string_view kThumbnail =
    "iVBORw0KGgoAAAANSUhEUgAAACAAAAAgBAMAAACBVGfHAAAADFBMVEXo6uT///+pz+jSOy8iIjHxAAAAUElEQVR42mNgYGAUYIAA"
    "GD04BATRAE4tzMZoAsbGBigCzMbGxiQKYJiBaQvxfmFCF1BCE2BCF1BSwvQ+3vBgUlJCNUMJTUCIkAATuoASWAAAe4YOIkhyOC4A"
    "AAAASUVORK5CYII=";

/// Grows with the distance over the globe: the square of half the chord.
double distanceMeasure(Position left, Position right) {
  constexpr double kRadians = std::numbers::pi / 180;
  const double north = std::sin((left.latitude - right.latitude) * kRadians / 2);
  const double east = std::sin((left.longitude - right.longitude) * kRadians / 2);
  return north * north + std::cos(left.latitude * kRadians) * std::cos(right.latitude * kRadians) * east * east;
}

void writeComponent(foundation::JSONWriter& writer, Name name, std::string_view type) {
  writer.beginObject();
  writer.key("long_name");
  writer.string(name.full);
  writer.key("short_name");
  writer.string(name.brief);
  writer.key("types");
  writer.beginArray();
  writer.string(type);
  writer.endArray();
  writer.endObject();
}

}  // namespace

std::string addressNear(Position position) {
  const Place& place = *std::ranges::min_element(
      kPlaces, {}, [&](const Place& candidate) { return distanceMeasure(candidate.position, position); });
  foundation::JSONWriter writer;
  writer.beginObject();
  writer.key("thumbnail");
  writer.string(kThumbnail);
  writer.key("altLocationList");
  writer.beginArray();
  writer.beginObject();
  writer.key("address_components");
  writer.beginArray();
  writeComponent(writer, {place.number, place.number}, "street_number");
  writeComponent(writer, place.route, "route");
  writeComponent(writer, {place.city, place.city}, "locality");
  writeComponent(writer, place.state, "administrative_area_level_1");
  writeComponent(writer, place.country, "country");
  writeComponent(writer, {place.postalCode, place.postalCode}, "postal_code");
  writer.endArray();
  writer.endObject();
  writer.endArray();
  writer.endObject();
  return std::move(writer).text();
}

}  // namespace kestrom::sandbox
