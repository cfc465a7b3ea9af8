#include "Core/SDK/SDKStore.hpp"

#include <gtest/gtest.h>

namespace kestrom::session {
namespace {

TEST(SDKStore, EndsTheProcessWhereTheHostForgotTheConfiguration) {
  EXPECT_DEATH(static_cast<void>(SDKStore().configuration()),
               "^Kestrom configuration missing. Remember to set it up before you start to interacting with the SDK\n$");
  EXPECT_DEATH(static_cast<void>(SDKStore().uiConfiguration()), "^Kestrom UI configuration missing.\n$");
}

TEST(SDKStore, KeepsTheLastOfEachValue) {
  SDKStore store;
  store.setConfiguration({"first", KestromEnvironment::staging, "Serif"});
  store.setConfiguration({"", KestromEnvironment::sandbox, std::nullopt});
  EXPECT_EQ(store.configuration(), KestromConfiguration("", KestromEnvironment::sandbox, std::nullopt));

  EXPECT_EQ(store.user(), KestromUser{});
  store.modifyUser([](KestromUser& user) { user.token = "t"; });
  store.modifyUser([](KestromUser& user) { user.accessCode = "a"; });
  EXPECT_EQ(store.user(), (KestromUser{"t", std::nullopt, "a"}));
  const KestromUser next{"u", KestromInfo{"o", "k"}, std::nullopt};
  store.setUser(next);
  EXPECT_EQ(store.user(), next);
}

}  // namespace
}  // namespace kestrom::session
