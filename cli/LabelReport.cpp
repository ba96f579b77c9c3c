#include "cli/LabelReport.h"

#include <charconv>
#include <iomanip>
#include <nlohmann/json.hpp>

#include "cli/PlainText.h"

namespace cli {

using nlohmann::ordered_json;

std::string seriesTitle(const std::optional<int>& series, std::size_t stack) {
  std::string title = series ? "series " + std::to_string(*series) : "series without a number";
  if (stack > 0) title += ", stack " + std::to_string(stack);
  return title;
}

namespace {

ordered_json numberOrNull(const std::optional<int>& number) { return number ? ordered_json(*number) : ordered_json(); }

std::string sliceRange(int first, int last) {
  return first == last ? std::to_string(first) : std::to_string(first) + "-" + std::to_string(last);
}

/// A text as a field of a table.
std::string csvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char letter : text) quoted += letter == '"' ? std::string("\"\"") : std::string(1, letter);
  return quoted + '"';
}

/// The shortest text that reads back to the same number.
std::string shortestText(double number) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return {text.data(), end};
}

/// One line for each run of neighbouring slices with the same level; returns where the next stack begins.
std::size_t printStack(std::ostream& out, const std::vector<LabelledSlice>& slices, std::size_t begin) {
  const auto& head = slices[begin];
  std::size_t end = begin;
  while (end < slices.size() && slices[end].series == head.series && slices[end].stack == head.stack) ++end;
  out << "\nAxial " << seriesTitle(head.series, head.stack) << ", " << end - begin
      << (end - begin == 1 ? " slice" : " slices") << '\n';
  if (!head.sameFrameOfReference) {
    out << "  CAUTION: another frame of reference than the drawing; check these levels against a landmark.\n";
  }
  out << "  slices      level\n";
  for (std::size_t i = begin; i < end;) {
    std::size_t next = i;
    while (next < end && slices[next].name == slices[i].name) ++next;
    out << "  " << std::left << std::setw(12) << sliceRange(slices[i].slice, slices[next - 1].slice)
        << printable(slices[i].name.value_or("(none)")) << '\n';
    i = next;
  }
  return end;
}

}  // namespace

void printLabelling(std::ostream& out, const Labelling& labelling, std::string_view beginning) {
  const auto regionTitle = regionName(labelling.region);
  out << beginning << " the " << regionTitle << " spine"
      << (labelling.additionalVertebra ? " with an extra vertebra" : "") << ", drawn on "
      << seriesTitle(labelling.verticalSeries, labelling.verticalStack) << ", slice " << labelling.verticalSlice
      << " of 0-" << labelling.verticalSlices - 1 << ".\n\n";
  out << "  disc        centre: left, back, head (mm)\n";
  for (const auto& plane : labelling.planes) {
    out << "  " << padded(printable(plane.name), 10) << std::right << std::fixed << std::setprecision(1);
    for (const double coordinate : plane.point) out << std::setw(9) << coordinate;
    out << '\n';
  }
  if (labelling.slices.empty()) out << "\nThe study has no axial series, so there is no slice to name.\n";
  for (std::size_t i = 0; i < labelling.slices.size();) i = printStack(out, labelling.slices, i);
}

void printLabellingAsJson(std::ostream& out, const Labelling& labelling) {
  ordered_json json;
  json["study"] = labelling.studyUid;
  json["anatomicalRegion"] = labelling.region;
  json["additionalVertebra"] = labelling.additionalVertebra;
  json["vertical"] = {{"series", numberOrNull(labelling.verticalSeries)},
                      {"stack", labelling.verticalStack},
                      {"slice", labelling.verticalSlice}};
  json["curve"] = nullptr;
  if (labelling.curve) {
    json["curve"] = ordered_json::array();
    for (const auto& point : *labelling.curve) json["curve"].push_back(ordered_json::array({point.x, point.y}));
  }
  json["intervertebralPlanes"] = ordered_json::array();
  for (const auto& plane : labelling.planes) {
    json["intervertebralPlanes"].push_back({{"name", plane.name}, {"point", plane.point}, {"vector", plane.vector}});
  }
  json["slices"] = ordered_json::array();
  for (const auto& slice : labelling.slices) {
    json["slices"].push_back({{"series", numberOrNull(slice.series)},
                              {"stack", slice.stack},
                              {"slice", slice.slice},
                              {"sop", slice.sopInstanceUid},
                              {"frame", slice.frame},
                              {"name", slice.name ? ordered_json(*slice.name) : ordered_json()},
                              {"sameFrameOfReference", slice.sameFrameOfReference}});
  }
  out << json.dump(-1, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

const char* const csvHeader = "study,kind,name,x,y,z,nx,ny,nz,series,stack,slice,sop,frame,sameFrameOfReference\n";

void printLabellingAsCsv(std::ostream& out, const Labelling& labelling) {
  for (const auto& plane : labelling.planes) {
    out << csvField(labelling.studyUid) << ",disc," << csvField(plane.name);
    for (const double coordinate : plane.point) out << ',' << shortestText(coordinate);
    for (const double coordinate : plane.vector) out << ',' << shortestText(coordinate);
    out << ",,,,,,\n";
  }
  for (const auto& slice : labelling.slices) {
    out << csvField(labelling.studyUid) << ",slice," << csvField(slice.name.value_or("")) << ",,,,,,,"
        << (slice.series ? std::to_string(*slice.series) : "") << ',' << slice.stack << ',' << slice.slice << ','
        << csvField(slice.sopInstanceUid) << ',' << slice.frame << ','
        << (slice.sameFrameOfReference ? "true" : "false") << '\n';
  }
}

}  // namespace cli
