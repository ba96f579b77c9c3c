#pragma once
// The names that keyed archives are made of.

#include <cstdint>
#include <string_view>

namespace workstation::archive_names {

constexpr std::string_view archiver = "NSKeyedArchiver";
constexpr std::int64_t version = 100000;

constexpr std::string_view archiverKey = "$archiver";
constexpr std::string_view versionKey = "$version";
constexpr std::string_view topKey = "$top";
constexpr std::string_view objectsKey = "$objects";
/// The root in `$top`, and what archives of several unnamed roots call the first of them.
constexpr std::string_view rootKey = "root";
constexpr std::string_view firstRootKey = "$0";
/// Stands among the objects for nil.
constexpr std::string_view nil = "$null";
/// A reference where a property list has none of its own: a dictionary with this one entry.
constexpr std::string_view uidKey = "CF$UID";

constexpr std::string_view classKey = "$class";
constexpr std::string_view classNameKey = "$classname";
constexpr std::string_view classesKey = "$classes";
/// Classes to take instead, the best first, where the class itself is not known.
constexpr std::string_view classHintsKey = "$classhints";

constexpr std::string_view keysKey = "NS.keys";
constexpr std::string_view elementsKey = "NS.objects";
constexpr std::string_view stringKey = "NS.string";

constexpr std::string_view objectClass = "NSObject";
constexpr std::string_view dictionaryClass = "NSDictionary";
constexpr std::string_view mutableDictionaryClass = "NSMutableDictionary";
constexpr std::string_view arrayClass = "NSArray";
constexpr std::string_view mutableArrayClass = "NSMutableArray";
constexpr std::string_view stringClass = "NSString";
constexpr std::string_view mutableStringClass = "NSMutableString";
constexpr std::string_view pointClass = "Point3D";

}  // namespace workstation::archive_names
