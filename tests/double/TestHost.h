#pragma once
// The in-memory host. A test makes a TestHost, adds studies and viewers, hands the host to the code under test and
// reads the objects' fields and `calls` afterwards.
//
//   TestHost host;
//   auto study = host.addStudy("1.2.3", "MRI lumbar spine");
//   auto sagittal = host.addViewer(study, sagittalSeries(15));
//   sagittal->hasROIToolTag = false;
//   host.frontMost = sagittal;

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/PelmarAPI.h"
#include "tests/double/CallLog.h"
#include "tests/double/Series.h"
#include "tests/double/TestDatabase.h"
#include "tests/double/TestImage.h"
#include "tests/double/TestROI.h"
#include "tests/double/TestServices.h"
#include "tests/double/TestViewer.h"
#include "tests/double/TestWindow.h"

namespace testhost {

/// A patient point that a test may read and set.
class TestPoint3D : public pelmar::Point3D {
 public:
  TestPoint3D() = default;
  TestPoint3D(double x, double y, double z)
      : value{static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)} {}

  pelmar::Vector3f value;

  double x() const override { return static_cast<double>(value.x); }
  double y() const override { return static_cast<double>(value.y); }
  double z() const override { return static_cast<double>(value.z); }
  void setPoint3D(const pelmar::Ref<pelmar::Point3D>& other) override;
  void add(const pelmar::Ref<pelmar::Point3D>& other) override;
  void subtract(const pelmar::Ref<pelmar::Point3D>& other) override;
  void multiply(double factor) override;
  pelmar::N3Vector N3VectorValue() const override { return {x(), y(), z()}; }
};

/// A new point; the numbers are narrowed to single precision.
pelmar::Ref<pelmar::Point3D> makePoint(double x, double y, double z);

/// A whole host in memory.
class TestHost : public pelmar::PelmarAPI,
                 private pelmar::ViewerControllerClass,
                 private pelmar::DCMViewClass,
                 private pelmar::Point3DClass {
 public:
  TestHost();

  CallLog calls;
  Files files;
  std::set<pelmar::Capability> capabilities;         ///< all of them unless a test erases some
  std::vector<pelmar::Ref<TestStudy>> studies;       ///< in the order of addStudy
  std::vector<pelmar::Ref<TestViewer>> viewers;      ///< the open ones, in the host's order
  std::vector<pelmar::Ref<TestViewer>> everyViewer;  ///< the closed ones too
  pelmar::Ref<TestViewer> frontMost;                 ///< nil: no viewer is in front
  std::optional<long> orientationOfPixArray;         ///< overrides computeOriginalOrientationForPixArray
  long pathsGiven = 0;                               ///< how many fresh paths the database has given

  TestNotificationCenter center;
  TestUserDefaults defaults{calls};
  TestAlertPanels alerts{calls};
  TestApplication app{calls, files};
  TestTextServices texts;
  TestKeyedArchiving archiving;
  TestWindowServices windows{calls};
  TestROIClass rois{*this};
  TestBrowserClass browser;
  TestReportClass reports{*this};
  pelmar::Ref<TestDatabase> database;
  pelmar::Ref<TestDatabase> independentDatabase;

  std::optional<std::string>& version = app.version;
  std::map<std::string, std::string, std::less<>>& translations = app.translations;

  /// A study with one ordinary series that holds one image.
  pelmar::Ref<TestStudy> addStudy(std::string uid, std::optional<std::string> description = std::nullopt);
  /// Opens a viewer; in the log it is "viewer1", "viewer2", ... The first one opened is in front. Nothing is posted.
  pelmar::Ref<TestViewer> addViewer(const pelmar::Ref<TestStudy>& study, const Series& series);
  /// Closes a viewer as the host does: it leaves the list, its closing is posted while it is still whole, then its
  /// window goes and its annotations are not shown any more.
  void closeViewer(const pelmar::Ref<TestViewer>& viewer);

  /// Shows another series in a viewer as the host does: posts that it will change, lets the annotations go off the
  /// view, loads, and posts that it has loaded.
  void switchSeries(const pelmar::Ref<TestViewer>& viewer, const pelmar::Ref<TestStudy>& toStudy, const Series& series);

  /// An annotation on a slice's list, made without logging or posting anything.
  pelmar::Ref<TestROI> addROI(long type, const pelmar::Ref<TestViewer>& viewer, std::size_t slice,
                              const std::vector<pelmar::PixelPoint>& points, const std::vector<std::string>& tags = {});

  void post(std::string_view name, const pelmar::Ref<pelmar::HostObject>& object = {},
            std::optional<pelmar::Value::Dictionary> userInfo = std::nullopt);

  /// Writes a report into the study's newest place, as an earlier run would have left it. Returns its path.
  std::string storeReport(const pelmar::Ref<TestStudy>& study, long seriesNumber, const std::string& seriesDescription,
                          const pelmar::Bytes& data);

  bool supports(pelmar::Capability capability) const override { return capabilities.contains(capability); }
  std::vector<pelmar::Ref<pelmar::ViewerController>> viewerControllersList() const override;
  pelmar::ViewerControllerClass& viewerControllerClass() override { return *this; }
  pelmar::DCMViewClass& dcmViewClass() override { return *this; }
  pelmar::ROIClass& roiClass() override { return rois; }
  pelmar::Point3DClass& point3DClass() override { return *this; }
  pelmar::BrowserControllerClass& browserControllerClass() override { return browser; }
  pelmar::SRAnnotationClass& srAnnotationClass() override { return reports; }
  pelmar::N3Vector N3VectorNormalize(const pelmar::N3Vector& vector) const override;
  pelmar::NotificationCenter& defaultCenter() override { return center; }
  pelmar::UserDefaults& standardUserDefaults() override { return defaults; }
  pelmar::AlertPanels& alertPanels() override { return alerts; }
  pelmar::Application& application() override { return app; }
  pelmar::TextServices& textServices() override { return texts; }
  pelmar::KeyedArchiving& keyedArchiving() override { return archiving; }
  pelmar::WindowServices& windowServices() override { return windows; }

 private:
  void letGoOfAnnotations(TestViewer& viewer);
  pelmar::Ref<pelmar::ViewerController> frontMostDisplayed2DViewer() override { return frontMost; }
  void computeOriginalOrientationForPixArray(const pelmar::Ref<pelmar::List<pelmar::Ref<pelmar::DCMPix>>>& pixArray,
                                             long& orientationVector) override;
  float pbase_Plane(const pelmar::Vector3f& point, const pelmar::Vector3f& planePoint,
                    const pelmar::Vector3f& planeNormal, pelmar::Vector3f& footPoint) override;
  float angleBetweenVector(const pelmar::Vector3f& a, const pelmar::Vector3f& andVector) override;
  pelmar::Ref<pelmar::Point3D> pointWithX(double x, double y, double z) override { return makePoint(x, y, z); }
  pelmar::Ref<pelmar::Point3D> pointWithN3Vector(const pelmar::N3Vector& vector) override {
    return makePoint(vector.x, vector.y, vector.z);
  }
};

}  // namespace testhost
