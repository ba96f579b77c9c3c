#pragma once

#include <optional>
#include <string>
#include <utility>

namespace workstation {

/// Whether an operation was done; if not, a whole sentence for the person says what, why not and what to do.
struct [[nodiscard]] Outcome {
  std::optional<std::string> problem;

  static Outcome done() { return {}; }
  static Outcome refused(std::string sentence) { return {std::move(sentence)}; }
  explicit operator bool() const { return !problem.has_value(); }
};

/// A value, or a whole sentence that says why there is none.
template <class T>
struct [[nodiscard]] Result {
  std::optional<T> value;
  std::string problem;  ///< empty when there is a value

  static Result of(T value) { return {std::move(value), {}}; }
  static Result refused(std::string sentence) { return {std::nullopt, std::move(sentence)}; }
  explicit operator bool() const { return value.has_value(); }
  T& operator*() { return *value; }
  const T& operator*() const { return *value; }
  T* operator->() { return &*value; }
  const T* operator->() const { return &*value; }
};

}  // namespace workstation
