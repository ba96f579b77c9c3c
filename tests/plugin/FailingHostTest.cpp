// A host service that throws: whichever call it is that fails, nothing gets out of what the host has called.

#include <functional>
#include <memory>
#include <stdexcept>

#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Ref;
using pelmar::Value;

/// A host that throws when it is asked for a service the n-th time, once.
class FailingHost : public TestHost {
 public:
  mutable long callsUntilFailure = 0;  ///< n; 0: none fails, or it has failed

  bool supports(pelmar::Capability capability) const override { return count(), TestHost::supports(capability); }
  std::vector<Ref<pelmar::ViewerController>> viewerControllersList() const override {
    return count(), TestHost::viewerControllersList();
  }
  pelmar::ViewerControllerClass& viewerControllerClass() override { return count(), TestHost::viewerControllerClass(); }
  pelmar::DCMViewClass& dcmViewClass() override { return count(), TestHost::dcmViewClass(); }
  pelmar::ROIClass& roiClass() override { return count(), TestHost::roiClass(); }
  pelmar::Point3DClass& point3DClass() override { return count(), TestHost::point3DClass(); }
  pelmar::BrowserControllerClass& browserControllerClass() override {
    return count(), TestHost::browserControllerClass();
  }
  pelmar::SRAnnotationClass& srAnnotationClass() override { return count(), TestHost::srAnnotationClass(); }
  pelmar::N3Vector N3VectorNormalize(const pelmar::N3Vector& vector) const override {
    return count(), TestHost::N3VectorNormalize(vector);
  }
  pelmar::NotificationCenter& defaultCenter() override { return count(), TestHost::defaultCenter(); }
  pelmar::UserDefaults& standardUserDefaults() override { return count(), TestHost::standardUserDefaults(); }
  pelmar::AlertPanels& alertPanels() override { return count(), TestHost::alertPanels(); }
  pelmar::Application& application() override { return count(), TestHost::application(); }
  pelmar::TextServices& textServices() override { return count(), TestHost::textServices(); }
  pelmar::KeyedArchiving& keyedArchiving() override { return count(), TestHost::keyedArchiving(); }
  pelmar::WindowServices& windowServices() override { return count(), TestHost::windowServices(); }

 private:
  void count() const {
    if (callsUntilFailure > 0 && --callsUntilFailure == 0) throw std::runtime_error("the host's service failed");
  }
};

/// A labelled lumbar study with its palette open: a sagittal viewer and a short axial stack.
struct Session {
  FailingHost host;
  Ref<TestStudy> study = host.addStudy("1.2.3", "MRI SPINE");
  Ref<TestViewer> sagittal = host.addViewer(study, sagittalSeries(2));
  Ref<TestViewer> axial = host.addViewer(study, axialSeries(3));
  std::unique_ptr<vertana::VertanaFilter> filter = std::make_unique<vertana::VertanaFilter>(host);

  Session() {
    filter->initPlugin();
    filter->setViewerController(sagittal);
    filter->filterImage("Labels");
    drawLine();
  }
  void drawLine() {
    const auto line = host.addROI(pelmar::ROITypeLength, sagittal, 0, {{128, 28}, {128, 228}});
    host.post(pelmar::PelmarAddROINotification, line);
    host.post(pelmar::PelmarROIChangeNotification, line, Value::Dictionary{{"action", "mouseUp"}});
  }
};

/// Something that a host calls.
struct HostCall {
  const char* name;
  std::function<void(Session&)> call;
  friend std::ostream& operator<<(std::ostream& out, const HostCall& row) { return out << row.name; }
};

class FailingService : public ::testing::TestWithParam<HostCall> {};

TEST_P(FailingService, letsNothingOut) {
  for (long failing = 1;; ++failing) {
    ASSERT_LT(failing, 100000);
    Session session;
    session.host.callsUntilFailure = failing;
    ASSERT_NO_THROW(GetParam().call(session)) << "service call " << failing << " failed";
    const bool failed = session.host.callsUntilFailure == 0;
    session.host.callsUntilFailure = 0;
    if (failed) continue;
    ASSERT_GT(failing, 1) << "no service was ever asked for";
    return;
  }
}

