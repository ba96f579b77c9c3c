#pragma once
// What others may plug into the model. Everything is optional: without it the model answers as if there were none.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Database.h"
#include "host/Value.h"
#include "workstation/model/ReportContext.h"

namespace workstation {

/// Where user defaults outlast the process.
class DefaultsStore {
 public:
  virtual ~DefaultsStore() = default;
  /// Everything that is stored; called once, when the model starts.
  virtual pelmar::Value::Dictionary load() = 0;
  /// Called after each change with everything there is.
  virtual void save(const pelmar::Value::Dictionary& defaults) = 0;
};

/// The database of studies and the structured reports in it. Without it there is no browser, no study holds a report
/// and none can be made.
class StudyReports {
 public:
  virtual ~StudyReports() = default;
  /// The database window; may be nil.
  virtual pelmar::Ref<pelmar::BrowserController> currentBrowser() = 0;
  virtual pelmar::SRAnnotationClass& srAnnotationClass() = 0;
  /// The store that holds the study; may be nil.
  virtual pelmar::Ref<pelmar::PersistentStore> persistentStore(const std::string& studyUid) = 0;
  /// The series of structured reports of a study, in the host's order.
  virtual std::vector<pelmar::Ref<pelmar::DicomSeries>> reportSeries(const std::string& studyUid) = 0;
  /// The report with that series number and description that counts; nil when there is none.
  virtual pelmar::Ref<pelmar::DicomImage> report(const std::string& studyUid, long seriesNumber,
                                                 std::string_view seriesDescription) = 0;

  /// Whether a report that is not on disk (yet) can be read under this path all the same.
  virtual bool holdsInMemory(const std::string& /*path*/) const { return false; }

  // What the model tells. Main thread only.

  /// The plug-in's palette has come onto the screen, by a menu command from a viewer of that study.
  virtual void paletteOpened(const std::string& /*studyUid*/) {}
  /// It has closed, whoever closed it, and the plug-in has done what it does then.
  virtual void paletteClosed() {}
  /// The person is about to use a control of the palette or to close it.
  virtual void paletteEvent() {}
  /// The program ends as a person ends it: the palette and every viewer have closed.
  virtual void quitting() {}

  /// What a report of that study can tell beyond the state; nothing when the study is not known.
  using ContextSource = std::function<std::optional<ReportContext>(const std::string& studyUid)>;
  /// Whom to ask, on the main thread, when a labelling is about to be written.
  virtual void setContextSource(ContextSource) {}
};

/// A panel that was shown to the person.
struct Alert {
  enum class Kind { modal, critical };
  Kind kind = Kind::modal;
  std::string title;                 ///< of a critical alert; empty for a modal one
  std::string message;               ///< plain text
  std::string informativeText;       ///< of a modal alert
  std::vector<std::string> buttons;  ///< titles, the default one first; no empty ones
};

/// Called on the main thread when something happens that a window shows. Each may be empty. They must not call back
/// into the workstation before they return, except `showAlert`, which may run a panel of its own.
struct Listeners {
  std::function<void(const Alert&)> showAlert;
  std::function<void(const std::string& address)> openAddress;
  std::function<void()> activate;                                   ///< bring the application to the front
  std::function<void()> paletteChanged;                             ///< opened, moved, shown or closed
  std::function<void(const std::string& key)> paletteValueChanged;  ///< a bound property changed by itself
  std::function<void()> eventFinished;                              ///< redraw what asked for it
};

}  // namespace workstation
