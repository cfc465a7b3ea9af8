find_package(nlohmann_json REQUIRED)

kestrom_fuzzer(kestrom_json_fuzzer
  SOURCES JSONFuzzer.cpp
  DEPENDS kestrom_foundation nlohmann_json::nlohmann_json)
kestrom_fuzzer(kestrom_template_fuzzer
  SOURCES TemplateFuzzer.cpp
  DEPENDS kestrom_services)
