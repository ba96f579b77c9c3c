#pragma once

#include <QSettings>
#include <QString>
#include <string>
#include <vector>

#include "workstation/model/ImageRecord.h"

namespace workstation {

/// The windows that the person keeps for images of a modality, the one kept last at the end.
std::vector<WindowSetting> keptWindows(const QSettings& settings, const std::string& modality);

/// Keeps one more, once; of more than ten the oldest goes.
void keepWindow(QSettings& settings, const std::string& modality, const WindowSetting& window);

void forgetWindows(QSettings& settings, const std::string& modality);

/// "300 / 600": centre and width.
QString windowSizeText(const WindowSetting& window);

}  // namespace workstation
