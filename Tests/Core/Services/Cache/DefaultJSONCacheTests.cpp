#include "Core/Services/Cache/DefaultJSONCache.hpp"

#include "Core/Models/AnswerConversion.hpp"
#include "Core/Services/Cache/SystemFileManager.hpp"
#include "Platform/Foundation/PosixFileManager.hpp"
#include "Tests/Platform/Foundation/TemporaryDirectory.hpp"
#include "Tests/Support/AnswerSamples.hpp"
#include "Tests/Support/OutcomeNow.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace kestrom::services {
namespace {

using foundation::DateStrategy;
using foundation::decodeJSON;
using foundation::encodeJSON;
using models::BotAPIAnswerDTO;
using models::KestromEventDTO;
using tests::outcomeNow;

using Answers = std::vector<BotAPIAnswerDTO>;

const CacheFilename kFile = CacheFilename::answers("organization", "case");
constexpr auto kName = "organization-case-answers.json";

BotAPIAnswerDTO answer(std::string messageId, std::string text, std::int64_t iteration = 0, bool wasSynced = false) {
  return models::apiAnswer(tests::chosenAnswer(std::move(messageId), std::move(text), iteration, 0.5), wasSynced);
}

class DefaultJSONCacheTest : public testing::Test {
 protected:
  using Directories = foundation::PosixFileManager::Directories;

  DefaultJSONCache makeCache() const {
    return {std::make_shared<SystemFileManager>(files), options, DateStrategy::secondsSinceReferenceDate};
  }

  bool upsert(const BotAPIAnswerDTO& element) { return outcomeNow(cache.upsert(element, kFile)).value().has_value(); }

  std::expected<Answers, DatabaseError> load() const {
    return outcomeNow(makeCache().load<BotAPIAnswerDTO>(kFile)).value();
  }

  foundation::TemporaryDirectory directory;
  std::shared_ptr<foundation::PosixFileManager> files =
      std::make_shared<foundation::PosixFileManager>(Directories{directory.url("documents"), directory.url("tmp")});
  foundation::DecodingOptions options{.documentsDirectory = directory.url("documents")};
  DefaultJSONCache cache = makeCache();

  std::string path(const std::string& name) const { return "documents/" + name; }
};

TEST_F(DefaultJSONCacheTest, WritesOneArrayWithDatesAsNumbers) {
  EXPECT_TRUE(upsert(answer("m", "caf\xC3\xA9")));
  EXPECT_EQ(directory.content(path(kName)),
            R"([{"value":"caf)"
            "\xC3\xA9"
            R"(","keyValue":{"key":"key","value":"caf)"
            "\xC3\xA9"
            R"("},"iterationId":0,"messageId":"m","moduleId":"module","type":"select_one","locationType":"none",)"
            R"("context":"cv_utilities.na.skip_cv","answeredAt":0.5,"wasSynced":false}])");

  KestromEventDTO event;
  event.eventDetails = {{.eventName = "chat_started", .timestamp = {12.25}, .eventProperties = {}, .eventContext = {}}};
  event.eventUser.id = "user";
  const std::vector events{event, event};
  ASSERT_TRUE(outcomeNow(cache.save(events, CacheFilename::kestromEvents())).value());
  EXPECT_NE(directory.content(path("kestrom-events.json")).find(R"("timestamp":12.25)"), std::string::npos);
  EXPECT_EQ(outcomeNow(cache.load<KestromEventDTO>(CacheFilename::kestromEvents())).value().value(), events);

  EXPECT_TRUE(outcomeNow(cache.save(Answers{}, kFile)).value());
  EXPECT_EQ(directory.content(path(kName)), "[]");
  EXPECT_EQ(load().value(), Answers{});
}

