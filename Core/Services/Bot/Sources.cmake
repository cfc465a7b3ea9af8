set(KESTROM_BOT_SOURCES
  Bot/AnswerIndex.cpp
  Bot/ConditionalEvaluation.cpp
  Bot/NativeBotEngine.cpp
  Bot/TemplateWalk.cpp
  Bot/Transcript.cpp
)
