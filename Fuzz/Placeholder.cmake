kestrom_fuzzer(kestrom_placeholder_fuzzer
  SOURCES PlaceholderFuzzer.cpp ${PROJECT_SOURCE_DIR}/Tests/Support/ExpressionHandleBarParser.cpp
  DEPENDS kestrom_services ICU::i18n ICU::uc)
kestrom_fuzzer(kestrom_stored_url_fuzzer
  SOURCES StoredURLFuzzer.cpp
  DEPENDS kestrom_models)
