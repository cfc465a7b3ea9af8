kestrom_fuzzer(kestrom_url_fuzzer
  SOURCES URLFuzzer.cpp
  DEPENDS kestrom_foundation)
