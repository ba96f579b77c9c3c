#include "cli/LabelReport.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

namespace cli::test {
namespace {

/// Two axial stacks: one of the drawing's frame of reference, one of another without a Series Number.
Labelling twoStacks() {
  Labelling labelling;
  labelling.studyUid = "1.2.3";
  labelling.region = 2;
  labelling.verticalSeries = 6;
  labelling.verticalSlice = 5;
  labelling.verticalSlices = 11;
  labelling.curve = std::vector<pelmar::PixelPoint>{{1.5, 2}, {3, 4.25}};
  labelling.planes = {{"L1-L2", {1, -2.25, 30}, {0, 0, -1}}};
  labelling.slices = {{8, 0, 0, "1.8.1", 1, std::nullopt, true},
                      {8, 0, 1, "1.8.2", 1, "L1", true},
                      {8, 0, 2, "1.8.3", 1, "L1", true},
                      {std::nullopt, 1, 0, "1.9", 3, "L1-L2", false}};
  return labelling;
}

TEST(LabelReport, JsonHasTheKeysThatScriptsRelyOn) {
  std::ostringstream out;
  printLabellingAsJson(out, twoStacks());
  const auto expected = nlohmann::json::parse(R"({
    "study": "1.2.3", "anatomicalRegion": 2, "additionalVertebra": false,
    "vertical": {"series": 6, "stack": 0, "slice": 5},
    "curve": [[1.5, 2.0], [3.0, 4.25]],
    "intervertebralPlanes": [{"name": "L1-L2", "point": [1.0, -2.25, 30.0], "vector": [0.0, 0.0, -1.0]}],
    "slices": [
      {"series": 8, "stack": 0, "slice": 0, "sop": "1.8.1", "frame": 1, "name": null, "sameFrameOfReference": true},
      {"series": 8, "stack": 0, "slice": 1, "sop": "1.8.2", "frame": 1, "name": "L1", "sameFrameOfReference": true},
      {"series": 8, "stack": 0, "slice": 2, "sop": "1.8.3", "frame": 1, "name": "L1", "sameFrameOfReference": true},
      {"series": null, "stack": 1, "slice": 0, "sop": "1.9", "frame": 3, "name": "L1-L2",
       "sameFrameOfReference": false}]})");
  EXPECT_EQ(nlohmann::json::parse(out.str()), expected);
  EXPECT_EQ(out.str().find('\n'), out.str().size() - 1) << "one line";
}

TEST(LabelReport, JsonTellsACurveThatIsNotKnownAsNull) {
  auto labelling = twoStacks();
  labelling.curve.reset();
  std::ostringstream out;
  printLabellingAsJson(out, labelling);
  EXPECT_TRUE(nlohmann::json::parse(out.str()).at("curve").is_null());
}

TEST(LabelReport, NamesThatWouldCommandATerminalArePrintedWithoutThePower) {
  auto labelling = twoStacks();
  labelling.planes[0].name = "L1\x1b[2J";
  labelling.slices[1].name = "L2\x1b[2J";
  std::ostringstream out;
  printLabelling(out, labelling, "Labelled");
  EXPECT_EQ(out.str().find('\x1b'), std::string::npos);
  EXPECT_NE(out.str().find("  L1?[2J          1.0     -2.2     30.0\n"), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("  1           L2?[2J\n"), std::string::npos) << out.str();
}

TEST(LabelReport, CsvHasARowADiscAndARowASlice) {
  auto labelling = twoStacks();
  labelling.planes[0].name = "L1,\"L2\"";
  std::ostringstream out;
  out << csvHeader;
  printLabellingAsCsv(out, labelling);
  EXPECT_EQ(out.str(),
            "study,kind,name,x,y,z,nx,ny,nz,series,stack,slice,sop,frame,sameFrameOfReference\n"
            "1.2.3,disc,\"L1,\"\"L2\"\"\",1,-2.25,30,0,0,-1,,,,,,\n"
            "1.2.3,slice,,,,,,,,8,0,0,1.8.1,1,true\n"
            "1.2.3,slice,L1,,,,,,,8,0,1,1.8.2,1,true\n"
            "1.2.3,slice,L1,,,,,,,8,0,2,1.8.3,1,true\n"
            "1.2.3,slice,L1-L2,,,,,,,,1,0,1.9,3,false\n");
}

TEST(LabelReport, JsonSurvivesIdentifiersThatAreNoUtf8) {
  auto labelling = twoStacks();
  labelling.studyUid = "1.2\xff";
  std::ostringstream out;
  EXPECT_NO_THROW(printLabellingAsJson(out, labelling));
  EXPECT_FALSE(nlohmann::json::parse(out.str(), nullptr, false).is_discarded());
}

TEST(LabelReport, PeopleSeeRunsOfSlicesAndACautionForAnotherFrameOfReference) {
  std::ostringstream out;
  printLabelling(out, twoStacks());
  const auto text = out.str();
  EXPECT_NE(text.find("Axial series 8, 3 slices\n  slices      level\n  0           (none)\n  1-2         L1\n"),
            std::string::npos)
      << text;
  const auto other = text.find("Axial series without a number, stack 1, 1 slice\n  CAUTION");
  EXPECT_NE(other, std::string::npos) << text;
  EXPECT_EQ(text.find("CAUTION"), text.rfind("CAUTION")) << "only there";
}

}  // namespace
}  // namespace cli::test
