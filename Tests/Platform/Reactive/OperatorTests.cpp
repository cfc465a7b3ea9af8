#include "Platform/Reactive/Combining.hpp"
#include "Platform/Reactive/Publisher.hpp"
#include "Platform/Reactive/Sources.hpp"
#include "Platform/Reactive/Subjects.hpp"
#include "Tests/Platform/Reactive/Trace.hpp"

#include <gtest/gtest.h>

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrom::reactive {
namespace {

using Numbers = Publisher<int, std::string>;
using Subject = PassthroughSubject<int, std::string>;

Numbers numbers(std::vector<int> values) {
  return listed<std::string>(std::move(values));
}
Numbers broken() {
  return fail<int>(std::string("broken"));
}
Numbers thenBroken(std::vector<int> values) {
  return numbers(std::move(values)).append(broken());
}

TEST(Operators, ChangeValuesAndEnds) {
  const auto half = [](int value) -> std::expected<int, std::string> {
    if (value % 2 != 0) return std::unexpected("odd " + std::to_string(value));
    return value / 2;
  };
  const std::expected<int, std::string> good = 5;
  const std::expected<int, std::string> bad = std::unexpected("no");
  struct Row {
    std::string_view label;
    Numbers publisher;
    std::string_view want;
  };
  const Row rows[] = {
      {"map", thenBroken({1, 2}).map([](int v) { return v * 10; }), " 10 20 !broken"},
      {"filter", thenBroken({1, 2, 3}).filter([](int v) { return v != 2; }), " 1 3 !broken"},
      {"compactMap", numbers({1, 2, 3}).compactMap([](int v) { return v == 2 ? std::nullopt : std::optional(v + 1); }),
       " 2 4 |"},
      {"tryMap ends at its first error", numbers({2, 3, 4}).tryMap(half), " 1 !odd 3"},
      {"tryMap passes failures", broken().tryMap(half), " !broken"},
      {"tryMap of what cannot fail", listed(std::vector{4, 1}).tryMap(half), " 2 !odd 1"},
      {"scan", numbers({1, 2, 3}).scan(10, [](int sum, int v) { return sum + v; }), " 11 13 16 |"},
      {"first", thenBroken({1, 2}).first(), " 1 |"},
      {"first of nothing", numbers({}).first(), " |"},
      {"first of a failure", broken().first(), " !broken"},
      {"flatMap keeps the order of what comes at once",
       numbers({1, 2}).flatMap([](int v) { return numbers({v, v * 10}); }), " 1 10 2 20 |"},
      {"flatMap ends with the failure of an inner one",
       numbers({1, 2, 3}).flatMap([](int v) { return v == 2 ? broken() : numbers({v}); }), " 1 !broken"},
      {"flatMap ends with the failure of the outer one", thenBroken({1}).flatMap([](int v) { return just(v); }),
       " 1 !broken"},
      {"flatMap of what cannot fail", just(1).flatMap([](int) { return broken(); }), " !broken"},
      {"catchError", thenBroken({1}).catchError([](const std::string& e) { return numbers({int(e.size()), 7}); }),
       " 1 6 7 |"},
      {"catchError whose replacement fails",
       broken().catchError([](const std::string& e) { return fail<int>(e + " twice"); }), " !broken twice"},
      {"catchError without a failure", numbers({1}).catchError([](const std::string&) { return broken(); }), " 1 |"},
      {"mapError", thenBroken({1}).mapError([](const std::string& e) { return e + "!"; }), " 1 !broken!"},
      {"replaceError", thenBroken({1}).replaceError(0).setFailureType<std::string>(), " 1 0 |"},
      {"append", numbers({1}).append(numbers({2})), " 1 2 |"},
      {"append behind a failure", thenBroken({1}).append(numbers({2})), " 1 !broken"},
      {"merge", mergeMany<int, std::string>({numbers({1, 2}), numbers({}), numbers({3})}), " 1 2 3 |"},
      {"merge of none", mergeMany<int, std::string>({}), " |"},
      {"merge stops at a failure", mergeMany<int, std::string>({numbers({1}), broken(), numbers({3})}), " 1 !broken"},
      {"finished result", finished(good), " 5 |"},
      {"failed result", finished(bad), " !no"},
      {"empty", empty<int, std::string>(), " |"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    EXPECT_EQ(Trace(row.publisher).text(), row.want);
    EXPECT_EQ(Trace(row.publisher).text(), row.want) << "the second subscription runs it again";
  }
}

TEST(Operators, AValueIsHandedOverOnce) {
  const auto publisher = handedOver(std::string("x"));
  EXPECT_EQ(Trace(publisher).text(), " x |");
  EXPECT_EQ(Trace(publisher).text(), " |");
}

TEST(Operators, RetryTriesAtMostAsOftenAsTold) {
  struct Row {
    int failures;
    int retries;
    int attempts;
    std::string_view want;
  };
  const Row rows[] = {{0, 3, 1, " 1 |"}, {3, 3, 4, " 4 |"}, {4, 3, 4, " !broken"}, {1, 0, 1, " !broken"}};
  for (const Row& row : rows) {
    int attempts = 0;
    const auto publisher = deferred([&] { return ++attempts <= row.failures ? broken() : numbers({attempts}); });
    EXPECT_EQ(Trace(publisher.retry(row.retries)).text(), row.want);
    EXPECT_EQ(attempts, row.attempts);
  }
}

TEST(Operators, CombineLatestPairsTheNewest) {
  Subject a;
  Subject b;
  Trace trace(combineLatest(a.publisher(), b.publisher()));
  a.send(1);
  a.send(2);
  EXPECT_EQ(trace.news(), "");
  b.send(10);
  b.send(20);
  a.send(3);
  EXPECT_EQ(trace.news(), " 2,10 2,20 3,20");
  a.finish();
  b.send(30);
  EXPECT_EQ(trace.news(), " 3,30");
  b.finish();
  EXPECT_EQ(trace.news(), " |");

  EXPECT_EQ(Trace(combineLatest(numbers({}), a.publisher())).text(), " |") << "no pair can come";
  EXPECT_EQ(Trace(combineLatest(numbers({1}), broken())).text(), " !broken");
}

TEST(Operators, ZipPairsByPlaceAndEndsWhenNoPairCanCome) {
  Subject a;
  Subject b;
  Trace trace(zip(a.publisher(), b.publisher()));
  a.send(1);
  a.send(2);
  b.send(10);
  EXPECT_EQ(trace.news(), " 1,10");
  a.finish();
  EXPECT_EQ(trace.news(), "") << "one is still waiting for its partner";
  b.send(20);
  EXPECT_EQ(trace.news(), " 2,20 |");

  Subject c;
  int cancels = 0;
  const auto watched = c.publisher().handleEvents({.onCancel = [&] { ++cancels; }});
  EXPECT_EQ(Trace(zip(watched, thenBroken({1}))).text(), " !broken");
  EXPECT_EQ(cancels, 1) << "a failure cancels the other";
}

TEST(Operators, FlatMapAndMergeEndWithTheirLastPart) {
  Subject outer;
  Subject inner;
  Trace trace(outer.publisher().flatMap([&](int) { return inner.publisher(); }));
  outer.send(1);
  outer.send(2);
  inner.send(5);
  EXPECT_EQ(trace.news(), " 5 5");
  outer.finish();
  EXPECT_EQ(trace.news(), "");
  inner.finish();
  EXPECT_EQ(trace.news(), " |");
}

TEST(Operators, FirstCancelsWhatIsAboveAndLeavesTheRest) {
  Subject source;
  Subject rest;
  int cancels = 0;
  Trace trace(source.publisher().handleEvents({.onCancel = [&] { ++cancels; }}).first().flatMap([&](int) {
    return rest.publisher();
  }));
  source.send(1);
  EXPECT_EQ(cancels, 1);
  source.send(2);
  rest.send(7);
  EXPECT_EQ(trace.news(), " 7") << "a second value would have subscribed twice";
  rest.finish();
  EXPECT_EQ(trace.news(), " |");
}

TEST(Operators, FirstTakesOneAlsoWhenItsSubscriberSendsAgain) {
  Subject source;
  std::vector<int> received;
  const AnyCancellable token = source.publisher().first().sink([](const Completion<std::string>&) {},
                                                               [&](int value) {
                                                                 received.push_back(value);
                                                                 source.send(value + 1);
                                                               });
  source.send(1);
  EXPECT_EQ(received, std::vector{1});
}

TEST(Operators, HandleEventsSeesAllInOrder) {
  std::string seen;
  const auto publisher = thenBroken({1}).handleEvents({
      .onSubscribe = [&] { seen += "subscribe "; },
      .onOutput = [&](const int& value) { seen += std::to_string(value) + " "; },
      .onCompletion = [&](const Completion<std::string>& end) { seen += end.failure(); },
      .onCancel = [&] { seen += " cancel"; },
  });
  EXPECT_EQ(seen, "") << "nothing before there is a subscriber";
  EXPECT_EQ(Trace(publisher).text(), " 1 !broken");
  EXPECT_EQ(seen, "subscribe 1 broken");
}

TEST(Operators, AListStopsWhereItsSubscriberCancels) {
  int made = 0;
  Subject stop;
  AnyCancellable token;
  std::vector<int> received;
  token = stop.publisher()
              .flatMap([&](int) { return numbers({1, 2, 3}); })
              .map([&](int value) {
                ++made;
                return value;
              })
              .sink([](const auto&) {},
                    [&](int value) {
                      received.push_back(value);
                      if (value == 2) token.cancel();
                    });
  stop.send(0);
  EXPECT_EQ(received, (std::vector{1, 2}));
  EXPECT_EQ(made, 2) << "nobody is left to make the third for";
}

TEST(Operators, AFutureRunsOnceAndADeferredOneForEach) {
  int runs = 0;
  const auto start = [&] {
    return future<int, std::string>([&](const Promise<int, std::string>& promise) {
      promise(++runs);
      promise(std::unexpected("too late"));
    });
  };
  const Numbers once = start();
  EXPECT_EQ(runs, 1) << "before anybody subscribes";
  EXPECT_EQ(Trace(once).text(), " 1 |");
  EXPECT_EQ(Trace(once).text(), " 1 |");
  const Numbers each = deferred(start);
  EXPECT_EQ(Trace(each).text(), " 2 |");
  EXPECT_EQ(Trace(each).text(), " 3 |");

  std::optional<Promise<int, std::string>> open;
  const auto later = future<int, std::string>([&](const auto& promise) { open = promise; });
  Trace kept(later);
  Trace dropped(later);
  dropped.cancel();
  (*open)(std::unexpected("offline"));
  EXPECT_EQ(kept.text(), " !offline");
  EXPECT_EQ(dropped.text(), "");
}

TEST(Subjects, ReachThoseWhoAreThereAndTellLaterOnesOfTheEnd) {
  Subject subject;
  subject.send(1);
  Trace early(subject.publisher());
  subject.send(2);
  Trace late(subject.publisher());
  early.cancel();
  subject.send(3);
  subject.finish(Completion<std::string>::failed("gone"));
  subject.send(4);
  subject.finish();
  EXPECT_EQ(early.text(), " 2");
  EXPECT_EQ(late.text(), " 3 !gone");
  EXPECT_EQ(Trace(subject.publisher()).text(), " !gone");
}

TEST(Subjects, ThoseWhoComeOrGoWhileItSends) {
  Subject subject;
  std::optional<Trace> second;
  std::optional<Trace> third;
  const AnyCancellable first = subject.publisher().sink([](const auto&) {},
                                                        [&](int value) {
                                                          if (value == 1) third.emplace(subject.publisher());
                                                          if (value == 2) second->cancel();
                                                        });
  second.emplace(subject.publisher());
  subject.send(1);
  EXPECT_EQ(third->text(), "") << "came after the value";
  subject.send(2);
  EXPECT_EQ(second->text(), " 1") << "left before its turn";
  EXPECT_EQ(third->text(), " 2");
}

TEST(PublishedField, ReplaysThenTellsAndHoldsTheNewValueAlready) {
  Published<int> field(1);
  std::vector<std::pair<int, int>> toldAndHeld;
  const AnyCancellable token = field.publisher().sink([&](int value) { toldAndHeld.emplace_back(value, field.get()); });
  field.set(2);
  field.set(2);
  EXPECT_EQ(toldAndHeld, (std::vector<std::pair<int, int>>{{1, 1}, {2, 2}, {2, 2}}));
}

TEST(PublishedField, EverybodyEndsWithTheNewestWhenASubscriberSetsIt) {
  Published<int> field(0);
  Trace before(field.publisher());
  const AnyCancellable token = field.publisher().sink([&](int value) {
    if (value == 1) field.set(2);
  });
  Trace after(field.publisher());
  field.set(1);
  EXPECT_EQ(before.text(), " 0 1 2");
  EXPECT_EQ(after.text(), " 0 2");
}

TEST(PublishedField, WaitingForFalseAndThenTakingIt) {
  Published<bool> isBusy(true);
  int taken = 0;
  const auto whenFree = isBusy.publisher().filter([](bool busy) { return !busy; }).first();
  const auto take = [&](bool) {
    ++taken;
    isBusy.set(true);
  };
  const AnyCancellable one = whenFree.sink(take);
  EXPECT_EQ(taken, 0);
  isBusy.set(false);
  EXPECT_EQ(taken, 1);
  isBusy.set(false);
  EXPECT_EQ(taken, 1);
}

}  // namespace
}  // namespace kestrom::reactive
