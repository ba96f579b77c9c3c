#include "phantom/Truth.h"

#include <nlohmann/json.hpp>

namespace phantom {
namespace {

nlohmann::ordered_json triple(Vec3 v) { return nlohmann::ordered_json::array({v.x, v.y, v.z}); }

}  // namespace

std::string levelOf(const SpineShape& shape, const SlicePlane& slice) {
  const Vec3 centre = slice.centre();
  const Vec3 normal = slice.normal();
  if (const auto along = shape.crossing(centre, normal)) return shape.levels()[shape.levelIndexAt(*along)].name;
  const bool abovePlane = normal.z > 0;
  const bool headSide = (dot(centre - shape.point(0), normal) > 0) == abovePlane;
  return headSide ? shape.levels().front().name : shape.levels().back().name;
}

std::string truthText(const PhantomOptions& options, const SpineShape& shape, const std::string& frameOfReferenceUid,
                      const std::vector<SliceTruth>& slices) {
  using Json = nlohmann::ordered_json;
  Json truth{{"anatomicalRegion", options.region},
             {"additionalVertebra", options.extraVertebra},
             {"frameOfReference", frameOfReferenceUid}};
  Json discs = Json::array();
  for (const SpineLevel& disc : shape.regionDiscs()) {
    discs.push_back({{"name", disc.name},
                     {"centre", triple(shape.point(disc.centre()))},
                     {"normal", triple(shape.tangent(disc.centre()))}});
  }
  truth["discs"] = std::move(discs);
  Json vertebrae = Json::array();
  for (const SpineLevel& vertebra : shape.regionVertebrae()) {
    vertebrae.push_back({{"name", vertebra.name}, {"centre", triple(shape.point(vertebra.centre()))}});
  }
  truth["vertebrae"] = std::move(vertebrae);
  Json levels = Json::array();
  for (const SliceTruth& slice : slices) {
    levels.push_back({{"sop", slice.sopInstanceUid}, {"frame", 1}, {"level", slice.level}});
  }
  truth["slices"] = std::move(levels);
  return truth.dump(1) + "\n";
}

}  // namespace phantom
