#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "host/Ref.h"

namespace pelmar {

/// A property value: nil, a number (boolean, integer or real), a string, an array, a dictionary with string keys, or
/// an object of the host. User defaults, the extra information of a notification, a palette's settings and the
/// dictionary that is stored in a study are made of these.
class Value {
 public:
  using Array = std::vector<Value>;
  using Dictionary = std::map<std::string, Value, std::less<>>;

  Value() = default;
  Value(std::nullptr_t) {}
  Value(bool value) : data_(make(value)) {}
  Value(int value) : data_(make(static_cast<std::int64_t>(value))) {}
  Value(std::int64_t value) : data_(make(value)) {}
  Value(double value) : data_(make(value)) {}
  Value(const char* value) : data_(make(std::string(value))) {}
  Value(std::string value) : data_(make(std::move(value))) {}
  Value(Array value) : data_(make(std::move(value))) {}
  Value(Dictionary value) : data_(make(std::move(value))) {}
  template <class T>
  requires std::is_base_of_v<HostObject, T> Value(const Ref<T>& object) {
    if (object) data_ = make(Ref<HostObject>(object));
  }

  Value(const Value& other) : data_(other.data_ ? std::make_unique<const Content>(*other.data_) : nullptr) {}
  Value(Value&&) noexcept = default;
  Value& operator=(const Value& other) {
    if (this != &other) *this = Value(other);
    return *this;
  }
  Value& operator=(Value&&) noexcept = default;
  ~Value() = default;

  bool isNil() const { return data_ == nullptr; }
  bool isBool() const { return get<bool>() != nullptr; }
  bool isInteger() const { return get<std::int64_t>() != nullptr; }
  bool isReal() const { return get<double>() != nullptr; }
  bool isNumber() const { return isBool() || isInteger() || isReal(); }

  /// The content when the value is of that kind, null when it is of another.
  const std::string* string() const { return get<std::string>(); }
  const Array* array() const { return get<Array>(); }
  const Dictionary* dictionary() const { return get<Dictionary>(); }
  Ref<HostObject> object() const {
    const auto* held = get<Ref<HostObject>>();
    return held ? *held : Ref<HostObject>();
  }

  /// A number as 32-bit integer: reals lose their fraction, what does not fit is cut to the low 32 bits (reals beyond
  /// 64 bits: 0). A string is read as a decimal integer up to the first character that does not belong to it, after
  /// blanks; values beyond 32 bits stop at the limit. Anything else: 0.
  std::int32_t intValue() const;
  /// A number: not zero. A string: begins, after blanks, a sign and zeros, with one of YyTt1-9. Anything else: false.
  bool boolValue() const;
  /// A number as real; anything else: 0.
  double doubleValue() const;

  /// Numbers by value whatever their kind, arrays and dictionaries element by element, objects by identity.
  friend bool operator==(const Value& a, const Value& b);

 private:
  // The content stands alone on the heap and is copied with the value: nothing that the plug-in has made, and nothing
  // with code of its own (as a shared pointer's control block has), is left in a value that the host keeps.
  using Content = std::variant<bool, std::int64_t, double, std::string, Array, Dictionary, Ref<HostObject>>;
  template <class T>
  static std::unique_ptr<const Content> make(T value) {
    return std::make_unique<const Content>(std::move(value));
  }
  template <class T>
  const T* get() const {
    return data_ ? std::get_if<T>(data_.get()) : nullptr;
  }
  std::unique_ptr<const Content> data_;
};

inline double Value::doubleValue() const {
  if (const auto* flag = get<bool>()) return *flag ? 1 : 0;
  if (const auto* integer = get<std::int64_t>()) return static_cast<double>(*integer);
  if (const auto* real = get<double>()) return *real;
  return 0;
}

inline std::int32_t Value::intValue() const {
  if (const auto* flag = get<bool>()) return *flag ? 1 : 0;
  if (const auto* integer = get<std::int64_t>()) return static_cast<std::int32_t>(*integer);
  if (const auto* real = get<double>()) {
    if (!(*real > -9.2e18 && *real < 9.2e18)) return 0;
    return static_cast<std::int32_t>(static_cast<std::int64_t>(*real));
  }
  if (const auto* text = string()) {
    std::size_t at = text->find_first_not_of(" \t\r\n");
    if (at == std::string::npos) return 0;
    const bool negative = (*text)[at] == '-';
    if (negative || (*text)[at] == '+') ++at;
    std::int64_t number = 0;
    for (; at < text->size() && (*text)[at] >= '0' && (*text)[at] <= '9'; ++at) {
      number = number * 10 + ((*text)[at] - '0');
      if (number > INT32_MAX) return negative ? INT32_MIN : INT32_MAX;
    }
    return static_cast<std::int32_t>(negative ? -number : number);
  }
  return 0;
}

inline bool Value::boolValue() const {
  if (isNumber()) return doubleValue() != 0;
  if (const auto* text = string()) {
    std::size_t at = text->find_first_not_of(" \t\r\n");
    if (at == std::string::npos) return false;
    if ((*text)[at] == '-' || (*text)[at] == '+') ++at;
    while (at < text->size() && (*text)[at] == '0') ++at;
    return at < text->size() && std::string("YyTt123456789").find((*text)[at]) != std::string::npos;
  }
  return false;
}

inline bool operator==(const Value& a, const Value& b) {
  if (a.isNumber() && b.isNumber()) {
    if (!a.isReal() && !b.isReal()) {
      const auto integer = [](const Value& value) {
        const auto* flag = value.get<bool>();
        return flag ? std::int64_t{*flag} : *value.get<std::int64_t>();
      };
      return integer(a) == integer(b);
    }
    return a.doubleValue() == b.doubleValue();
  }
  if (!a.data_ || !b.data_) return !a.data_ && !b.data_;
  return *a.data_ == *b.data_;
}

}  // namespace pelmar
