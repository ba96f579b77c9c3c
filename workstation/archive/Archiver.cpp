#include "workstation/archive/Archiver.h"

#include <cmath>

#include "host/Point3D.h"
#include "workstation/archive/ArchiveBounds.h"
#include "workstation/archive/ArchiveNames.h"
#include "workstation/archive/Coordinates.h"
#include "workstation/archive/StateKeys.h"
#include "workstation/archive/Utf.h"

namespace workstation {

namespace {

using pelmar::Value;
namespace names = archive_names;
namespace bounds = archive_bounds;

constexpr std::uint32_t nilUid = 0;

/// A value's integer with all its 64 bits. The contract gives the lower 32 bits, and the number rounded to 53 bits:
/// without the lower part that is a multiple of 2^32, give or take far less than half of it.
std::int64_t integerOfValue(const Value& value) {
  constexpr double lowerRange = 4294967296.0;
  const auto low = static_cast<std::uint32_t>(value.intValue());
  const auto high = static_cast<std::int64_t>(std::round((value.doubleValue() - low) / lowerRange));
  return static_cast<std::int64_t>((static_cast<std::uint64_t>(high) << 32) + low);
}

}  // namespace

Result<pelmar::Bytes> Archiver::archive(const Value& root) {
  if (!regionIsValid(root)) refuse("the region under \"" + std::string(regionKey) + "\" is not one of -1, 0, 1 and 2");
  const Index top = list_.dictionary({});
  addScalar(text(names::nil));
  const Uid rootUid = add(root);
  const Index rootEntry = list_.dictionary({{text(names::rootKey), list_.uid(rootUid)}});
  list_.fill(top, {{text(names::versionKey), list_.integer(names::version)},
                   {text(names::archiverKey), text(names::archiver)},
                   {text(names::topKey), rootEntry},
                   {text(names::objectsKey), list_.array(objects_)}});
  if (list_.count() > bounds::objects) refuse("it has more than " + std::to_string(bounds::objects) + " objects");
  if (!problem_.empty()) return Result<pelmar::Bytes>::refused(problem_);
  pelmar::Bytes bytes = list_.bytes(top);
  if (bytes.size() > bounds::bytes) {
    refuse("the archive would be longer than " + std::to_string(bounds::bytes) + " bytes");
    return Result<pelmar::Bytes>::refused(problem_);
  }
  return Result<pelmar::Bytes>::of(std::move(bytes));
}

Archiver::Uid Archiver::refuse(const std::string& what) {
  if (!problem_.empty()) return nilUid;
  std::string place;
  for (const std::string& step : path_) place += (place.empty() ? "" : ", ") + step;
  problem_ = "The value cannot be archived: " + (place.empty() ? "" : "at " + place + " ") + what + ".";
  return nilUid;
}

/// Counts a value against the bounds. False when that is one too many.
bool Archiver::count(std::size_t textBytes) {
  ++values_;
  textBytes_ += textBytes;
  if (values_ > bounds::values)
    refuse("it becomes more than " + std::to_string(bounds::values) + " values");
  else if (textBytes > bounds::textBytes)
    refuse("there is a text of more than " + std::to_string(bounds::textBytes) + " bytes");
  else if (textBytes_ > bounds::totalTextBytes)
    refuse("the texts are longer than " + std::to_string(bounds::totalTextBytes) + " bytes together");
  return problem_.empty();
}

Archiver::Uid Archiver::add(const Value& value) {
  if (!problem_.empty()) return nilUid;
  if (path_.size() >= bounds::depth)
    return refuse("values stand inside each other more than " + std::to_string(bounds::depth) + " deep");
  if (const std::string* string = value.string()) return addText(*string);
  if (!count(0)) return nilUid;
  if (value.isBool()) return addScalar(list_.boolean(value.boolValue()));
  if (value.isInteger()) return addScalar(list_.integer(integerOfValue(value)));
  if (value.isReal()) {
    if (!std::isfinite(value.doubleValue())) return refuse("there is a number that is not finite");
    return addScalar(list_.real(value.doubleValue()));
  }
  if (const Value::Array* elements = value.array()) return addArray(*elements);
  if (const Value::Dictionary* entries = value.dictionary()) return addDictionary(*entries);
  return addObject(value);
}

Archiver::Uid Archiver::addText(const std::string& string) {
  if (!count(string.size())) return nilUid;
  if (!isUtf8(string)) return refuse("there is a text that is not valid UTF-8");
  if (string != names::nil) return addScalar(text(string));
  // Among the objects this text would be read as nil; inside a string object it is a text.
  const Uid uid = reserve();
  const Uid classUid = addClass(names::stringClass);
  objects_[uid] =
      list_.dictionary({{text(names::stringKey), text(string)}, {text(names::classKey), list_.uid(classUid)}});
  return uid;
}

Archiver::Uid Archiver::addArray(const Value::Array& elements) {
  const Uid uid = reserve();
  std::vector<Uid> uids;
  for (const Value& element : elements) {
    path_.push_back("element " + std::to_string(uids.size()));
    uids.push_back(add(element));
    path_.pop_back();
    if (!problem_.empty()) return nilUid;
  }
  const Uid classUid = addClass(names::arrayClass);
  objects_[uid] =
      list_.dictionary({{text(names::elementsKey), references(uids)}, {text(names::classKey), list_.uid(classUid)}});
  return uid;
}

Archiver::Uid Archiver::addDictionary(const Value::Dictionary& entries) {
  const Uid uid = reserve();
  std::vector<Uid> keys;
  std::vector<Uid> values;
  for (const auto& [key, value] : entries) {
    keys.push_back(addText(key));
    path_.push_back("\"" + key + "\"");
    values.push_back(add(value));
    path_.pop_back();
    if (!problem_.empty()) return nilUid;
  }
  const Uid classUid = addClass(names::dictionaryClass);
  objects_[uid] = list_.dictionary({{text(names::keysKey), references(keys)},
                                    {text(names::elementsKey), references(values)},
                                    {text(names::classKey), list_.uid(classUid)}});
  return uid;
}

Archiver::Uid Archiver::addObject(const Value& value) {
  const auto point = pelmar::ref_cast<pelmar::Point3D>(value.object());
  if (value.isNil()) return refuse("there is nothing where a value must stand");
  if (!point) return refuse("there is an object that is no point");
  if (!isCoordinate(point->x()) || !isCoordinate(point->y()) || !isCoordinate(point->z()))
    return refuse("there is a point whose coordinates are not finite in single precision");
  const Uid uid = reserve();
  const Uid classUid = addClass(names::pointClass);
  objects_[uid] = list_.dictionary({{text("x"), list_.real(point->x())},
                                    {text("y"), list_.real(point->y())},
                                    {text("z"), list_.real(point->z())},
                                    {text(names::classKey), list_.uid(classUid)}});
  return uid;
}

/// Equal scalars share an entry.
Archiver::Uid Archiver::addScalar(Index scalar) {
  const auto [known, isNew] = scalars_.try_emplace(scalar, static_cast<Uid>(objects_.size()));
  if (isNew) objects_.push_back(scalar);
  return known->second;
}

Archiver::Uid Archiver::addClass(std::string_view name) {
  const auto [known, isNew] = classes_.try_emplace(name, static_cast<Uid>(objects_.size()));
  if (isNew) {
    const Index lineage = list_.array({text(name), text(names::objectClass)});
    objects_.push_back(list_.dictionary({{text(names::classesKey), lineage}, {text(names::classNameKey), text(name)}}));
  }
  return known->second;
}

/// An entry for an object that follows, so that it comes before what it is made of.
Archiver::Uid Archiver::reserve() {
  objects_.push_back(0);
  return static_cast<Uid>(objects_.size() - 1);
}

PropertyListWriter::Index Archiver::references(const std::vector<Uid>& uids) {
  std::vector<Index> indices;
  indices.reserve(uids.size());
  for (const Uid uid : uids) indices.push_back(list_.uid(uid));
  return list_.array(std::move(indices));
}

}  // namespace workstation
