kestrom_benchmark(kestrom_cache_benchmarks
  SOURCES CacheBenchmarks.cpp
  DEPENDS kestrom_services)
