kestrom_fuzzer(kestrom_answers_fuzzer
  SOURCES AnswersFuzzer.cpp
  DEPENDS kestrom_models)
