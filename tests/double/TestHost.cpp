#include "tests/double/TestHost.h"

#include <algorithm>
#include <cmath>

namespace testhost {
namespace {

using pelmar::N3Vector;
using pelmar::Ref;
using pelmar::Vector3f;

N3Vector widened(const Vector3f& v) {
  return {static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
}

Vector3f narrowed(const N3Vector& v) {
  return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

double dot(const N3Vector& a, const N3Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

}  // namespace

void TestPoint3D::setPoint3D(const Ref<pelmar::Point3D>& other) { value = narrowed(other->N3VectorValue()); }

void TestPoint3D::add(const Ref<pelmar::Point3D>& other) {
  const Vector3f o = narrowed(other->N3VectorValue());
  value = {value.x + o.x, value.y + o.y, value.z + o.z};
}

void TestPoint3D::subtract(const Ref<pelmar::Point3D>& other) {
  const Vector3f o = narrowed(other->N3VectorValue());
  value = {value.x - o.x, value.y - o.y, value.z - o.z};
}

void TestPoint3D::multiply(double factor) { value = narrowed({x() * factor, y() * factor, z() * factor}); }

Ref<pelmar::Point3D> makePoint(double x, double y, double z) { return pelmar::makeRef<TestPoint3D>(x, y, z); }

TestHost::TestHost() {
  using enum pelmar::Capability;
  capabilities = {Point3DKeyedArchiving, DCMPixBodyPartExamined, ROIDontDisplayInKeyImagesWindow,
                  ROIStringTags,         ROIResamplePoints,      ViewerControllerROIToolTag};
  database = pelmar::makeRef<TestDatabase>(*this, "database");
  independentDatabase = pelmar::makeRef<TestDatabase>(*this, "independentDatabase");
  browser.current = pelmar::makeRef<TestBrowser>();
  browser.current->held = database;
}

Ref<TestStudy> TestHost::addStudy(std::string uid, std::optional<std::string> description) {
  const auto study = pelmar::makeRef<TestStudy>();
  const auto series = pelmar::makeRef<TestSeries>();
  const auto image = pelmar::makeRef<TestStoredImage>();
  image->path = "/store/" + uid + "/image.dcm";
  image->studyUID = uid;
  series->uid = uid + ".1";
  series->stored = std::vector<Ref<pelmar::DicomImage>>{image};
  study->uid = std::move(uid);
  study->description = std::move(description);
  study->ordinarySeries = std::vector<Ref<pelmar::DicomSeries>>{series};
  studies.push_back(study);
  return study;
}

Ref<TestViewer> TestHost::addViewer(const Ref<TestStudy>& study, const Series& series) {
  const auto viewer = makeViewer(&calls, "viewer" + std::to_string(everyViewer.size() + 1), study, series);
  viewers.push_back(viewer);
  everyViewer.push_back(viewer);
  if (viewers.size() == 1) frontMost = viewer;
  // Any tool ends a drawing; what then has fewer than two distinct points goes.
  viewer->toolChosen = [this](const TestViewer& chosen) {
    const Ref<TestROI> drawn = chosen.view->drawn;
    if (!drawn) return;
    drawn->mode = pelmar::ROIModeSelected;
    chosen.view->drawn = nullptr;
    const std::vector<pelmar::PixelPoint> points = drawn->positions();
    const bool another = std::any_of(points.begin(), points.end(), [&](auto point) { return point != points.front(); });
    if (!another) rois.deleteROI(drawn);
  };
  return viewer;
}

void TestHost::closeViewer(const Ref<TestViewer>& viewer) {
  const Ref<TestViewer> closing = viewer;
  std::erase(viewers, closing);
  if (frontMost == closing) frontMost = viewers.empty() ? Ref<TestViewer>() : viewers.front();
  post(pelmar::PelmarCloseViewerNotification, closing);
  closing->shownIn->visible = false;
  letGoOfAnnotations(*closing);
}

void TestHost::letGoOfAnnotations(TestViewer& viewer) {
  if (viewer.view->drawn) viewer.view->drawn->mode = pelmar::ROIModeSelected;
  viewer.view->drawn = nullptr;
  viewer.view->pressed = nullptr;
  for (const Ref<TestROI>& roi : viewer.allROIs()) {
    if (roi->curView() == viewer.view) roi->view = nullptr;
  }
  for (const Ref<TestROIList>& list : viewer.sliceLists) list->shownOn(nullptr);
}

void TestHost::switchSeries(const Ref<TestViewer>& viewer, const Ref<TestStudy>& toStudy, const Series& series) {
  post(pelmar::PelmarViewerWillChangeNotification, viewer);
  viewer->everythingLoaded = false;
  letGoOfAnnotations(*viewer);
  loadSeries(*viewer, toStudy, series);
  post(pelmar::PelmarViewerControllerDidLoadImagesNotification, viewer);
}

Ref<TestROI> TestHost::addROI(long type, const Ref<TestViewer>& viewer, std::size_t slice,
                              const std::vector<pelmar::PixelPoint>& points, const std::vector<std::string>& tags) {
  const auto roi = pelmar::makeRef<TestROI>(&calls, type, viewer->view);
  for (const pelmar::PixelPoint& point : points) roi->pointList->elements().push_back(pelmar::MyPoint::point(point));
  roi->tags->tags = tags;
  if (slice < viewer->sliceLists.size()) {
    roi->image = viewer->images[slice];
    viewer->sliceLists[slice]->elements().push_back(roi);
  }
  return roi;
}

void TestHost::post(std::string_view name, const Ref<pelmar::HostObject>& object,
                    std::optional<pelmar::Value::Dictionary> userInfo) {
  center.postNotification({std::string(name), object, std::move(userInfo)});
}

std::string TestHost::storeReport(const Ref<TestStudy>& study, long seriesNumber, const std::string& seriesDescription,
                                  const pelmar::Bytes& data) {
  const std::string path = "/store/" + std::to_string(++pathsGiven) + ".dcm";
  ReportContent report;
  report.studyUID = study->uid.value_or("");
  report.seriesUID = study->uid.value_or("") + ".state";
  report.seriesNumber = seriesNumber;
  report.seriesDescription = seriesDescription;
  report.data = data;
  files[path] = report.encoded();
  const auto known = study->reportSeries &&
                     std::any_of(study->reportSeries->begin(), study->reportSeries->end(),
                                 [&](const auto& series) { return series->seriesDICOMUID() == report.seriesUID; });
  if (!known) study->addReportSeries(seriesDescription, seriesNumber, report.seriesUID);
  const auto image = pelmar::makeRef<TestStoredImage>();
  image->path = path;
  image->studyUID = report.studyUID;
  study->reports.push_back({seriesNumber, seriesDescription, report.seriesUID, image});
  return path;
}

std::vector<Ref<pelmar::ViewerController>> TestHost::viewerControllersList() const {
  return {viewers.begin(), viewers.end()};
}

N3Vector TestHost::N3VectorNormalize(const N3Vector& vector) const {
  const double length = std::sqrt(dot(vector, vector));
  if (!(length > 0)) return {};
  return {vector.x / length, vector.y / length, vector.z / length};
}

void TestHost::computeOriginalOrientationForPixArray(const Ref<pelmar::List<Ref<pelmar::DCMPix>>>& pixArray,
                                                     long& orientationVector) {
  calls.add("computeOriginalOrientationForPixArray()");
  if (!pixArray) return;
  if (orientationOfPixArray) {
    orientationVector = *orientationOfPixArray;
    return;
  }
  const auto first = pelmar::ref_cast<TestImage>(pixArray->objectAtIndex(0));
  orientationVector = first ? orientationCodeOf(*first) : -1;
}

float TestHost::pbase_Plane(const Vector3f& point, const Vector3f& planePoint, const Vector3f& planeNormal,
                            Vector3f& footPoint) {
  const N3Vector p = widened(point);
  const N3Vector q = widened(planePoint);
  const N3Vector normal = N3VectorNormalize(widened(planeNormal));
  const double height = dot({p.x - q.x, p.y - q.y, p.z - q.z}, normal);
  footPoint = narrowed({p.x - height * normal.x, p.y - height * normal.y, p.z - height * normal.z});
  return static_cast<float>(std::abs(height));
}

float TestHost::angleBetweenVector(const Vector3f& a, const Vector3f& andVector) {
  const N3Vector u = N3VectorNormalize(widened(a));
  const N3Vector v = N3VectorNormalize(widened(andVector));
  // A zero vector has no direction to differ in.
  if (!(dot(u, u) > 0) || !(dot(v, v) > 0)) return 0;
  return static_cast<float>(std::acos(std::clamp(dot(u, v), -1.0, 1.0)));
}

}  // namespace testhost
