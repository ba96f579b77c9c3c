#pragma once
// What the painting module offers to a program that links no window system: the program opens libvertana_render.so when
// a picture is asked for (see RenderLoader.h) and never closes it. Main thread only.

#include <string>

#include "workstation/model/ImageRecord.h"
#include "workstation/render/ViewPicture.h"

namespace workstation {

/// Changes whenever anything does that the module and its program share.
constexpr int renderModuleVersion = 2;

struct RenderOptions {
  double devicePixelRatio = 1;  ///< pixels of the file per point of the view, 0.1 .. 8
};

/// The module's functions. None of them throws.
struct RenderModule {
  int version = 0;
  /// Paints a viewer's picture, of the size of its view, and writes it as a PNG file in place of whatever is there. No
  /// display is needed. False, with a sentence in `problem` that names the file, when the pixels cannot be read or the
  /// picture cannot be written; then nothing of it is on disk.
  bool (*renderPicture)(const ViewPicture& picture, PixelSource& source, const RenderOptions& options,
                        const char* pngFile, std::string& problem) = nullptr;
  /// Lets go of what painting keeps (fonts, an application object where the program has none). Pictures can be painted
  /// again afterwards. To be called before the program ends; RenderLoader does.
  void (*finish)() = nullptr;
};

/// The module's only exported function is `extern "C" const RenderModule* vertana_render_module()`.
using RenderModuleFunction = const RenderModule* (*)();

}  // namespace workstation
