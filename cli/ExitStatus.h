#pragma once

#include <optional>
#include <string>
#include <utility>

namespace cli {

/// What the command's exit status tells a script.
enum ExitStatus : int {
  ExitDone = 0,
  ExitNotAllowed = 1,  ///< the study or the drawing does not allow it
  ExitUsage = 2,       ///< wrong arguments
  ExitUnreadable = 3,  ///< the input cannot be read
};

/// Why a command ends early: a whole sentence, in one line, that names the file or argument.
struct Failure {
  ExitStatus status = ExitNotAllowed;
  std::string sentence;
};

/// A value, or why there is none.
template <class T>
struct [[nodiscard]] Expected {
  std::optional<T> value;
  Failure failure;

  Expected(T held) : value(std::move(held)) {}
  Expected(Failure why) : failure(std::move(why)) {}
  explicit operator bool() const { return value.has_value(); }
  T& operator*() { return *value; }
  const T& operator*() const { return *value; }
  T* operator->() { return &*value; }
  const T* operator->() const { return &*value; }
};

}  // namespace cli
