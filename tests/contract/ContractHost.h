#pragma once
// A host as the contract's tests see it: what the plug-in is given, and the person in front of it.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/PelmarAPI.h"

namespace contract {

/// A series of parallel slices. Sagittal: rows run to the patient's back, columns to the feet, slices from right to
/// left. Axial: rows run to the left, columns to the back, slices from head to feet.
struct SeriesGeometry {
  std::size_t slices = 3;
  int columns = 100;
  int rows = 80;
  double spacingXMm = 1;                        ///< from column to column
  double spacingYMm = 1;                        ///< from row to row
  double gapMm = 4;                             ///< from slice to slice
  std::array<double, 3> firstPixelMm{0, 0, 0};  ///< centre of the first pixel of the first slice
};

/// The one study of a host.
struct Study {
  SeriesGeometry sagittal;
  SeriesGeometry axial;
};

enum class Plane { sagittal, axial };

/// Position of a slice's first pixel and its directions, as both hosts are told them.
struct SlicePlacement {
  std::array<double, 3> firstPixelMm{};
  std::array<double, 3> row{};
  std::array<double, 3> column{};
};
SlicePlacement placementOf(const SeriesGeometry& series, Plane plane, std::size_t slice);

/// One host with one study of two series. Viewers are numbered from 0 in the order of opening.
class ContractHost {
 public:
  virtual ~ContractHost() = default;

  virtual pelmar::PelmarAPI& api() = 0;
  /// The viewer while it is open; nil afterwards.
  virtual pelmar::Ref<pelmar::ViewerController> viewer(int number) = 0;

  // What a person does.
  virtual int open(Plane series) = 0;
  virtual void close(int viewer) = 0;
  virtual void switchSeries(int viewer, Plane to) = 0;
  virtual void scroll(int viewer, int slice) = 0;
  virtual void zoom(int viewer, double pointsPerPixel) = 0;
  /// Places the window on the screen; the image view fills it.
  virtual void placeWindow(int viewer, const pelmar::FrameRect& frame) = 0;
  /// The left button, at a pixel of the slice shown.
  virtual void press(int viewer, pelmar::PixelPoint at) = 0;
  virtual void move(int viewer, pelmar::PixelPoint at) = 0;
  virtual void release(int viewer, pelmar::PixelPoint at) = 0;
  /// The second press of a double click.
  virtual void doubleClick(int viewer, pelmar::PixelPoint at) = 0;
  virtual void pressReturn(int viewer) = 0;

  /// The host forgets what it kept only for its own records: closed viewers, deleted annotations.
  virtual void letGo() {}
};

/// A kind of host that the tests run on.
struct HostKind {
  std::string name;
  std::function<std::unique_ptr<ContractHost>(const Study&)> make;
};
/// All that were built.
std::vector<HostKind> hostKinds();
inline std::string nameOf(const testing::TestParamInfo<HostKind>& info) { return info.param.name; }
inline void PrintTo(const HostKind& kind, std::ostream* out) { *out << kind.name; }

std::unique_ptr<ContractHost> makeDouble(const Study& study);
std::unique_ptr<ContractHost> makeModel(const Study& study);

/// Hears the notifications of the contract and writes a line for each, in the order posted: its name without "Pelmar"
/// and "Notification", of a change with "action" = "mouseUp" with " mouseUp", of an annotation's with its mode, for
/// example "ROIChange mouseUp (2)".
class Recorder {
 public:
  explicit Recorder(pelmar::PelmarAPI& api);
  ~Recorder() { center_.removeObserver(this); }
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  /// The lines since the last call.
  std::vector<std::string> take() { return std::exchange(lines_, {}); }
  /// Called after each line was written.
  std::function<void(const std::string& line, const pelmar::Notification&)> react;

 private:
  void hear(const pelmar::Notification& posted);
  pelmar::NotificationCenter& center_;
  std::vector<std::string> lines_;
};
using Lines = std::vector<std::string>;

/// The annotation that a notification is about: its object, or "ROI" in its information; nil for another notification.
pelmar::Ref<pelmar::ROI> annotationOf(const pelmar::Notification& posted);

/// One sagittal viewer (0) on a fresh host of each kind.
class OnEveryHost : public testing::TestWithParam<HostKind> {
 protected:
  explicit OnEveryHost(const Study& study = {}) : host(GetParam().make(study)) { host->open(Plane::sagittal); }

  pelmar::PelmarAPI& api() { return host->api(); }
  pelmar::Ref<pelmar::ViewerController> viewer(int number = 0) { return host->viewer(number); }
  pelmar::Ref<pelmar::DCMView> view(int number = 0) { return viewer(number)->imageView(); }
  pelmar::Ref<pelmar::ROIList> list(std::size_t slice, int number = 0) {
    return viewer(number)->roiList()->objectAtIndex(slice);
  }
  /// An annotation that code makes and puts into the lists of these slices of viewer 0.
  pelmar::Ref<pelmar::ROI> annotation(long type, const std::vector<std::size_t>& slices,
                                      const std::vector<pelmar::PixelPoint>& points = {});

  std::unique_ptr<ContractHost> host;
};

#define ON_EVERY_HOST(suite) \
  INSTANTIATE_TEST_SUITE_P(On, suite, testing::ValuesIn(contract::hostKinds()), contract::nameOf)

}  // namespace contract
