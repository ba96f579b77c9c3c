// The platform's services: notification centre, user defaults, threads.
#include <thread>

#include "ContractHost.h"

namespace contract {
namespace {

using pelmar::Notification;
using pelmar::Value;

class Services : public OnEveryHost {
 protected:
  pelmar::NotificationCenter& center() { return api().defaultCenter(); }
  void post(const std::string& name, const pelmar::Ref<pelmar::HostObject>& object = {}) {
    center().postNotification({name, object, std::nullopt});
  }
  /// Observes under the identity of `who` and adds its letter to `heard`.
  void observe(const char& who, const std::string& name, const pelmar::Ref<pelmar::HostObject>& object = {}) {
    center().addObserver(&who, name, object, [this, &who](const Notification&) { heard += who; });
  }

  std::string heard;
  const char a = 'a', b = 'b', c = 'c';
};
ON_EVERY_HOST(Services);

TEST_P(Services, observersAreCalledInTheOrderInWhichTheyWereAddedBeforeThePostingReturns) {
  observe(b, "event");
  observe(a, "event");
  observe(c, "other");
  observe(b, "event");
  post("event");
  EXPECT_EQ(heard, "bab");
  for (const char* who : {&a, &b, &c}) center().removeObserver(who);
}

TEST_P(Services, removingAnObserverForgetsAllThatWasAddedUnderItsIdentity) {
  observe(a, "event");
  observe(b, "event");
  observe(a, "other");
  center().removeObserver(&a);
  post("event");
  post("other");
  EXPECT_EQ(heard, "b");
  center().removeObserver(&b);
  center().removeObserver(&c);
  post("event");
  EXPECT_EQ(heard, "b");
}

TEST_P(Services, anObserverRemovedDuringAPostingIsNotCalledAnyMore) {
  center().addObserver(&c, "event", nullptr, [this](const Notification&) {
    heard += 'c';
    center().removeObserver(&a);
  });
  observe(a, "event");
  observe(b, "event");
  post("event");
  EXPECT_EQ(heard, "cb");
  center().removeObserver(&b);
  center().removeObserver(&c);
}

TEST_P(Services, anObserverMayRemoveItselfWhileItIsCalled) {
  const auto word = std::make_shared<std::string>("x");
  center().addObserver(&a, "event", nullptr, [this, word](const Notification&) {
    center().removeObserver(&a);
    heard += *word;  // what the handler holds is still there
  });
  observe(b, "event");
  post("event");
  post("event");
  EXPECT_EQ(heard, "xbb");
  EXPECT_EQ(word.use_count(), 1) << "the handler is gone";
  center().removeObserver(&b);
}

TEST_P(Services, anObserverOfOneObjectHearsOnlyThat) {
  const int other = host->open(Plane::axial);
  observe(a, "event", viewer(0));
  observe(b, "event");
  post("event", viewer(0));
  post("event", viewer(other));
  post("event");
  EXPECT_EQ(heard, "abbb");
  center().removeObserver(&a);
  center().removeObserver(&b);
}

TEST_P(Services, aPostingWithinAPostingIsHeardFirst) {
  center().addObserver(&a, "outer", nullptr, [this](const Notification&) {
    heard += '(';
    post("inner");
    heard += ')';
  });
  observe(b, "inner");
  observe(c, "outer");
  post("outer");
  EXPECT_EQ(heard, "(b)c");
  for (const char* who : {&a, &b, &c}) center().removeObserver(who);
}

TEST_P(Services, aNotificationBringsItsObjectAndInformation) {
  Value::Dictionary info{{"action", "mouseUp"}, {"number", 3}};
  int calls = 0;
  center().addObserver(&a, "event", nullptr, [&](const Notification& posted) {
    ++calls;
    EXPECT_EQ(posted.name, "event");
    EXPECT_TRUE(posted.object == view());
    EXPECT_EQ(*posted.userInfoValue("action").string(), "mouseUp");
    EXPECT_EQ(posted.userInfoValue("number").intValue(), 3);
    EXPECT_TRUE(posted.userInfoValue("none").isNil());
  });
  center().postNotification({"event", view(), info});
  EXPECT_EQ(calls, 1);
  center().removeObserver(&a);
}

TEST_P(Services, userDefaultsAreNilUntilSetAndKeepTheirKind) {
  auto& defaults = api().standardUserDefaults();
  EXPECT_TRUE(defaults.objectForKey("key").isNil());
  defaults.setObject(true, "key");
  defaults.setObject("words", "other");
  EXPECT_TRUE(defaults.objectForKey("key").isBool());
  EXPECT_TRUE(defaults.objectForKey("key").boolValue());
  EXPECT_EQ(*defaults.objectForKey("other").string(), "words");
  defaults.setObject(Value::Array{1, "two"}, "key");
  EXPECT_EQ(defaults.objectForKey("key"), Value(Value::Array{1, "two"}));
  EXPECT_TRUE(defaults.objectForKey("Key").isNil()) << "case counts";
  defaults.setObject({}, "key");
  EXPECT_TRUE(defaults.objectForKey("key").isNil());
}

TEST_P(Services, theMainThreadIsTheOneOnWhichTheHostWasMade) {
  EXPECT_TRUE(api().application().isMainThread());
  bool elsewhere = true;
  std::thread([&] { elsewhere = api().application().isMainThread(); }).join();
  EXPECT_FALSE(elsewhere);
}

TEST_P(Services, textIsSearchedWithoutCaseDiacriticsAndWidth) {
  auto& text = api().textServices();
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("IRM Lombaire", "lombaire"));
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("S\u00c4ULE", "saule"));
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("saule", "s\u00e4u"));
  EXPECT_TRUE(text.containsIgnoringCaseDiacriticsAndWidth("\uff2c\uff33 spine", "ls"));
  EXPECT_FALSE(text.containsIgnoringCaseDiacriticsAndWidth("spine", "lumbar"));
  EXPECT_FALSE(text.containsIgnoringCaseDiacriticsAndWidth("spine", "")) << "nothing is never found";
}

TEST_P(Services, aWindowDescriptionThatTheBundleLacksMakesNone) {
  struct Owner final : pelmar::WindowOwner {
    bool performAction(std::string_view) override { return false; }
    Value valueForKey(std::string_view) const override { return {}; }
    bool setValue(const Value&, std::string_view) override { return false; }
  } owner;
  EXPECT_TRUE(api().windowServices().loadWindow("NoSuchWindow", owner) == nullptr);
}

}  // namespace
}  // namespace contract
