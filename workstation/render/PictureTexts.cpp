#include <algorithm>
#include <cmath>

#include "workstation/model/Vector3.h"
#include "workstation/render/NumberText.h"
#include "workstation/render/ViewPicture.h"

namespace workstation {
namespace {

void addUnlessEmpty(std::vector<std::string>& lines, const std::string& line) {
  if (!line.empty()) lines.push_back(line);
}

/// "20240229" as "2024-02-29"; anything else as it stands.
std::string dateText(const std::string& date) {
  const bool isDate =
      date.size() == 8 && std::all_of(date.begin(), date.end(), [](char c) { return c >= '0' && c <= '9'; });
  return isDate ? date.substr(0, 4) + "-" + date.substr(4, 2) + "-" + date.substr(6) : date;
}

std::string seriesText(const ImageRecord& image) {
  const std::string number = image.seriesNumber ? "Series " + std::to_string(*image.seriesNumber) : std::string();
  if (number.empty() || image.seriesDescription.empty()) return number + image.seriesDescription;
  return number + ": " + image.seriesDescription;
}

}  // namespace

std::string personNameText(const std::string& name) {
  // Alphabetic, ideographic and phonetic group; the first that is filled in.
  std::string group;
  std::size_t start = 0;
  while (group.empty() && start <= name.size()) {
    const std::size_t end = std::min(name.find('=', start), name.size());
    group = name.substr(start, end - start);
    start = end + 1;
  }
  std::string text;
  bool family = true;
  for (const char c : group) {
    if (c != '^') {
      text += c;
    } else if (family) {
      text += ", ";
      family = false;
    } else {
      text += ' ';
    }
  }
  text.erase(text.find_last_not_of(", ") + 1);
  return text;
}

std::string slicePositionText(const ImageRecord& image) {
  if (!image.geometry) return {};
  const Vector3 normal = normalized(cross(image.geometry->row, image.geometry->column));
  const std::string letters = orientationLetters(normal);
  if (letters.empty()) return {};
  // Towards L, P or H the position grows; its sign is told by the letter.
  const bool towardsNegative = letters[0] == 'R' || letters[0] == 'A' || letters[0] == 'F';
  const Vector3 upwards = towardsNegative ? -1 * normal : normal;
  const double positionMm = dot(image.geometry->position, upwards);
  const std::string letter = orientationLetters(positionMm < 0 ? -1 * upwards : upwards).substr(0, 1);
  return letter + " " + fixedText(std::abs(positionMm), 1) + " mm";
}

CornerTexts cornerTexts(const ImageRecord& image, const std::optional<std::string>& studyDescription, int slice,
                        int slices, double zoom) {
  CornerTexts texts;
  addUnlessEmpty(texts.topLeft, personNameText(image.patientName));
  addUnlessEmpty(texts.topLeft, image.patientId);
  addUnlessEmpty(texts.topLeft, dateText(image.studyDate));
  addUnlessEmpty(texts.topRight, studyDescription.value_or(""));
  addUnlessEmpty(texts.topRight, seriesText(image));
  addUnlessEmpty(texts.topRight, image.modality);
  texts.bottomLeft.push_back("Slice " + std::to_string(slice + 1) + " / " + std::to_string(slices));
  addUnlessEmpty(texts.bottomLeft, slicePositionText(image));
  texts.bottomRight.push_back("Zoom " + numberText(100 * zoom, 0) + "%");
  return texts;
}

}  // namespace workstation
