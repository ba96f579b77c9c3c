#include <random>

#include "workstation/database/LabellingStore.h"
#include "workstation/dicom/Uid.h"

namespace workstation {
namespace {

std::string randomUid() {
  // 128 random bits and more; the identifier is their hash.
  std::random_device random;
  std::string seed;
  for (int word = 0; word < 8; ++word) seed += std::to_string(random()) + ".";
  return makeUid(seed);
}

}  // namespace

LabellingStoreParts dicomParts() {
  return {&encodeReport, [](const std::filesystem::path& file) { return readReport(file); },
          [](const pelmar::Bytes& file) { return readReport(file); }, &randomUid,
          [] { return std::chrono::system_clock::now(); }};
}

}  // namespace workstation
