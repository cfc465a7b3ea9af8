find_package(PkgConfig REQUIRED)
pkg_check_modules(RE2 REQUIRED IMPORTED_TARGET re2)

kestrom_benchmark(kestrom_placeholder_benchmarks
  SOURCES PlaceholderBenchmarks.cpp
  DEPENDS kestrom_services PkgConfig::RE2)
