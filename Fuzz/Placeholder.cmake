kestrom_fuzzer(kestrom_stored_url_fuzzer
  SOURCES StoredURLFuzzer.cpp
  DEPENDS kestrom_models)
