kestrom_benchmark(kestrom_walk_benchmarks
  SOURCES
    WalkBenchmarks.cpp
    ${PROJECT_SOURCE_DIR}/Tests/Support/LiteralBotEngine.cpp
  DEPENDS kestrom_services)
