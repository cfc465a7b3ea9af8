kestrom_benchmark(kestrom_conversation_benchmarks
  SOURCES ConversationBenchmarks.cpp
  DEPENDS kestrom_services)
