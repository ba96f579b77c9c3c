#include <gtest/gtest.h>

#include "Recorder.h"
#include "TestImages.h"
#include "workstation/model/EventLoop.h"
#include "workstation/model/Workstation.h"

namespace workstation {
namespace {

using test::Lines;

/// A plug-in that opens a window on each menu command and writes down what it is told.
class FakePlugin final : public pelmar::PluginFilter, public pelmar::WindowOwner, public pelmar::WindowDelegate {
 public:
  FakePlugin(pelmar::PelmarAPI& host, Lines& told) : PluginFilter(host), lines(told) {}
  ~FakePlugin() override { lines.push_back("destroyed"); }

  void initPlugin() override {
    lines.push_back("init");
    api().defaultCenter().addObserver(this, pelmar::PelmarCloseViewerNotification, nullptr,
                                      [this](const pelmar::Notification&) { lines.push_back("viewer closes"); });
  }
  long filterImage(const std::string& menuName) override {
    lines.push_back("menu " + menuName);
    expectEvent();
    fromViewer = viewerController();
    window = api().windowServices().loadWindow("Palette", *this);
    api().windowServices().setDelegate(window, this);
    window->setFrameOrigin({50, 60});
    if (showWindow) window->makeKeyAndOrderFront();
    return 0;
  }
  void dealloc() override {
    PluginFilter::dealloc();
    lines.push_back("dealloc");
  }
  pelmar::Value stateSnapshot() const override { return pelmar::Value::Dictionary{{"value", value}}; }

  bool performAction(std::string_view action) override {
    lines.push_back("action " + std::string(action));
    expectEvent();
    if (action == "closeMe:") window->close();
    return action == "reset:" || action == "closeMe:";
  }
  pelmar::Value valueForKey(std::string_view key) const override { return key == "value" ? value : pelmar::Value(); }
  bool setValue(const pelmar::Value& newValue, std::string_view forKey) override {
    expectEvent();
    if (forKey != "value") return false;
    value = newValue;
    return true;
  }
  void windowWillClose() override {
    lines.push_back(window->isVisible() ? "closing, visible" : "closing, hidden");
    expectEvent();
    window->close();   // closing what is closing does nothing
    window = nullptr;  // lets the window go while it is closing
  }

  /// Whatever a person does reaches the plug-in within an event.
  void expectEvent() const { EXPECT_TRUE(!events || events->busy()); }

  Lines& lines;
  EventLoop* events = nullptr;
  bool showWindow = true;
  pelmar::Ref<pelmar::Window> window;
  pelmar::Ref<pelmar::ViewerController> fromViewer;
  pelmar::Value value = 1;
};

class FakeHandle final : public PluginHandle {
 public:
  FakeHandle(pelmar::PelmarAPI& api, Lines& lines) : object(std::make_unique<FakePlugin>(api, lines)) {}
  pelmar::PluginFilter& filter() override { return *object; }
  void dealloc() override { object->dealloc(); }
  const std::vector<std::string>& menuEntries() const override { return entries; }
  std::optional<WindowDescription> windowDescription(std::string_view name) const override {
    if (name != "Palette") return std::nullopt;
    WindowDescription description;
    description.name = "Palette";
    description.width = 200;
    description.height = 100;
    description.frameAutosaveName = "Place";
    return description;
  }

  std::unique_ptr<FakePlugin> object;
  std::vector<std::string> entries{"Labels"};
};

class Plugin : public testing::Test {
 protected:
  Plugin() {
    workstation.addImages(test::smallStudy());
    auto handle = std::make_unique<FakeHandle>(workstation.api(), lines);
    plugin = handle->object.get();
    plugin->events = &workstation.events();
    workstation.setPlugin(std::move(handle));
    viewer = *workstation.openViewer({"1.2.3", 0, 0});
    other = *workstation.openViewer({"1.2.3", 1, 0});
  }
  Lines take() { return std::exchange(lines, {}); }

