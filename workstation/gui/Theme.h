#pragma once

#include <QApplication>
#include <QPalette>

namespace workstation {

/// A dark, neutral look, as reading rooms are dark and colours belong to the images.
void useTheme(QApplication& application);

/// Of the frame around a viewer: the one in front is marked.
QPalette viewerFramePalette(bool front);

}  // namespace workstation
