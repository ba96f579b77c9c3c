#pragma once
// Keyed archives: binary property lists in the form in which object graphs are archived. The writer is deterministic
// and its result has an even length; the reader takes what other writers of the form make, within bounds.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/Database.h"
#include "host/Point3D.h"
#include "host/Services.h"
#include "host/Value.h"
#include "workstation/model/Outcome.h"

namespace workstation {

/// The archive of a value made of nil-free arrays, dictionaries, strings, numbers and points. Refused, with a sentence,
/// when something in it cannot be archived.
Result<pelmar::Bytes> writeArchive(const pelmar::Value& root);

/// With this the sentence of a refusal to read begins.
inline constexpr std::string_view archiveRefusal = "The archive cannot be read: ";

/// The value in an archive, its points made by `points`. Refused, with a sentence that says what is wrong and where,
/// when it is not one, or exceeds a bound (see ArchiveBounds.h). The bytes must be the archive exactly: a binary one
/// with a byte behind it is refused.
Result<pelmar::Value> readArchive(const pelmar::Bytes& archive, pelmar::Point3DClass& points);

/// The value in the bytes of a DICOM element, which has an even length: an archive of odd length, made by another
/// program, has a byte behind it there. What cannot be read is tried once more without its last byte. (The plug-in
/// makes this second try itself, on what readArchive refused.)
Result<pelmar::Value> readPaddedArchive(const pelmar::Bytes& archive, pelmar::Point3DClass& points);

/// The plug-in's way to both.
class KeyedArchive final : public pelmar::KeyedArchiving {
 public:
  /// `points` must outlive it.
  explicit KeyedArchive(pelmar::Point3DClass& points) : points_(points) {}
  std::optional<pelmar::Bytes> archivedDataWithRootObject(const pelmar::Value& root) const override;
  pelmar::Value unarchiveObjectWithData(const pelmar::Bytes& data) const override;

 private:
  pelmar::Point3DClass& points_;
};

}  // namespace workstation
