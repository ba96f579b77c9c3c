#include "workstation/model/View.h"

#include "workstation/model/Host.h"
#include "workstation/model/Vector3.h"
#include "workstation/model/Viewer.h"

namespace workstation {

using pelmar::Ref;

View::View(Host& host, const std::shared_ptr<Viewer>& viewer)
    : host_(host),
      viewer_(viewer),
      slices_(std::make_shared<pelmar::VectorList<Ref<pelmar::DCMPix>>>()),
      lists_(std::make_shared<SeriesRoiLists>(0, nullptr)),
      drawing_(*this) {}

void View::load(std::shared_ptr<pelmar::VectorList<Ref<pelmar::DCMPix>>> slices,
                std::shared_ptr<SeriesRoiLists> lists) {
  slices_ = std::move(slices);
  lists_ = std::move(lists);
  current_ = 0;
  const double width = transform_.viewWidth;
  const double height = transform_.viewHeight;
  transform_ = {};
  transform_.viewWidth = width;
  transform_.viewHeight = height;
  takeImageSize();
  transform_.scale = transform_.scaleToFit();
}

void View::takeImageSize() {
  const auto shown = ref_cast<Pix>(slices_->objectAtIndex(current_));
  transform_.columns = static_cast<double>(shown.get() ? shown.get()->pwidth() : 0);
  transform_.rows = static_cast<double>(shown.get() ? shown.get()->pheight() : 0);
  transform_.pixelAspect = shown.get() ? paintedPixelAspect(shown.get()->record()) : 1;
}

void View::setCurImage(std::size_t index) {
  current_ = index;
  takeImageSize();
}

void View::setSize(double width, double height) {
  transform_.viewWidth = width;
  transform_.viewHeight = height;
}

void View::post(std::string_view notification) {
  host_.defaultCenter().postNotification(
      {std::string(notification), Ref<pelmar::DCMView>(shared_from_this()), std::nullopt});
}

int View::number() const {
  const auto viewer = viewer_.lock();
  return viewer ? viewer->number() : -1;
}

bool View::drawsWithLeftButton() const { return currentTool() == MouseToolAnnotate; }

long View::annotationTool() const {
  const auto viewer = viewer_.lock();
  return viewer ? viewer->annotationTool() : 0;
}

Ref<pelmar::ViewerController> View::viewer() const { return Ref<pelmar::ViewerController>(viewer_.lock()); }

Ref<pelmar::List<Ref<pelmar::DCMPix>>> View::dcmPixList() const {
  return Ref<pelmar::List<Ref<pelmar::DCMPix>>>(slices_);
}

Ref<pelmar::DicomStudy> View::studyObj() const { return viewer()->currentStudy(); }

long View::currentTool() const {
  const auto viewer = viewer_.lock();
  return viewer ? viewer->mouseTool() : 0;
}

void View::orientationCorrectedToView(std::array<float, 9>& vector) const {
  const std::array<double, 9> image = curDCM()->orientation();
  const Vector3 row{image[0], image[1], image[2]};
  const Vector3 column{image[3], image[4], image[5]};
  const auto inPatient = [&](ViewTransform::Direction direction) {
    return direction.alongRow * row + direction.alongColumn * column;
  };
  const Vector3 right = inPatient(transform_.displayedRight());
  const Vector3 down = inPatient(transform_.displayedDown());
  const Vector3 normal = cross(right, down);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    vector[axis] = static_cast<float>(right[axis]);
    vector[3 + axis] = static_cast<float>(down[axis]);
    vector[6 + axis] = static_cast<float>(normal[axis]);
  }
}

pelmar::FrameRect View::frame() const { return {0, 0, transform_.viewWidth, transform_.viewHeight}; }

Ref<pelmar::Window> View::window() const { return viewer()->window(); }

}  // namespace workstation
