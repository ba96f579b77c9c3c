#pragma once
// What the host tells of its viewers.

#include "tests/plugin/LabellingFixture.h"

namespace testhost {

class ViewerNotification : public LabellingFixture {
 public:
  void postLoaded(const pelmar::Ref<TestViewer>& viewer) {
    host.post(pelmar::PelmarViewerControllerDidLoadImagesNotification, viewer);
  }
  void postIndexChanged(const pelmar::Ref<TestViewer>& viewer) {
    host.post(pelmar::PelmarDCMViewIndexChangedNotification, viewer->view);
  }
  static void clearLists(const pelmar::Ref<TestViewer>& viewer) {
    for (const auto& list : viewer->sliceLists) list->elements().clear();
  }
  void startWithTools() {
    sagittal->roiToolTag = 12;
    sagittal->view->tool = 4;
    chooseLabels();
  }
};

}  // namespace testhost
