kestrom_benchmark(kestrom_publisher_benchmarks
  SOURCES PublisherBenchmarks.cpp
  DEPENDS kestrom_reactive)
