#pragma once
// Turns the object graph of a keyed archive into a value.

#include <optional>
#include <string>
#include <vector>

#include "host/Point3D.h"
#include "host/Value.h"
#include "workstation/archive/PropertyList.h"
#include "workstation/model/Outcome.h"

namespace workstation {

/// Reads one archive. Objects are fetched when a reference leads to them; what nothing refers to is not looked at.
class Unarchiver {
 public:
  /// Both must outlive the unarchiver.
  Unarchiver(const PropertyList& list, pelmar::Point3DClass& points) : list_(list), points_(points) {}

  /// The root, or what is wrong, as the second half of a sentence.
  Result<pelmar::Value> root();

 private:
  using Kind = PlistNode::Kind;
  enum class ArchivedClass { Dictionary, Array, String, Point };

  // Each of these notes a problem when it yields nothing or false.
  std::optional<pelmar::Value> readRoot();
  bool readHeader(const PlistNode& top);
  std::optional<pelmar::Value> object(std::int64_t uid);
  std::optional<pelmar::Value> content(const PlistNode& node);
  std::optional<pelmar::Value> instance(const PlistNode& node);
  std::optional<pelmar::Value> array(const PlistNode& node);
  std::optional<pelmar::Value> dictionary(const PlistNode& node);
  std::optional<pelmar::Value> point(const PlistNode& node);
  bool addEntry(const PlistNode& key, const PlistNode& value, pelmar::Value::Dictionary& entries);
  std::optional<double> coordinate(const PlistNode& node, std::string_view key);
  std::optional<ArchivedClass> classOf(const PlistNode& node);
  std::optional<std::string> text(const PlistNode& node);
  std::optional<PlistNode> elementsOf(const PlistNode& node, std::string_view key);
  std::optional<std::int64_t> uid(const PlistNode& node);
  std::optional<PlistNode> objectNode(std::int64_t uid);
  std::optional<PlistNode> fetch(PropertyList::Index index);
  std::optional<PlistNode> slot(const PlistNode& container, std::uint32_t slot);
  std::optional<PlistNode> entry(const PlistNode& dictionary, std::string_view key);

  /// The entry of a dictionary; nothing also when it is not there, which is no problem yet.
  std::optional<PlistNode> findEntry(const PlistNode& dictionary, std::string_view key);
  bool countValue();
  /// Notes a problem of the object that is being read, unless there is one already.
  void refuse(const std::string& what);

  const PropertyList& list_;
  pelmar::Point3DClass& points_;
  PlistNode objects_;
  std::vector<std::int64_t> path_;  ///< the objects being read, from the root on
  std::size_t values_ = 0;
  std::size_t textBytes_ = 0;
  std::string problem_;
};

}  // namespace workstation
