#pragma once
// Handles to objects of the host. Start here, then PelmarAPI.h.
//
// Every class of the contract derives from HostObject and gives each of its operations a default body. That body is
// what the operation answers when it is sent to a missing object: it does nothing and yields 0, false or nil. Ref<T>
// holds an object or nothing; calling through an empty one reaches those default bodies, so the code that uses the
// contract needs no tests for nil except where a rule asks for one.

#include <memory>
#include <type_traits>
#include <utility>

#include "host/Capability.h"

namespace pelmar {

/// Base of everything that the host hands out. Objects have identity: two handles are equal when they hold the same
/// object. Nothing of the contract may be called from another thread than the main one unless it says so.
class HostObject {
 public:
  HostObject() = default;
  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;
  virtual ~HostObject() = default;

  /// Whether this very object offers an operation that some hosts lack. Nil: false.
  virtual bool supports(Capability) const { return false; }
};

template <class T>
class WeakRef;

/// A strong handle: the object lives at least as long as the handle. An empty handle is "nil".
/// T must be a class of the contract (default-constructible, default bodies that are its nil answers, no state).
template <class T>
class Ref {
 public:
  Ref() = default;
  Ref(std::nullptr_t) {}
  explicit Ref(std::shared_ptr<T> object) : object_(std::move(object)) {}
  template <class U>
  requires std::is_convertible_v<U*, T*> Ref(const Ref<U>& other) : object_(other.shared()) {}

  /// The object, or T's nil answers when there is none.
  T* operator->() const { return object_ ? object_.get() : nilObject(); }
  T& operator*() const { return *operator->(); }
  explicit operator bool() const { return object_ != nullptr; }
  /// The object's address, null for nil. Only for identity, casts and keys.
  T* get() const { return object_.get(); }
  const std::shared_ptr<T>& shared() const { return object_; }

 private:
  static T* nilObject() {
    static T nil;
    return &nil;
  }
  std::shared_ptr<T> object_;
};

/// Identity, never content. Nil equals nil.
template <class T, class U>
bool operator==(const Ref<T>& a, const Ref<U>& b) {
  return static_cast<const void*>(a.get()) == static_cast<const void*>(b.get());
}
template <class T>
bool operator==(const Ref<T>& a, std::nullptr_t) {
  return a.get() == nullptr;
}

/// A handle that does not keep its object alive: once the host has let the object go, it reads as nil.
template <class T>
class WeakRef {
 public:
  WeakRef() = default;
  WeakRef(std::nullptr_t) {}
  WeakRef(const Ref<T>& object) : object_(object.shared()) {}
  Ref<T> lock() const { return Ref<T>(object_.lock()); }

 private:
  std::weak_ptr<T> object_;
};

/// The object as a T when it is one (subclasses included), otherwise nil.
template <class T, class U>
Ref<T> ref_cast(const Ref<U>& object) {
  return Ref<T>(std::dynamic_pointer_cast<T>(object.shared()));
}

/// Makes an object of an implementing class and returns the handle to it.
template <class T, class... Arguments>
Ref<T> makeRef(Arguments&&... arguments) {
  return Ref<T>(std::make_shared<T>(std::forward<Arguments>(arguments)...));
}

}  // namespace pelmar