  Lines lines;
  Workstation workstation;
  FakePlugin* plugin = nullptr;
  int viewer = 0;
  int other = 0;
};

TEST_F(Plugin, IsInitialisedOnceAndHasItsMenuEntries) {
  EXPECT_EQ(lines, Lines{"init"});
  EXPECT_EQ(workstation.menuEntries(), std::vector<std::string>{"Labels"});
}

TEST_F(Plugin, TheMenuCommandComesFromTheViewerWhichComesToTheFront) {
  take();
  ASSERT_TRUE(workstation.chooseMenu(viewer, "Labels"));
  EXPECT_EQ(take(), Lines{"menu Labels"});
  EXPECT_EQ(plugin->fromViewer, workstation.controller(viewer));
  EXPECT_EQ(workstation.frontViewer(), viewer);
  EXPECT_FALSE(workstation.chooseMenu(99, "Labels"));
}

TEST_F(Plugin, ItsWindowIsOpenFromShownToClosed) {
  EXPECT_FALSE(workstation.palette().has_value());
  ASSERT_TRUE(workstation.chooseMenu(viewer, "Labels"));
  const auto palette = workstation.palette();
  ASSERT_TRUE(palette.has_value());
  EXPECT_TRUE(palette->visible);
  EXPECT_EQ(palette->frame.x, 50);
  EXPECT_EQ(palette->frame.height, 100);
  EXPECT_EQ(palette->frameAutosaveName, "Place");
  take();
  ASSERT_TRUE(workstation.closePalette());
  EXPECT_EQ(take(), Lines{"closing, visible"});
  EXPECT_FALSE(workstation.palette().has_value());
  const Outcome again = workstation.closePalette();
  ASSERT_FALSE(again);
  EXPECT_EQ(*again.problem, "No palette is open: choose the plug-in's menu entry first.");
}

TEST_F(Plugin, AHiddenWindowIsNotOpenAndClosingItTellsNobody) {
  plugin->showWindow = false;
  ASSERT_TRUE(workstation.chooseMenu(viewer, "Labels"));
  take();
  EXPECT_FALSE(workstation.palette().has_value());
  plugin->window->close();
  EXPECT_TRUE(lines.empty());
}

TEST_F(Plugin, ControlsRunActionsAndSetProperties) {
  ASSERT_TRUE(workstation.chooseMenu(viewer, "Labels"));
  take();
  EXPECT_TRUE(workstation.pressPalette("reset"));
  EXPECT_TRUE(workstation.pressPalette("reset:"));
  EXPECT_EQ(take(), (Lines{"action reset:", "action reset:"}));
  EXPECT_EQ(workstation.pressPalette("nonsense").problem, "The palette has no control with the action \"nonsense\".");
  EXPECT_TRUE(workstation.setPaletteValue("value", 5));
  EXPECT_EQ(workstation.paletteValue("value").intValue(), 5);
  EXPECT_EQ(workstation.setPaletteValue("nonsense", 5).problem,
            "The palette has no setting \"nonsense\" that takes this value.");
  EXPECT_EQ(workstation.pluginState().dictionary()->at("value").intValue(), 5);
}

TEST_F(Plugin, AnActionMayCloseTheWindow) {
  ASSERT_TRUE(workstation.chooseMenu(viewer, "Labels"));
  take();
  EXPECT_TRUE(workstation.pressPalette("closeMe:"));
  EXPECT_EQ(take(), (Lines{"action closeMe:", "closing, visible"}));
  EXPECT_FALSE(workstation.palette().has_value());
}

TEST_F(Plugin, QuittingClosesThePaletteThenTheViewers) {
  ASSERT_TRUE(workstation.chooseMenu(viewer, "Labels"));
  take();
  workstation.quit();
  EXPECT_EQ(take(), (Lines{"closing, visible", "viewer closes", "viewer closes"}));
}

TEST_F(Plugin, TakenOutItIsDeallocatedThenDestroyedAndHearsNothingAnyMore) {
  ASSERT_TRUE(workstation.chooseMenu(viewer, "Labels"));
  take();
  workstation.setPlugin(nullptr);
  EXPECT_EQ(take(), (Lines{"dealloc", "destroyed"}));
  EXPECT_FALSE(workstation.palette().has_value());
  EXPECT_TRUE(workstation.pluginState().isNil());
  workstation.quit();
  EXPECT_TRUE(lines.empty());
  EXPECT_FALSE(workstation.chooseMenu(viewer, "Labels"));
}

TEST(WorkstationsEnd, TakesThePluginOutWithoutClosingAnything) {
  Lines lines;
  {
    Workstation workstation;
    workstation.addImages(test::smallStudy());
    workstation.setPlugin(std::make_unique<FakeHandle>(workstation.api(), lines));
    ASSERT_TRUE(workstation.chooseMenu(*workstation.openViewer({"1.2.3", 0, 0}), "Labels"));
    lines.clear();
  }
  EXPECT_EQ(lines, (Lines{"dealloc", "destroyed"}));
}

TEST(Events, WhatIsPutOffRunsAfterTheEventAndBeforeTheNext) {
  EventLoop loop;
  std::string order;
  int finished = 0;
  loop.setFinished([&] { ++finished; });
  loop.run([&] {
    loop.afterCurrent([&] { order += "b"; });
    loop.run([&] { order += "nested "; });
    order += "a";
  });
  EXPECT_EQ(order, "nested ab");
  EXPECT_EQ(finished, 1);
  loop.afterCurrent([&] { order += "c"; });
  EXPECT_EQ(order, "nested abc");
  EXPECT_EQ(finished, 2);
}

}  // namespace
}  // namespace workstation
