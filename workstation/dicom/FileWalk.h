#pragma once

#include <filesystem>
#include <vector>

#include "workstation/dicom/StudyReader.h"

namespace workstation {

/// All regular files in a folder, at any depth, in order of their paths; or the one file. Links are followed; each file
/// and each folder comes once however many ways lead to it. Folders that cannot be listed go to `unreadable`.
std::vector<std::filesystem::path> filesIn(const std::filesystem::path& folderOrFile,
                                           std::vector<UnreadableFile>& unreadable);

}  // namespace workstation
