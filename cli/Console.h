#pragma once
// Talking to the person at the terminal: messages and progress on standard error, and the interrupt key.

#include <cstddef>
#include <string>

#include "cli/ExitStatus.h"

namespace cli {

/// A message as it is printed: after the program's name, with its line feed; what a terminal would obey is made
/// harmless.
std::string messageLine(const std::string& sentence);

/// Prints one message line on standard error.
void printMessage(const std::string& sentence);

/// Prints the failure; its status.
int fail(const Failure& failure);

/// Catches the interrupt key: long work asks interrupted() and stops at the next step.
void catchInterrupts();
bool interrupted();

/// A progress line on standard error, only where that is a terminal; cleared when it goes.
class ProgressLine {
 public:
  explicit ProgressLine(const std::string& what);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  /// Returns false when the person has interrupted the work.
  bool show(std::size_t done, std::size_t total);
  /// Shows what the work waits for; the answer is that of show().
  bool wait(const std::string& forWhat);
  /// Clears it, so that something else can be printed; it comes back with the next show().
  void hide();

 private:
  std::string what_;
  bool terminal_;
  std::size_t lastPercent_ = nothingShown;

  /// Instead of a percentage.
  static constexpr std::size_t nothingShown = 101;
  static constexpr std::size_t waitingShown = 102;
};

}  // namespace cli
