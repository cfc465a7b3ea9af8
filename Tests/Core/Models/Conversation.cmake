set(KESTROM_MODEL_TESTS_CONVERSATION
  AnswerConversionTests.cpp
  BotAPIAnswerCodingTests.cpp
  MessageTests.cpp
  StoredURLTests.cpp)
