#include "workstation/gui/KeptWindows.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

#include "workstation/render/NumberText.h"

namespace workstation {
namespace {

constexpr qsizetype mostKept = 10;

/// A modality comes from a file and may hold what is special in a key.
QString keyOf(const std::string& modality) {
  const QByteArray letters = QByteArray::fromStdString(modality).toPercentEncoding();
  return "windows/" + (letters.isEmpty() ? QString("none") : QString::fromLatin1(letters));
}

}  // namespace

QString windowSizeText(const WindowSetting& window) {
  return QString::fromStdString(numberText(window.centre) + " / " + numberText(window.width));
}

std::vector<WindowSetting> keptWindows(const QSettings& settings, const std::string& modality) {
  std::vector<WindowSetting> windows;
  for (const QString& text : settings.value(keyOf(modality)).toStringList()) {
    const QStringList numbers = text.split(" / ");
    if (numbers.size() != 2) continue;
    WindowSetting window;  // a person's own has no explanation
    window.centre = numbers[0].toDouble();
    window.width = numbers[1].toDouble();
    if (std::isfinite(window.centre) && std::isfinite(window.width) && window.width > 0) windows.push_back(window);
  }
  return windows;
}

void keepWindow(QSettings& settings, const std::string& modality, const WindowSetting& window) {
  QStringList kept = settings.value(keyOf(modality)).toStringList();
  kept.removeAll(windowSizeText(window));
  kept << windowSizeText(window);
  settings.setValue(keyOf(modality), kept.mid(std::max<qsizetype>(0, kept.size() - mostKept)));
}

void forgetWindows(QSettings& settings, const std::string& modality) { settings.remove(keyOf(modality)); }

}  // namespace workstation