TEST_F(DefaultJSONCacheTest, FailsToLoadWhatIsMissingOrDamagedAndLeavesIt) {
  EXPECT_EQ(load().error(), DatabaseError::unknown);
  for (const std::string damaged : {"", "[", "{}", "[{}]", "[\xFF]", R"([{"value":"v"}])", "[] []"}) {
    directory.put(path(kName), damaged);
    EXPECT_EQ(load().error(), DatabaseError::unknown) << damaged;
    EXPECT_EQ(directory.content(path(kName)), damaged);
    EXPECT_TRUE(upsert(answer("m", "t")));
    EXPECT_EQ(load().value(), Answers{answer("m", "t")}) << damaged;
  }
}

TEST_F(DefaultJSONCacheTest, ExchangesTheLastAnswerOfTheSameKey) {
  const BotAPIAnswerDTO ambiguous = [] {
    BotAPIAnswerDTO other = answer("mmo", "other message");
    other.moduleId = "dule";
    return other;
  }();
  ASSERT_EQ(cacheKey(ambiguous), cacheKey(answer("m", "")));
  ASSERT_TRUE(outcomeNow(cache.save(Answers{answer("m", "1"), answer("n", "2"), answer("m", "3")}, kFile)).value());

  EXPECT_TRUE(upsert(answer("m", "4", 0, true)));
  EXPECT_TRUE(upsert(answer("m", "5", 1)));
  EXPECT_EQ(load().value(),
            (Answers{answer("m", "1"), answer("n", "2"), answer("m", "4", 0, true), answer("m", "5", 1)}));
  EXPECT_TRUE(upsert(ambiguous));
  EXPECT_EQ(load().value(), (Answers{answer("m", "1"), answer("n", "2"), ambiguous, answer("m", "5", 1)}));
}

/// Reading all, changing one and writing all: what an upsert comes to, however it gets there.
std::string literalUpsert(const std::string& text, const BotAPIAnswerDTO& element,
                          const foundation::DecodingOptions& options) {
  Answers answers = decodeJSON<Answers>(text, options).value_or(Answers{});
  std::size_t index = answers.size();
  while (index > 0 && cacheKey(answers[index - 1]) != cacheKey(element)) --index;
  if (index > 0) {
    answers[index - 1] = element;
  } else {
    answers.push_back(element);
  }
  return encodeJSON(answers);
}

TEST_F(DefaultJSONCacheTest, GivesWhatReadingChangingAndWritingAllGives) {
  std::mt19937 random(7);
  const auto below = [&](unsigned bound) { return random() % bound; };
  DefaultJSONCache other = makeCache();
  for (int step = 0; step < 1'000; ++step) {
    std::string before = directory.content(path(kName));
    // Now and then somebody else has written the file: with blanks, with an address of another install, damaged.
    if (below(8) == 0) {
      const std::string stranger =
          R"([ {"value":"file:///old/photo.jpg", "keyValue":{"key":"k","value":"v"}, "iterationId":0.0, "messageId":"3",)"
          R"("moduleId":"module","locationType":"none","answeredAt":1e3,"unknown":[1]}, )";
      switch (below(3)) {
        case 0:
          before = stranger + before.substr(before.empty() ? 0 : 1);
          break;
        case 1:
          before = before.substr(0, below(400));
          break;
        default:
          if (!before.empty()) before[below(static_cast<unsigned>(before.size()))] ^= static_cast<char>(1 << below(8));
      }
      directory.put(path(kName), before);
    } else if (below(50) == 0) {
      cache.remove(kFile);
      before.clear();
    }
    BotAPIAnswerDTO element = answer(std::to_string(below(12)), std::string(below(40), 'x'), below(2), below(2) == 0);
    if (below(4) == 0) element.value = {models::MediaBundleDTO{directory.url("documents/a.mp4"), std::nullopt}};
    const std::string expected = literalUpsert(before, element, options);
    ASSERT_TRUE(outcomeNow((below(3) == 0 ? other : cache).upsert(element, kFile)).value());
    ASSERT_EQ(directory.content(path(kName)), expected) << "step " << step;
  }
}

