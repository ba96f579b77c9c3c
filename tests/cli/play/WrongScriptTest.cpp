// Every key of every step is left out, misspelt and given values of every other type.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <set>

#include "cli/play/ScriptReader.h"

namespace cli {
namespace {

using nlohmann::json;

/// What a value may be.
enum class Type { text, whole, number, truth, pair, pairs, settings };

struct Key {
  std::string name;
  Type type;
  bool required;
};

struct Row {
  std::string step;  ///< an example that is right, with every key that can stand in it
  std::vector<Key> keys;
};

// Keys of which a step must have exactly one are given here as required; the other one has a row of its own.
const Row rows[] = {
    {R"({"do": "openStudy", "path": "p"})", {{"path", Type::text, true}}},
    {R"({"do": "openStudy", "study": "s"})", {{"study", Type::text, true}}},
    {R"({"do": "openViewer", "path": "p", "series": 1, "stack": 0})",
     {{"path", Type::text, true}, {"series", Type::whole, true}, {"stack", Type::whole, false}}},
    {R"({"do": "openViewer", "study": "s", "series": 1})", {{"study", Type::text, true}}},
    {R"({"do": "closeViewer", "viewer": 0})", {{"viewer", Type::whole, true}}},
    {R"({"do": "switchSeries", "viewer": 0, "series": 1, "stack": 0})",
     {{"viewer", Type::whole, true}, {"series", Type::whole, true}, {"stack", Type::whole, false}}},
    {R"({"do": "front", "viewer": 0})", {{"viewer", Type::whole, true}}},
    {R"({"do": "menu", "viewer": 0, "title": "t"})", {{"viewer", Type::whole, true}, {"title", Type::text, true}}},
    {R"({"do": "draw", "viewer": 0, "slice": 0, "type": "line", "points": [[0, 1], [2, 3]], "moves": 1, "release": true})",
     {{"viewer", Type::whole, true},
      {"slice", Type::whole, false},
      {"type", Type::text, true},
      {"points", Type::pairs, true},
      {"moves", Type::whole, false},
      {"release", Type::truth, false}}},
    {R"({"do": "release", "viewer": 0})", {{"viewer", Type::whole, true}}},
    {R"({"do": "dragVertex", "viewer": 0, "roi": "curve", "vertex": 0, "to": [1, 2], "moves": 1})",
     {{"viewer", Type::whole, true},
      {"roi", Type::text, true},
      {"vertex", Type::whole, true},
      {"to", Type::pair, true},
      {"moves", Type::whole, false}}},
    {R"({"do": "deleteROI", "viewer": 0, "roi": "curve"})", {{"viewer", Type::whole, true}, {"roi", Type::text, true}}},
    {R"({"do": "deleteROI", "viewer": 0, "id": 0})", {{"id", Type::whole, true}}},
    {R"({"do": "tool", "viewer": 0, "mouse": 0})", {{"viewer", Type::whole, true}, {"mouse", Type::whole, true}}},
    {R"({"do": "tool", "viewer": 0, "roi": 5})", {{"roi", Type::whole, true}}},
    {R"({"do": "rotate", "viewer": 0, "degrees": 1.5})",
     {{"viewer", Type::whole, true}, {"degrees", Type::number, true}}},
    {R"({"do": "flip", "viewer": 0, "axis": "horizontal"})",
     {{"viewer", Type::whole, true}, {"axis", Type::text, true}}},
    {R"({"do": "undo"})", {}},
    {R"({"do": "redo"})", {}},
    {R"({"do": "failSaves", "on": true})", {{"on", Type::truth, true}}},
    {R"({"do": "scroll", "viewer": 0, "slice": 0})", {{"viewer", Type::whole, true}, {"slice", Type::whole, true}}},
    {R"({"do": "zoom", "viewer": 0, "scale": 1})", {{"viewer", Type::whole, true}, {"scale", Type::number, true}}},
    {R"({"do": "pan", "viewer": 0, "by": [1, 2]})", {{"viewer", Type::whole, true}, {"by", Type::pair, true}}},
    {R"({"do": "palette", "press": "reset"})", {{"press", Type::text, true}}},
    {R"({"do": "palette", "set": {"drawMode": 1}})", {{"set", Type::settings, true}}},
    {R"({"do": "addReport", "path": "p", "file": "f"})", {{"path", Type::text, true}, {"file", Type::text, true}}},
    {R"({"do": "dump", "name": "n"})", {{"name", Type::text, false}}},
    {R"({"do": "restart"})", {}},
    {R"({"do": "crash"})", {}},
};

/// Values, each with the types for which it would do.
const std::pair<const char*, std::set<Type>> values[] = {
    {"null", {}},
    {"\"no such word\"", {Type::text}},
    {"3", {Type::whole, Type::number}},
    {"3.5", {Type::number}},
    {"3000000000", {Type::number}},
    {"-3000000000", {Type::number}},
    {"18446744073709551615", {Type::number}},
    {"true", {Type::truth}},
    {"[1, 2]", {Type::pair}},
    {"[1, 2, 3]", {}},
    {"[1, \"2\"]", {}},
    {"[[1, 2], [3, 4]]", {Type::pairs}},
    {"[[1, 2], [3]]", {}},
    {"{}", {}},
    {R"({"drawMode": 0})", {Type::settings}},
};

bool isChoice(const std::string& key, const std::string& step) {
  return key == "type" || key == "axis" || key == "press" || (key == "roi" && step != "tool");
}

/// The sentence about a script whose second step of three is this one.
Failure failureOf(const json& step) {
  const json dump{{"do", "dump"}};
  const auto script = readScript(json{{"steps", {dump, step, dump}}}.dump());
  EXPECT_FALSE(script) << step;
  return script ? Failure{ExitDone, "none"} : script.failure;
}

void expectNamed(const json& step, const std::string& key, const std::string& reason) {
  const Failure failure = failureOf(step);
  EXPECT_EQ(failure.status, ExitUsage) << step;
  EXPECT_EQ(failure.sentence.find("Step 2 of 3: "), 0u) << failure.sentence;
  EXPECT_NE(failure.sentence.find('"' + key + "\" " + reason), std::string::npos) << step << '\n' << failure.sentence;
  EXPECT_EQ(failure.sentence.back(), '.') << failure.sentence;
}

class EveryStep : public testing::TestWithParam<Row> {};

TEST_P(EveryStep, IsReadAsItStands) {
  EXPECT_TRUE(readScript("{\"steps\": [" + GetParam().step + "]}")) << GetParam().step;
}

TEST_P(EveryStep, NeedsItsKeys) {
  for (const Key& key : GetParam().keys) {
    auto step = json::parse(GetParam().step);
    step.erase(key.name);
    if (!key.required) {
      EXPECT_TRUE(readScript(json{{"steps", {step}}}.dump())) << step;
      continue;
    }
    const Failure failure = failureOf(step);
    EXPECT_EQ(failure.status, ExitUsage);
    EXPECT_NE(failure.sentence.find("is missing"), std::string::npos) << failure.sentence;
    EXPECT_NE(failure.sentence.find('"' + key.name + '"'), std::string::npos) << failure.sentence;
  }
}

TEST_P(EveryStep, TakesNoOtherKey) {
  auto step = json::parse(GetParam().step);
  step["viewers"] = 0;
  expectNamed(step, "viewers", "is no key here");
}

TEST_P(EveryStep, TakesNoValueOfAnotherType) {
  for (const Key& key : GetParam().keys) {
    for (const auto& [value, types] : values) {
      auto step = json::parse(GetParam().step);
      step[key.name] = json::parse(value);
      const bool fits = types.contains(key.type) && !isChoice(key.name, step["do"]);
      if (fits) {
        EXPECT_TRUE(readScript(json{{"steps", {step}}}.dump())) << step;
      } else {
        expectNamed(step, key.name, key.type == Type::settings ? "" : "must be");
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Script, EveryStep, testing::ValuesIn(rows));

struct WrongRow {
  const char* text;
  ExitStatus status;
  const char* sentence;
};

TEST(WrongScripts, AreToldInOneSentence) {
  const WrongRow wrong[] = {
      {"", ExitUnreadable, "The script is not JSON: line 1, column 1 does not fit."},
      {"{\"steps\": [\n  {\"do\" \"dump\"}]}", ExitUnreadable,
       "The script is not JSON: line 2, column 14 does not fit."},
      {"{\"steps\": []} x", ExitUnreadable, "The script is not JSON: line 1, column 15 does not fit."},
      {"[]", ExitUsage, "The script is no object: write {\"steps\": [...]}."},
      {"{}", ExitUsage, "In the script \"steps\" is missing."},
      {R"({"steps": {}})", ExitUsage, "In the script \"steps\" must be a list of steps."},
      {R"({"steps": [], "step": []})", ExitUsage, "In the script \"step\" is no key here."},
      {R"({"steps": [], "steps": []})", ExitUsage, "The script names the key \"steps\" twice."},
      {R"({"steps": [{"do": "undo"}, {"do": "front", "viewer": 0, "viewer": 1}, {"do": "undo"}]})", ExitUsage,
       "Step 2 of 3: names the key \"viewer\" twice."},
      {R"({"steps": [{"do": "pan", "viewer": 0, "by": [1, 2]}, {"do": "palette", "set": {"drawMode": 0, "drawMode": 1}}]})",
       ExitUsage, "Step 2 of 2: names the key \"drawMode\" twice."},
      {R"({"defaults": {"a": [{"b": 1, "b": 2}]}, "steps": [{"do": "undo", "do": "redo"}]})", ExitUsage,
       "The script names the key \"b\" twice."},
      {R"({"database": 1, "steps": []})", ExitUsage, "In the script \"database\" must be a string."},
      {R"({"defaults": [], "steps": []})", ExitUsage, "In the script \"defaults\" must be an object."},
      {R"({"host": "9.0", "steps": []})", ExitUsage, "In the script \"host\" must be an object."},
      {R"({"host": {"version": 9}, "steps": []})", ExitUsage,
       "In the script \"host\" is wrong: \"version\" must be a string."},
      {R"({"host": {"lacks": "stringTags"}, "steps": []})", ExitUsage,
       "In the script \"host\" is wrong: \"lacks\" must be a list of names."},
      {R"({"host": {"lacks": ["tags"]}, "steps": []})", ExitUsage,
       "In the script \"host\" is wrong: \"lacks\" holds \"tags\", which no host is known to lack."},
      {R"({"host": {"lack": []}, "steps": []})", ExitUsage,
       "In the script \"host\" is wrong: \"lack\" is no key here."},
      {R"({"steps": [3]})", ExitUsage, "Step 1 of 1: is no object: write {\"do\": NAME, ...}."},
      {R"({"steps": [{}]})", ExitUsage, "Step 1 of 1: has no key \"do\"."},
      {R"({"steps": [{"do": 1}]})", ExitUsage, "Step 1 of 1: \"do\" must be a string."},
      {R"({"steps": [{"do": "undo"}, {"do": "jump"}]})", ExitUsage, "Step 2 of 2: \"do\" names no step: \"jump\"."},
      {R"({"steps": [{"do": "openStudy", "path": "p", "study": "s"}]})", ExitUsage,
       "Step 1 of 1: \"openStudy\": \"path\" cannot be there together with \"study\"."},
      {R"({"steps": [{"do": "draw", "viewer": 0, "type": "line", "points": [[1, 2]]}]})", ExitUsage,
       "Step 1 of 1: \"draw\": \"points\" must hold two points for a line."},
      {R"({"steps": [{"do": "draw", "viewer": 0, "type": "polygon", "points": []}]})", ExitUsage,
       "Step 1 of 1: \"draw\": \"points\" must hold at least one point."},
      {R"({"steps": [{"do": "draw", "viewer": 0, "type": "line", "points": [[1, 2], [3, 4]], "moves": 0}]})", ExitUsage,
       "Step 1 of 1: \"draw\": \"moves\" must be at least 1."},
      {R"({"steps": [{"do": "draw", "viewer": 0, "type": "line", "points": [[1, 2], [3, 4]], "moves": 10001}]})",
       ExitUsage, "Step 1 of 1: \"draw\": \"moves\" must be at most 10000."},
      {R"({"steps": [{"do": "dragVertex", "viewer": 0, "roi": "curve", "vertex": 0, "to": [1, 2], "moves": 0}]})",
       ExitUsage, "Step 1 of 1: \"dragVertex\": \"moves\" must be at least 1."},
      {R"({"steps": [{"do": "dragVertex", "viewer": 0, "roi": "curve", "vertex": 0, "to": [1, 2], "moves": 2147483647}]})",
       ExitUsage, "Step 1 of 1: \"dragVertex\": \"moves\" must be at most 10000."},
      {R"({"steps": [{"do": "closeViewer", "viewer": 1.5}]})", ExitUsage,
       "Step 1 of 1: \"closeViewer\": \"viewer\" must be a whole number."},
      {R"({"steps": [{"do": "closeViewer", "viewer": 3000000000}]})", ExitUsage,
       "Step 1 of 1: \"closeViewer\": \"viewer\" must be a whole number of at most 32 bits."},
      {R"({"steps": [{"do": "dragVertex", "viewer": 0, "roi": "curve", "vertex": 0, "to": [1]}]})", ExitUsage,
       "Step 1 of 1: \"dragVertex\": \"to\" must be a point [x, y]."},
      {R"({"steps": [{"do": "pan", "viewer": 0, "by": 3}]})", ExitUsage,
       "Step 1 of 1: \"pan\": \"by\" must be a distance [x, y]."},
      {R"({"steps": [{"do": "draw", "viewer": 0, "type": "line", "points": [1, 2]}]})", ExitUsage,
       "Step 1 of 1: \"draw\": \"points\" must be a list of points [x, y]."},
      {R"({"steps": [{"do": "flip", "viewer": 0, "axis": "up"}]})", ExitUsage,
       "Step 1 of 1: \"flip\": \"axis\" must be one of \"horizontal\", \"vertical\"."},
      {R"({"steps": [{"do": "openStudy", "study": ""}]})", ExitUsage,
       "Step 1 of 1: \"openStudy\": \"study\" must not be empty: give a Study Instance UID."},
      {R"({"steps": [{"do": "openViewer", "study": "", "series": 1}]})", ExitUsage,
       "Step 1 of 1: \"openViewer\": \"study\" must not be empty: give a Study Instance UID."},
      {R"({"steps": [{"do": "openStudy"}]})", ExitUsage,
       "Step 1 of 1: \"openStudy\": \"path\" is missing: give it or \"study\"."},
      {R"({"steps": [{"do": "palette", "set": {}}]})", ExitUsage,
       "Step 1 of 1: \"palette\": \"set\" is wrong: \"anatomicalRegion\" is missing: give it, \"additionalVertebra\", "
       "\"drawMode\" or \"displayLabels\"."},
      {R"({"defaults": {"a": 1e999}, "steps": []})", ExitUnreadable,
       "The script is not JSON: a number in it is beyond what can be read."},
      {R"({"steps": [{"do": "palette", "set": {"drawmode": 1}}]})", ExitUsage,
       "Step 1 of 1: \"palette\": \"set\" is wrong: \"drawmode\" is no key here."},
      {R"({"steps": [{"do": "palette", "set": {"anatomicalRegion": -2}}]})", ExitUsage,
       "Step 1 of 1: \"palette\": \"set\" is wrong: \"anatomicalRegion\" must be a region from -1 to 2."},
      {R"({"steps": [{"do": "palette", "set": {"anatomicalRegion": 3}}]})", ExitUsage,
       "Step 1 of 1: \"palette\": \"set\" is wrong: \"anatomicalRegion\" must be a region from -1 to 2."},
      {R"({"steps": [{"do": "palette", "set": {"drawMode": -1}}]})", ExitUsage,
       "Step 1 of 1: \"palette\": \"set\" is wrong: \"drawMode\" must be 0 for a line or 1 for a polygon."},
      {R"({"steps": [{"do": "palette", "set": {"drawMode": 2}}]})", ExitUsage,
       "Step 1 of 1: \"palette\": \"set\" is wrong: \"drawMode\" must be 0 for a line or 1 for a polygon."},
      {R"({"steps": [{"do": "palette", "set": {"displayLabels": 1}}]})", ExitUsage,
       "Step 1 of 1: \"palette\": \"set\" is wrong: \"displayLabels\" must be true or false."},
  };
  for (const WrongRow& row : wrong) {
    const auto script = readScript(row.text);
    ASSERT_FALSE(script) << row.text;
    EXPECT_EQ(script.failure.status, row.status) << row.text;
    EXPECT_EQ(script.failure.sentence, row.sentence);
  }
}

TEST(WrongScripts, OfAnyDepthAreRefused) {
  const std::string deep(100000, '[');
  const auto open = readScript(deep);
  ASSERT_FALSE(open);
  EXPECT_EQ(open.failure.status, ExitUnreadable);
  const auto closed = readScript("{\"steps\": [], \"defaults\": {\"a\": " + deep + std::string(100000, ']') + "}}");
  ASSERT_FALSE(closed);
  EXPECT_EQ(closed.failure.sentence, "The script holds lists within lists deeper than 64.");
}

}  // namespace
}  // namespace cli
