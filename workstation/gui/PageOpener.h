#pragma once

#include <QObject>
#include <filesystem>
#include <functional>
#include <string>

namespace workstation {

/// The first page of the manual. It lies beside the folder of the programs, in the build tree as where it is installed.
std::filesystem::path manualPage();

/// Opens pages in the person's browser and never waits for it.
class PageOpener {
 public:
  using Tell = std::function<void(const std::string& sentence)>;

  /// `tell` hears, at once or later, in a whole sentence why a page was not opened. It is not called any more once this
  /// is gone; a browser that was started stays.
  explicit PageOpener(Tell tell, std::filesystem::path manual = manualPage());

  void openManual();
  /// The address under which the plug-in offers its manual opens the manual on disk: it needs no network, and it is the
  /// one of this version. Every other address is the browser's.
  void open(const std::string& address);

 private:
  void show(const QString& url, const std::string& problem);

  Tell tell_;
  std::filesystem::path manual_;
  QObject context_;  ///< of what may be told later
};

}  // namespace workstation
