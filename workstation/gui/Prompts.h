#pragma once

#include <QString>
#include <QStringList>

#include "workstation/model/Seams.h"

namespace workstation {

/// The questions and panels that wait for the person. Tests answer in their place.
class Prompts {
 public:
  virtual ~Prompts() = default;
  /// A panel of the plug-in; returns once it is closed.
  virtual void showAlert(const Alert& alert) = 0;
  /// Whether the person wants to go on; `action` names the button that does.
  virtual bool confirm(const QString& question, const QString& explanation, const QString& action) = 0;
  /// Something could not be kept: whether to try once more.
  virtual bool tryAgain(const QString& problem, const QString& explanation, const QString& giveUp) = 0;
  /// A line of text; empty when the person gave up.
  virtual QString askText(const QString& title, const QString& text) = 0;
  /// A folder that exists; empty when the person gave up.
  virtual QString chooseFolder(const QString& title, const QString& start) = 0;
  /// Where to write a file; empty when the person gave up.
  virtual QString chooseNewFile(const QString& title, const QString& start, const QString& filter) = 0;
};

}  // namespace workstation
