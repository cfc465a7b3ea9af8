set(KESTROM_BOT_TESTS_CONVERSATION
  HandleBarParserTests.cpp
  ${PROJECT_SOURCE_DIR}/Tests/Support/ExpressionHandleBarParser.cpp)
