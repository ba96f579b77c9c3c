#include "cli/Console.h"

#include <unistd.h>

#include <csignal>
#include <iostream>

#include "cli/PlainText.h"

namespace cli {

namespace {

volatile std::sig_atomic_t interruptSeen = 0;

void rememberInterrupt(int) { interruptSeen = 1; }

}  // namespace

std::string messageLine(const std::string& sentence) { return "vertana: " + printable(sentence) + '\n'; }

void printMessage(const std::string& sentence) { std::cerr << messageLine(sentence); }

int fail(const Failure& failure) {
  printMessage(failure.sentence);
  return failure.status;
}

void catchInterrupts() { std::signal(SIGINT, rememberInterrupt); }

bool interrupted() { return interruptSeen != 0; }

ProgressLine::ProgressLine(const std::string& what) : what_(printable(what)), terminal_(isatty(STDERR_FILENO) == 1) {}

ProgressLine::~ProgressLine() { hide(); }

void ProgressLine::hide() {
  if (terminal_ && lastPercent_ != nothingShown) std::cerr << "\r\033[K" << std::flush;
  lastPercent_ = nothingShown;
}

bool ProgressLine::show(std::size_t done, std::size_t total) {
  const std::size_t percent = total == 0 ? 100 : done * 100 / total;
  if (terminal_ && percent != lastPercent_) {
    lastPercent_ = percent;
    std::cerr << '\r' << what_ << ' ' << percent << " % (" << done << " of " << total << ")\033[K" << std::flush;
  }
  return !interrupted();
}

bool ProgressLine::wait(const std::string& forWhat) {
  if (terminal_ && lastPercent_ != waitingShown) {
    lastPercent_ = waitingShown;
    std::cerr << '\r' << what_ << ": waiting for " << printable(forWhat) << "\033[K" << std::flush;
  }
  return !interrupted();
}

}  // namespace cli
