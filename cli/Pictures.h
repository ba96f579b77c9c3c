#pragma once
// Pictures of a study's series, painted by the module that is loaded when it is asked for.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/StudySession.h"
#include "workstation/render/RenderLoader.h"

namespace cli {

/// The painting module: the one named by the environment's VERTANA_RENDER, else beside the plug-in's bundle.
std::filesystem::path renderModulePath();

/// Opens the study's series and paints the middle slice of each into a PNG file in the folder, which exists; answers
/// the files. A progress line on a terminal.
Expected<std::vector<std::filesystem::path>> paintStudy(StudySession& session, const std::string& study,
                                                        const workstation::RenderModule& module,
                                                        const std::filesystem::path& folder);

}  // namespace cli
