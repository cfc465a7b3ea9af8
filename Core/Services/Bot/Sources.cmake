set(KESTROM_BOT_SOURCES
  Bot/ConditionalEvaluation.cpp
)
