#include "workstation/archive/Unarchiver.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "workstation/archive/ArchiveBounds.h"
#include "workstation/archive/ArchiveNames.h"
#include "workstation/archive/Coordinates.h"
#include "workstation/archive/StateKeys.h"

namespace workstation {

namespace {

using pelmar::Value;
namespace names = archive_names;
namespace bounds = archive_bounds;

std::string quoted(std::string_view name) { return "\"" + std::string(name) + "\""; }

}  // namespace

Result<Value> Unarchiver::root() {
  std::optional<Value> value = readRoot();
  if (!value) return Result<Value>::refused(problem_);
  return Result<Value>::of(std::move(*value));
}

std::optional<Value> Unarchiver::readRoot() {
  const std::optional<PlistNode> top = fetch(list_.top());
  if (!top || !readHeader(*top)) return std::nullopt;
  const std::optional<PlistNode> roots = entry(*top, names::topKey);
  if (!roots) return std::nullopt;
  std::optional<PlistNode> reference = findEntry(*roots, names::rootKey);
  if (!reference) reference = findEntry(*roots, names::firstRootKey);
  if (!reference) {
    refuse("it names no root object");
    return std::nullopt;
  }
  const std::optional<std::int64_t> rootUid = uid(*reference);
  if (!rootUid) return std::nullopt;
  std::optional<Value> value = object(*rootUid);
  if (value && !regionIsValid(*value)) {
    refuse("the region under " + quoted(regionKey) + " is not one of -1, 0, 1 and 2");
    return std::nullopt;
  }
  return value;
}

bool Unarchiver::readHeader(const PlistNode& top) {
  const std::optional<PlistNode> archiver = entry(top, names::archiverKey);
  const std::optional<PlistNode> version = entry(top, names::versionKey);
  const std::optional<PlistNode> objects = entry(top, names::objectsKey);
  if (!archiver || !version || !objects) return false;
  if (!list_.isText(*archiver, names::archiver))
    refuse("it was not made by " + std::string(names::archiver));
  else if (version->kind != Kind::Integer || version->integer != names::version)
    refuse("its version is not " + std::to_string(names::version));
  else if (objects->kind != Kind::Array)
    refuse(quoted(names::objectsKey) + " is not an array");
  else if (objects->count > bounds::objects)
    refuse("it has more than " + std::to_string(bounds::objects) + " objects");
  objects_ = *objects;
  return problem_.empty();
}

void Unarchiver::refuse(const std::string& what) {
  if (!problem_.empty()) return;
  if (!path_.empty()) problem_ = "in object " + std::to_string(path_.back()) + " ";
  problem_ += what;
}

bool Unarchiver::countValue() {
  if (++values_ <= bounds::values) return true;
  refuse("it becomes more than " + std::to_string(bounds::values) + " values");
  return false;
}

// --- from references to values

std::optional<Value> Unarchiver::object(std::int64_t uid) {
  if (std::find(path_.begin(), path_.end(), uid) != path_.end()) {
    refuse("there is a reference to object " + std::to_string(uid) + ", which it is itself a part of");
    return std::nullopt;
  }
  if (path_.size() >= bounds::depth) {
    refuse("values stand inside each other more than " + std::to_string(bounds::depth) + " deep");
    return std::nullopt;
  }
  const std::optional<PlistNode> node = objectNode(uid);
  if (!node || !countValue()) return std::nullopt;
  path_.push_back(uid);
  std::optional<Value> value = content(*node);
  path_.pop_back();
  return value;
}

std::optional<Value> Unarchiver::content(const PlistNode& node) {
  switch (node.kind) {
    case Kind::Boolean:
      return Value(node.integer != 0);
    case Kind::Integer:
      return Value(node.integer);
    case Kind::Real:
      if (std::isfinite(node.real)) return Value(node.real);
      refuse("there is a number that is not finite");
      return std::nullopt;
    case Kind::Text:
      if (!list_.isText(node, names::nil)) return text(node);
      refuse("there is nothing where a value must stand");
      return std::nullopt;
    case Kind::Dictionary:
      return instance(node);
    case Kind::Uid:
    case Kind::Array:
    case Kind::Other:
      break;
  }
  refuse("there is something else than a text, a number or an archived object");
  return std::nullopt;
}

std::optional<Value> Unarchiver::instance(const PlistNode& node) {
  const std::optional<ArchivedClass> archivedClass = classOf(node);
  if (!archivedClass) return std::nullopt;
  switch (*archivedClass) {
    case ArchivedClass::Dictionary:
      return dictionary(node);
    case ArchivedClass::Array:
      return array(node);
    case ArchivedClass::Point:
      return point(node);
    case ArchivedClass::String:
      break;
  }
  const std::optional<PlistNode> string = entry(node, names::stringKey);
  if (!string) return std::nullopt;
  return text(*string);
}

std::optional<Value> Unarchiver::array(const PlistNode& node) {
  const std::optional<PlistNode> references = elementsOf(node, names::elementsKey);
  if (!references) return std::nullopt;
  Value::Array elements;
  for (std::uint32_t i = 0; i < references->count; ++i) {
    const std::optional<PlistNode> reference = slot(*references, i);
    const std::optional<std::int64_t> elementUid = reference ? uid(*reference) : std::nullopt;
    if (!elementUid) return std::nullopt;
    std::optional<Value> element = object(*elementUid);
    if (!element) return std::nullopt;
    elements.push_back(std::move(*element));
  }
  return Value(std::move(elements));
}

std::optional<Value> Unarchiver::dictionary(const PlistNode& node) {
  const std::optional<PlistNode> keys = elementsOf(node, names::keysKey);
  const std::optional<PlistNode> values = elementsOf(node, names::elementsKey);
  if (!keys || !values) return std::nullopt;
  if (keys->count != values->count) {
    refuse("there are " + std::to_string(keys->count) + " keys but " + std::to_string(values->count) + " values");
    return std::nullopt;
  }
  Value::Dictionary entries;
  for (std::uint32_t i = 0; i < keys->count; ++i) {
    const std::optional<PlistNode> key = slot(*keys, i);
    const std::optional<PlistNode> value = slot(*values, i);
    if (!key || !value || !addEntry(*key, *value, entries)) return std::nullopt;
  }
  return Value(std::move(entries));
}

bool Unarchiver::addEntry(const PlistNode& key, const PlistNode& value, Value::Dictionary& entries) {
  const std::optional<std::int64_t> keyUid = uid(key);
  const std::optional<std::int64_t> valueUid = keyUid ? uid(value) : std::nullopt;
  if (!valueUid) return false;
  const std::optional<Value> name = object(*keyUid);
  if (!name) return false;
  if (!name->string()) {
    refuse("there is a key that is not a text");
    return false;
  }
  std::optional<Value> content = object(*valueUid);
  if (!content) return false;
  if (entries.emplace(*name->string(), std::move(*content)).second) return true;
  refuse("there are two entries under one key");
  return false;
}

std::optional<Value> Unarchiver::point(const PlistNode& node) {
  const std::optional<double> x = coordinate(node, "x");
  const std::optional<double> y = coordinate(node, "y");
  const std::optional<double> z = coordinate(node, "z");
  if (!x || !y || !z) return std::nullopt;
  return Value(points_.pointWithX(*x, *y, *z));
}

std::optional<double> Unarchiver::coordinate(const PlistNode& node, std::string_view key) {
  const std::optional<PlistNode> number = entry(node, key);
  if (!number) return std::nullopt;
  if (number->kind == Kind::Integer) return static_cast<double>(number->integer);
  if (number->kind == Kind::Real && isCoordinate(number->real)) return number->real;
  refuse("the coordinate " + quoted(key) + " is not a finite number in single precision");
  return std::nullopt;
}

std::optional<std::string> Unarchiver::text(const PlistNode& node) {
  if (node.kind != Kind::Text) {
    refuse("there is something else where a text must stand");
    return std::nullopt;
  }
  std::optional<std::string> text = list_.text(node);
  if (!text) {
    refuse("there is a text whose characters are damaged");
    return std::nullopt;
  }
  if (text->size() > bounds::textBytes) {
    refuse("there is a text of more than " + std::to_string(bounds::textBytes) + " bytes");
    return std::nullopt;
  }
  textBytes_ += text->size();
  if (textBytes_ <= bounds::totalTextBytes) return text;
  refuse("the texts become longer than " + std::to_string(bounds::totalTextBytes) + " bytes together");
  return std::nullopt;
}

// --- nodes of the property list

/// The class of an object: the first that is known of its name and the hints.
std::optional<Unarchiver::ArchivedClass> Unarchiver::classOf(const PlistNode& node) {
  constexpr std::array<std::pair<std::string_view, ArchivedClass>, 7> knownClasses{
      {{names::dictionaryClass, ArchivedClass::Dictionary},
       {names::mutableDictionaryClass, ArchivedClass::Dictionary},
       {names::arrayClass, ArchivedClass::Array},
       {names::mutableArrayClass, ArchivedClass::Array},
       {names::stringClass, ArchivedClass::String},
       {names::mutableStringClass, ArchivedClass::String},
       {names::pointClass, ArchivedClass::Point}}};
  const auto known = [&](const PlistNode& name) -> std::optional<ArchivedClass> {
    for (const auto& [className, archivedClass] : knownClasses)
      if (list_.isText(name, className)) return archivedClass;
    return std::nullopt;
  };
  const std::optional<PlistNode> reference = entry(node, names::classKey);
  const std::optional<std::int64_t> classUid = reference ? uid(*reference) : std::nullopt;
  const std::optional<PlistNode> classNode = classUid ? objectNode(*classUid) : std::nullopt;
  const std::optional<PlistNode> name = classNode ? entry(*classNode, names::classNameKey) : std::nullopt;
  if (!name) return std::nullopt;
  if (const auto archivedClass = known(*name)) return archivedClass;
  const std::optional<PlistNode> hints = findEntry(*classNode, names::classHintsKey);
  const std::uint32_t hintCount = hints && hints->kind == Kind::Array ? std::min(hints->count, bounds::objectKeys) : 0;
  for (std::uint32_t i = 0; i < hintCount; ++i) {
    const std::optional<PlistNode> hint = slot(*hints, i);
    if (!hint) return std::nullopt;
    if (const auto archivedClass = known(*hint)) return archivedClass;
  }
  refuse("there is a class that does not belong into a labelling");
  return std::nullopt;
}

/// A list of references under a key, not longer than the values that may still come.
std::optional<PlistNode> Unarchiver::elementsOf(const PlistNode& node, std::string_view key) {
  const std::optional<PlistNode> elements = entry(node, key);
  if (!elements) return std::nullopt;
  if (elements->kind != Kind::Array) {
    refuse(quoted(key) + " is not an array");
    return std::nullopt;
  }
  if (elements->count <= bounds::values - values_) return elements;
  refuse("it becomes more than " + std::to_string(bounds::values) + " values");
  return std::nullopt;
}

std::optional<std::int64_t> Unarchiver::uid(const PlistNode& node) {
  if (node.kind == Kind::Uid) return node.integer;
  if (node.kind == Kind::Dictionary && node.count == 1) {
    const std::optional<PlistNode> number = findEntry(node, names::uidKey);
    if (number && number->kind == Kind::Integer) return number->integer;
  }
  refuse("there is something else where a reference must stand");
  return std::nullopt;
}

std::optional<PlistNode> Unarchiver::objectNode(std::int64_t uid) {
  if (uid >= 0 && uid < std::int64_t{objects_.count}) return slot(objects_, static_cast<std::uint32_t>(uid));
  refuse("there is a reference to object " + std::to_string(uid) + " of " + std::to_string(objects_.count));
  return std::nullopt;
}

std::optional<PlistNode> Unarchiver::fetch(PropertyList::Index index) {
  std::optional<PlistNode> node = list_.node(index);
  if (!node) refuse("entry " + std::to_string(index) + " of the property list is damaged or missing");
  return node;
}

std::optional<PlistNode> Unarchiver::slot(const PlistNode& container, std::uint32_t slot) {
  return fetch(list_.reference(container, slot));
}

std::optional<PlistNode> Unarchiver::entry(const PlistNode& dictionary, std::string_view key) {
  std::optional<PlistNode> found = findEntry(dictionary, key);
  if (!found) refuse(quoted(key) + " is missing");
  return found;
}

std::optional<PlistNode> Unarchiver::findEntry(const PlistNode& dictionary, std::string_view key) {
  if (dictionary.kind != Kind::Dictionary || dictionary.count > bounds::objectKeys) {
    refuse(dictionary.kind == Kind::Dictionary
               ? "there are more than " + std::to_string(bounds::objectKeys) + " keys in one object"
               : "there is something else where an object with " + quoted(key) + " must stand");
    return std::nullopt;
  }
  std::optional<PlistNode> found;
  for (std::uint32_t i = 0; i < dictionary.count; ++i) {
    const std::optional<PlistNode> name = slot(dictionary, i);
    if (!name) return std::nullopt;
    if (!list_.isText(*name, key)) continue;
    if (found) {
      refuse("there are two entries under " + quoted(key));
      return std::nullopt;
    }
    found = slot(dictionary, dictionary.count + i);
    if (!found) return std::nullopt;
  }
  return found;
}

}  // namespace workstation
