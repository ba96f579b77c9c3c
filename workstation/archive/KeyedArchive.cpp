#include "workstation/archive/KeyedArchive.h"

#include <span>

#include "workstation/archive/ArchiveBounds.h"
#include "workstation/archive/Archiver.h"
#include "workstation/archive/BinaryPropertyList.h"
#include "workstation/archive/Unarchiver.h"
#include "workstation/archive/XmlPropertyList.h"

namespace workstation {

namespace {

using pelmar::Value;

Result<Value> refused(const std::string& why) {
  return Result<Value>::refused(std::string(archiveRefusal) + why + ".");
}

template <class List>
Result<Value> readList(const Result<List>& list, pelmar::Point3DClass& points) {
  if (!list) return refused(list.problem);
  Result<Value> root = Unarchiver(*list, points).root();
  return root ? std::move(root) : refused(root.problem);
}

Result<Value> read(std::span<const std::uint8_t> bytes, pelmar::Point3DClass& points) {
  if (bytes.empty()) return refused("it is empty");
  if (bytes.size() > archive_bounds::bytes)
    return refused("it is longer than " + std::to_string(archive_bounds::bytes) + " bytes");
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (text.starts_with(BinaryPropertyList::signature)) return readList(BinaryPropertyList::open(bytes), points);
  // White space or a byte order mark may come first.
  if (text.substr(0, text.find('<')).find_first_not_of(" \t\r\n\xEF\xBB\xBF") == std::string_view::npos)
    return readList(XmlPropertyList::parse(text), points);
  return refused("it is neither a binary property list nor one in XML");
}

}  // namespace

Result<pelmar::Bytes> writeArchive(const Value& root) { return Archiver().archive(root); }

Result<Value> readArchive(const pelmar::Bytes& archive, pelmar::Point3DClass& points) { return read(archive, points); }

Result<Value> readPaddedArchive(const pelmar::Bytes& archive, pelmar::Point3DClass& points) {
  Result<Value> exact = read(archive, points);
  if (exact || archive.empty()) return exact;
  Result<Value> shortened = read(std::span(archive).first(archive.size() - 1), points);
  return shortened ? std::move(shortened) : std::move(exact);
}

std::optional<pelmar::Bytes> KeyedArchive::archivedDataWithRootObject(const Value& root) const {
  return writeArchive(root).value;
}

Value KeyedArchive::unarchiveObjectWithData(const pelmar::Bytes& data) const {
  Result<Value> root = readArchive(data, points_);
  return root ? std::move(*root) : Value();
}

}  // namespace workstation
