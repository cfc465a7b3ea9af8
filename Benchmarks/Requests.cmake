find_package(CURL REQUIRED)
kestrom_benchmark(kestrom_request_benchmarks
  SOURCES RequestBenchmarks.cpp
  DEPENDS kestrom_sdk kestrom_sandbox_process CURL::libcurl)
