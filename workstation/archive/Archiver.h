#pragma once
// Turns a value into the object graph of a keyed archive.

#include <map>
#include <string>
#include <vector>

#include "host/Value.h"
#include "workstation/archive/PropertyListWriter.h"
#include "workstation/model/Outcome.h"

namespace workstation {

/// Makes one archive. A part of a value is described in the problem by where it stands: "intervertebralPlanes, 3".
class Archiver {
 public:
  Result<pelmar::Bytes> archive(const pelmar::Value& root);

 private:
  using Index = PropertyListWriter::Index;
  using Uid = std::uint32_t;

  /// The entry of `$objects` that stands for a value; 0, which is nil, when there is a problem.
  Uid add(const pelmar::Value& value);
  Uid addText(const std::string& string);
  Uid addArray(const pelmar::Value::Array& elements);
  Uid addDictionary(const pelmar::Value::Dictionary& entries);
  Uid addObject(const pelmar::Value& value);
  Uid addScalar(Index scalar);
  Uid addClass(std::string_view name);
  Uid reserve();
  bool count(std::size_t textBytes);
  Uid refuse(const std::string& what);
  Index text(std::string_view ascii) { return list_.text(ascii); }
  Index references(const std::vector<Uid>& uids);

  PropertyListWriter list_;
  std::vector<Index> objects_;
  std::map<Index, Uid> scalars_;
  std::map<std::string_view, Uid> classes_;
  std::vector<std::string> path_;
  std::size_t values_ = 0;
  std::size_t textBytes_ = 0;
  std::string problem_;
};

}  // namespace workstation
