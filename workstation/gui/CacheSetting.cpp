#include "workstation/gui/CacheSetting.h"

#include <QStringList>

namespace workstation {

CacheSetting cacheSetting(const QSettings& settings) {
  CacheSetting setting;
  const QVariant value = settings.value("cache/bytes");
  if (!value.isValid()) return setting;
  const QString text = value.toStringList().join(", ");  // a comma makes a list of it
  bool isNumber = false;
  const qulonglong bytes = text.toULongLong(&isNumber);
  if (isNumber) {
    setting.bytes = static_cast<std::size_t>(bytes);
  } else {
    setting.problem = "In " + settings.fileName().toStdString() + " the setting bytes of the section cache is \"" +
                      text.toStdString() + "\" and no number of bytes, so " + std::to_string(setting.bytes) +
                      " are used: write a whole number there, or remove the line.";
  }
  return setting;
}

}  // namespace workstation
