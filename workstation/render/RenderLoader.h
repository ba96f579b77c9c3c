#pragma once

#include <filesystem>
#include <memory>

#include "workstation/model/Outcome.h"
#include "workstation/render/RenderModule.h"

namespace workstation {

/// Opens the painting module. Letting go of the last handle finishes painting; the module itself stays loaded to the
/// end of the program. Let go before main returns. Refused, with a sentence that names the file, where there is none,
/// it cannot be loaded, or it belongs to another version of the program.
Result<std::shared_ptr<const RenderModule>> loadRenderModule(const std::filesystem::path& file);

/// Paints a viewer as it is now into a PNG file. `width` and `height` in points; 0: those of the viewer. A whole
/// sentence where that is refused or fails.
Outcome renderViewer(const RenderModule& module, const Workstation& workstation, int viewer, PixelSource& source,
                     const std::filesystem::path& pngFile, const PictureOptions& what = {},
                     const RenderOptions& how = {}, double width = 0, double height = 0);

}  // namespace workstation