TEST_F(DefaultJSONCacheTest, KeepsWhatItCannotRead) {
  ASSERT_TRUE(upsert(answer("m", "1")));
  const std::string kept = directory.content(path(kName));
  // Larger than what is taken, but perhaps good: a hole in the file, which takes no room on the disk.
  std::filesystem::resize_file(directory.path(path(kName)), foundation::JSONDocument::kMaximumSize + 1);
  EXPECT_FALSE(upsert(answer("n", "2")));
  EXPECT_TRUE(directory.content(path(kName)).starts_with(kept));

  std::filesystem::remove(directory.path(path(kName)));
  std::filesystem::create_directories(directory.path(path(kName) + "/inside"));
  EXPECT_FALSE(upsert(answer("n", "2")));
  EXPECT_FALSE(outcomeNow(cache.save(Answers{}, kFile)).value());
  EXPECT_TRUE(std::filesystem::exists(directory.path(path(kName) + "/inside")));
}

TEST_F(DefaultJSONCacheTest, WritesNothingThatIsNoJSON) {
  ASSERT_TRUE(upsert(answer("m", "1")));
  const std::string kept = directory.content(path(kName));
  BotAPIAnswerDTO nowhere = answer("m", "2");
  nowhere.location = models::LocationSnapshotDTO{{std::numeric_limits<double>::quiet_NaN(), 0}, "Point"};
  EXPECT_FALSE(upsert(nowhere));
  EXPECT_FALSE(outcomeNow(cache.save(Answers{nowhere}, kFile)).value());
  EXPECT_EQ(directory.content(path(kName)), kept);
}

TEST_F(DefaultJSONCacheTest, RemovesAFileAndNothingElse) {
  cache.remove(kFile);
  EXPECT_FALSE(std::filesystem::exists(directory.path("documents"))) << "removing made the directory";
  ASSERT_TRUE(upsert(answer("m", "1")));
  ASSERT_TRUE(outcomeNow(cache.upsert(answer("m", "1"), CacheFilename::answers("organization", "other"))).value());
  cache.remove(kFile);
  EXPECT_EQ(load().error(), DatabaseError::unknown);
  EXPECT_TRUE(std::filesystem::exists(directory.path(path("organization-other-answers.json"))));
}

TEST_F(DefaultJSONCacheTest, StaysInTheDocumentsDirectory) {
  directory.put("victim-answers.json", "untouched");
  const std::vector<CacheFilename> hostile{
      CacheFilename::answers("..", "../victim"),    CacheFilename::answers("../../tmp/a", "b"),
      CacheFilename::answers("/etc", "x"),          CacheFilename::answers(std::string("a\0b", 3), "x"),
      CacheFilename::answers("%2E%2E%2F", "x"),     CacheFilename::answers("", "?query#fragment"),
      CacheFilename::answers("a\\..\\b", "\n\xFF"),
  };
  for (const CacheFilename& file : hostile) {
    EXPECT_TRUE(outcomeNow(cache.upsert(answer("m", file.name()), file)).value()) << file.name();
    EXPECT_EQ(outcomeNow(cache.load<BotAPIAnswerDTO>(file)).value().value().size(), 1U);
  }
  std::vector<std::string> kept;
  for (const auto& entry : std::filesystem::directory_iterator(directory.path("documents"))) {
    EXPECT_TRUE(entry.is_regular_file()) << entry.path();
    kept.push_back(entry.path().filename());
  }
  EXPECT_EQ(kept.size(), hostile.size());
  EXPECT_EQ(directory.names(), (std::vector<std::string>{"documents", "victim-answers.json"}));
  EXPECT_EQ(directory.content("victim-answers.json"), "untouched");
  for (const CacheFilename& file : hostile) cache.remove(file);
  EXPECT_TRUE(std::filesystem::is_empty(directory.path("documents")));

  EXPECT_FALSE(outcomeNow(cache.upsert(answer("m", "t"), CacheFilename::answers(std::string(300, 'a'), "x"))).value());
  SystemFileManager manager(files);
  for (const std::string name : {"", ".", "..", "a/b", "/a"}) EXPECT_FALSE(manager.documentsFileURL(name, true));
}

}  // namespace
}  // namespace kestrom::services
