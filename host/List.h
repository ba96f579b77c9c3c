#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "host/Ref.h"

namespace pelmar {

/// An array that the host owns. A handle to one tells "nil" (no array) from an empty array.
/// E's default value is what an index outside the array answers.
template <class E>
class List : public HostObject {
 public:
  /// Nil: 0.
  virtual std::size_t count() const { return 0; }
  /// The element, or E's default value outside 0 .. count - 1. Nil: E's default value.
  virtual E objectAtIndex(std::size_t) const { return E{}; }
};

/// An array that the host owns and the plug-in may change; changes are seen by everyone who holds it.
template <class E>
class MutableList : public List<E> {
 public:
  /// Appends. Nil: nothing.
  virtual void addObject(const E&) {}
  /// Inserts before the element at the index; at count it appends; beyond it does nothing. Nil: nothing.
  virtual void insertObject(const E&, std::size_t /*atIndex*/) {}
  /// Removes every element equal to the argument (handles: the same object). Nil: nothing.
  virtual void removeObject(const E&) {}
  /// Nil: nothing.
  virtual void removeAllObjects() {}
  /// Nil: false.
  virtual bool containsObject(const E&) const { return false; }
};

/// The plain implementation, over a vector: for hosts and for lists that nobody needs to watch.
template <class E>
class VectorList : public MutableList<E> {
 public:
  VectorList() = default;
  explicit VectorList(std::vector<E> elements) : elements_(std::move(elements)) {}

  std::size_t count() const override { return elements_.size(); }
  E objectAtIndex(std::size_t index) const override { return index < elements_.size() ? elements_[index] : E{}; }
  void addObject(const E& element) override { elements_.push_back(element); }
  void insertObject(const E& element, std::size_t atIndex) override {
    if (atIndex <= elements_.size())
      elements_.insert(elements_.begin() + static_cast<std::ptrdiff_t>(atIndex), element);
  }
  void removeObject(const E& element) override { std::erase(elements_, element); }
  void removeAllObjects() override { elements_.clear(); }
  bool containsObject(const E& element) const override {
    return std::find(elements_.begin(), elements_.end(), element) != elements_.end();
  }

  std::vector<E>& elements() { return elements_; }
  const std::vector<E>& elements() const { return elements_; }

 private:
  std::vector<E> elements_;
};

}  // namespace pelmar
