// Archives to JSON and back, so that tests in other languages can put them beside what independent readers and writers
// make of them. A point is {"point of": [x, y, z]}.
//
//   archive_tool read FILE     prints the value in an archive; status 1 and a sentence when it is refused
//   archive_tool write FILE    writes the archive of the value on standard input

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "ArchiveTesting.h"

namespace {

using nlohmann::json;
using pelmar::Value;

constexpr const char* pointKey = "point of";

json jsonOf(const Value& value) {
  if (value.isBool()) return value.boolValue();
  if (value.isInteger()) return archive_testing::integerOf(value);
  if (value.isReal()) return value.doubleValue();
  if (const std::string* text = value.string()) return *text;
  if (const Value::Array* elements = value.array()) {
    json result = json::array();
    for (const Value& element : *elements) result.push_back(jsonOf(element));
    return result;
  }
  if (const Value::Dictionary* entries = value.dictionary()) {
    json result = json::object();
    for (const auto& [key, entry] : *entries) result[key] = jsonOf(entry);
    return result;
  }
  const auto point = pelmar::ref_cast<pelmar::Point3D>(value.object());
  return json{{pointKey, {point->x(), point->y(), point->z()}}};
}

Value valueOf(const json& content, pelmar::Point3DClass& points) {
  if (content.is_boolean()) return content.get<bool>();
  if (content.is_number_integer()) return content.get<std::int64_t>();
  if (content.is_number()) return content.get<double>();
  if (content.is_string()) return content.get<std::string>();
  if (content.is_array()) {
    Value::Array elements;
    for (const json& element : content) elements.push_back(valueOf(element, points));
    return elements;
  }
  if (content.is_null()) return {};
  if (content.size() == 1 && content.contains(pointKey)) {
    const json& xyz = content[pointKey];
    return points.pointWithX(xyz[0].get<double>(), xyz[1].get<double>(), xyz[2].get<double>());
  }
  Value::Dictionary entries;
  for (const auto& [key, entry] : content.items()) entries.emplace(key, valueOf(entry, points));
  return entries;
}

int readFile(const std::string& file) {
  archive_testing::DoublePointClass points;
  const auto value = workstation::readArchive(archive_testing::bytesOfFile(file), points);
  if (!value) {
    std::cerr << value.problem << '\n';
    return 1;
  }
  std::cout << jsonOf(*value).dump() << '\n';
  return 0;
}

int writeFile(const std::string& file) {
  archive_testing::DoublePointClass points;
  const auto archive = workstation::writeArchive(valueOf(json::parse(std::cin), points));
  if (!archive) {
    std::cerr << archive.problem << '\n';
    return 1;
  }
  std::ofstream stream(file, std::ios::binary);
  stream.write(reinterpret_cast<const char*>(archive->data()), static_cast<std::streamsize>(archive->size()));
  return stream.good() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc == 3 ? argv[1] : "";
  if (command == "read") return readFile(argv[2]);
  if (command == "write") return writeFile(argv[2]);
  std::cerr << "usage: archive_tool read|write FILE\n";
  return 2;
}