INSTANTIATE_TEST_SUITE_P(
    EveryCall, FailingService,
    ::testing::Values(
        HostCall{"initPlugin", [](Session& session) { vertana::VertanaFilter(session.host).initPlugin(); }},
        HostCall{"filterImage", [](Session& session) { EXPECT_EQ(session.filter->filterImage("Labels"), 0); }},
        HostCall{"anotherEntry", [](Session& session) { EXPECT_EQ(session.filter->filterImage("Other"), 0); }},
        HostCall{"dealloc", [](Session& session) { session.filter->dealloc(); }},
        HostCall{"destruction", [](Session& session) { session.filter.reset(); }},
        HostCall{"guess", [](Session& session) { session.filter->valueForKey("guessedAnatomicalRegion"); }},
        HostCall{"sliceName",
                 [](Session& session) {
                   session.filter->valueForObject(session.axial->view->dcmPixList()->objectAtIndex(1), "sliceName");
                 }},
        HostCall{"drawing", [](Session& session) { session.drawLine(); }},
        HostCall{"editing",
                 [](Session& session) {
                   session.host.post(pelmar::PelmarROIChangeNotification, session.filter->openPolygonROI());
                 }},
        HostCall{"scrolling",
                 [](Session& session) {
                   session.host.post(pelmar::PelmarDCMViewIndexChangedNotification, session.axial->view);
                 }},
        HostCall{"closingAViewer", [](Session& session) { session.host.closeViewer(session.sagittal); }},
        HostCall{"stopButton",
                 [](Session& session) { EXPECT_TRUE(session.host.windows.newest()->click("stopWorkFlow:")); }},
        HostCall{"resetButton", [](Session& session) { EXPECT_TRUE(session.host.windows.newest()->click("reset:")); }},
        HostCall{"helpButton",
                 [](Session& session) { EXPECT_TRUE(session.host.windows.newest()->click("openHelp:")); }},
        HostCall{"regionControl",
                 [](Session& session) {
                   EXPECT_TRUE(session.host.windows.newest()->owner->setValue(1, "anatomicalRegion"));
                 }},
        HostCall{"closeBox",
                 [](Session& session) {
                   session.host.windows.newest()->close();
                   EXPECT_FALSE(session.filter->windowController()) << "after any close";
                   EXPECT_FALSE(session.host.windows.newest()->isVisible());
                 }}),
    [](const auto& row) { return std::string(row.param.name); });

/// A study whose record cannot be read.
class UnreadableStudy : public TestStudy {
 public:
  std::optional<std::string> studyInstanceUID() const override { throw std::runtime_error("the record is gone"); }
};

TEST(FailingRecord, letsNothingOutOfTheSnapshot) {
  Session session;
  session.filter->setStudy(pelmar::makeRef<UnreadableStudy>());
  EXPECT_NO_THROW(EXPECT_TRUE(session.filter->stateSnapshot().isNil()));
}

TEST(FailingWindow, letsNothingOutOfTheDestruction) {
  Session session;
  const auto window = session.host.windows.newest();
  window->whileClosing = [] { throw std::runtime_error("the window does not close"); };
  EXPECT_NO_THROW(session.filter.reset());
  EXPECT_TRUE(window->isVisible()) << "it was asked to close, and failed";
}

TEST(FailingPanel, letsNothingOutOfTheMenuCommand) {
  TestHost host;
  const auto axial = host.addViewer(host.addStudy("1.2.3", "MRI SPINE"), axialSeries(3));
  host.alerts.whileShown = [] { throw std::runtime_error("no panel"); };
  vertana::VertanaFilter filter(host);
  filter.setViewerController(axial);
  EXPECT_NO_THROW(EXPECT_EQ(filter.filterImage("Labels"), 0)) << "the refusal";
  host.version = "8.5";
  EXPECT_NO_THROW(EXPECT_EQ(filter.filterImage("Labels"), 0)) << "the requirements";
  EXPECT_EQ(host.alerts.shown.size(), 2U);
}

TEST(FailingSave, isTriedAgainByTheNextCommandWhichWorksAsEver) {
  Session session;
  session.host.callsUntilFailure = 1;
  session.host.windows.newest()->close();
  ASSERT_EQ(session.host.callsUntilFailure, 0);
  session.filter->filterImage("Labels");
  session.drawLine();
  session.host.windows.newest()->close();
  EXPECT_EQ(session.filter->workflow(), -1);
  EXPECT_EQ(session.study->reports.empty(), false);
  EXPECT_EQ(LabellingFixture::labelsOn(session.sagittal), LabellingFixture::lumbarLabels());
}

}  // namespace
}  // namespace testhost
