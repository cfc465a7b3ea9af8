set(KESTROM_BOT_TESTS_CONVERSATION
  ConversationConversionTests.cpp
  HandleBarParserTests.cpp
  ${PROJECT_SOURCE_DIR}/Tests/Support/ExpressionHandleBarParser.cpp)
