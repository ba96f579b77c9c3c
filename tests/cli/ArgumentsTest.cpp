#include "cli/Arguments.h"

#include <gtest/gtest.h>

#include <sstream>

#include "cli/Options.h"

namespace cli::test {
namespace {

Expected<Arguments> parse(std::vector<const char*> words) {
  words.insert(words.begin(), "vertana");
  return parseArguments(static_cast<int>(words.size()), words.data());
}

/// The sentence that refuses the words as wrong usage.
std::string refusal(const std::vector<const char*>& words) {
  const auto parsed = parse(words);
  EXPECT_FALSE(parsed);
  EXPECT_EQ(parsed.failure.status, ExitUsage);
  EXPECT_EQ(parsed.failure.sentence.find('\n'), std::string::npos) << "one line: " << parsed.failure.sentence;
  return parsed.failure.sentence;
}

void expectWords(const std::string& sentence, const std::vector<std::string>& words) {
  for (const auto& word : words) EXPECT_NE(sentence.find(word), std::string::npos) << word << " in: " << sentence;
}

TEST(Points, ArePairsOfNumbersInOrder) {
  const auto points = parsePoints("1,2.5,-3,4e1", "--polygon");
  ASSERT_TRUE(points);
  ASSERT_EQ(points->size(), 2U);
  EXPECT_EQ((*points)[0].x, 1);
  EXPECT_EQ((*points)[0].y, 2.5);
  EXPECT_EQ((*points)[1].x, -3);
  EXPECT_EQ((*points)[1].y, 40);
}

TEST(Points, MayHaveBlanksAfterTheCommas) { EXPECT_TRUE(parsePoints("1, 2, 3, 4 ", "--line")); }

struct BadPoints {
  const char* text;
  const char* complaint;
};
class RefusedPoints : public testing::TestWithParam<BadPoints> {};

TEST_P(RefusedPoints, AreNamedWithTheOption) {
  const auto points = parsePoints(GetParam().text, "--line");
  ASSERT_FALSE(points);
  EXPECT_EQ(points.failure.status, ExitUsage);
  expectWords(points.failure.sentence, {"--line", GetParam().complaint});
}

INSTANTIATE_TEST_SUITE_P(Points, RefusedPoints,
                         testing::Values(BadPoints{"", "''"}, BadPoints{"1,2,3,", "''"}, BadPoints{"1,,3,4", "''"},
                                         BadPoints{"1,2,3,four", "'four'"}, BadPoints{"1,2,3,4x", "'4x'"},
                                         BadPoints{"1 2 3 4", "'1 2 3 4'"}, BadPoints{"1,2,3,nan", "'nan'"},
                                         BadPoints{"1,2,3,inf", "'inf'"}, BadPoints{"1,2,3,1e400", "'1e400'"},
                                         BadPoints{"0x10,2,3,4", "'0x10'"}, BadPoints{"1,2,3", "3 numbers"},
                                         BadPoints{"1,2", "2 numbers"}));

TEST(Label, HoldsWhatWasGiven) {
  const auto parsed = parse({"label", "folder", "--polygon", "1,2,3,4,5,6", "--series", "-7", "--slice", "3",
                             "--region", "thoracic", "--extra-vertebra", "--json"});
  ASSERT_TRUE(parsed);
  const auto& label = std::get<LabelArguments>(*parsed);
  EXPECT_EQ(label.study, "folder");
  EXPECT_TRUE(label.polygon);
  EXPECT_EQ(label.points.size(), 3U);
  EXPECT_EQ(label.series, -7);
  EXPECT_EQ(label.slice, 3);
  EXPECT_EQ(label.region, 1);
  EXPECT_TRUE(label.extraVertebra);
  EXPECT_TRUE(label.json);
}

TEST(Label, LeavesOpenWhatWasNotGiven) {
  const auto parsed = parse({"label", "folder", "--line", "1,2,3,4"});
  ASSERT_TRUE(parsed);
  const auto& label = std::get<LabelArguments>(*parsed);
  EXPECT_FALSE(label.polygon);
  EXPECT_FALSE(label.series || label.slice || label.region);
  EXPECT_FALSE(label.extraVertebra || label.json);
}

TEST(Studies, LieInAFolderOrInADatabase) {
  for (const char* command : {"info", "show", "history"}) {
    EXPECT_TRUE(parse({command, "folder"})) << command;
    EXPECT_TRUE(parse({command, "1.2.3", "--database", "db"})) << command;
    expectWords(refusal({command}), {"STUDY"});
  }
  EXPECT_EQ(std::get<LabelArguments>(*parse({"label", "1.2", "--database", "db", "--line", "1,2,3,4"})).database, "db");
  EXPECT_TRUE(std::get<HistoryArguments>(*parse({"history", "folder", "--json"})).json);
}

TEST(Show, TakesSeveralStudiesOrADatabaseAlone) {
  const auto shown = parse({"show", "1.2.3", "1.2.4", "--database", "db", "--csv", "--jobs", "256"});
  ASSERT_TRUE(shown);
  const auto& show = std::get<ShowArguments>(*shown);
  EXPECT_EQ(show.studies, (std::vector<std::string>{"1.2.3", "1.2.4"}));
  EXPECT_EQ(show.database, "db");
  EXPECT_TRUE(show.csv);
  EXPECT_EQ(show.jobs, 256);
  const auto all = parse({"show", "--database", "db"});
  ASSERT_TRUE(all);
  EXPECT_TRUE(std::get<ShowArguments>(*all).studies.empty());
  EXPECT_FALSE(std::get<ShowArguments>(*all).jobs);
  EXPECT_EQ(refusal({"show"}), "show needs a STUDY, or --database DIR for all studies of a database: none was given.");
  for (const char* jobs : {"0", "-1", "257", "two", "1.5", ""}) {
    expectWords(refusal({"show", "a", "b", "--jobs", jobs}),
                {"--jobs", "from 1 to 256", "'" + std::string(jobs) + "'"});
  }
}

TEST(Render, NeedsAFolderToWriteTo) {
  EXPECT_EQ(std::get<RenderArguments>(*parse({"render", "folder", "--out", "pictures"})).outDir, "pictures");
  expectWords(refusal({"render", "folder"}), {"--out"});
}

TEST(Export, NeedsAFormatAndAFile) {
  const std::vector<std::pair<const char*, ExportFormat>> formats{{"json", ExportFormat::json},
                                                                  {"csv", ExportFormat::csv},
                                                                  {"slicer", ExportFormat::slicer},
                                                                  {"sct", ExportFormat::sct}};
  for (const auto& [name, format] : formats) {
    const auto parsed = parse({"export", "1.2.3", "--database", "db", "--format", name, "--out", "discs.nii"});
    ASSERT_TRUE(parsed) << name;
    const auto& exported = std::get<ExportArguments>(*parsed);
    EXPECT_EQ(exported.study, "1.2.3");
    EXPECT_EQ(exported.database, "db");
    EXPECT_EQ(exported.format, format) << name;
    EXPECT_EQ(exported.outFile, "discs.nii");
  }
  expectWords(refusal({"export", "folder", "--out", "file"}), {"--format"});
  expectWords(refusal({"export", "folder", "--format", "csv"}), {"--out"});
  expectWords(refusal({"export", "folder", "--format", "xml", "--out", "file"}),
              {"'xml' is no format: give json, csv, slicer or sct"});
}

TEST(Export, WantsANiftiNameForANiftiFile) {
  EXPECT_TRUE(parse({"export", "folder", "--format", "sct", "--out", "discs.nii.gz"}));
  expectWords(refusal({"export", "folder", "--format", "sct", "--out", "discs.csv"}),
              {"--format sct writes a NIfTI file: 'discs.csv' must end in"});
  expectWords(refusal({"export", "folder", "--format", "sct", "--out", "discs.gz"}), {".nii.gz"});
}

TEST(Play, NeedsAScript) {
  const auto parsed = parse({"play", "session.json", "--database", "db"});
  ASSERT_TRUE(parsed);
  EXPECT_EQ(std::get<PlayArguments>(*parsed).script, "session.json");
  EXPECT_EQ(std::get<PlayArguments>(*parsed).database, "db");
  expectWords(refusal({"play"}), {"SCRIPT"});
}

TEST(Restore, NeedsTheObject) {
  const auto parsed = parse({"restore", "folder", "--object", "2.25.7"});
  ASSERT_TRUE(parsed);
  EXPECT_EQ(std::get<RestoreArguments>(*parsed).object, "2.25.7");
  expectWords(refusal({"restore", "folder"}), {"--object"});
}

TEST(Restore, TakesNumbersAndUidsAlone) {
  EXPECT_TRUE(parse({"restore", "folder", "--object", "1"}));
  for (const char* object : {"", "-1", "first", "1.2a", " 1"}) {
    EXPECT_EQ(
        refusal({"restore", "folder", "--object", object}),
        "--object takes a labelling's number in the history, or its UID: '" + std::string(object) + "' is neither.");
  }
}

TEST(Usage, EmptyNamesAreRefused) {
  const std::string out = "--out is empty: give a folder or file to write to.";
  EXPECT_EQ(refusal({"demo", "--out", ""}), out);
  EXPECT_EQ(refusal({"phantom", "--region", "lumbar", "--out", ""}), out);
  EXPECT_EQ(refusal({"render", "folder", "--out", ""}), out);
  EXPECT_EQ(refusal({"export", "folder", "--format", "csv", "--out", ""}), out);
  const std::string database = "--database is empty: give a database folder.";
  for (const char* command : {"info", "show", "history"}) {
    EXPECT_EQ(refusal({command, "1.2.3", "--database", ""}), database) << command;
  }
  EXPECT_EQ(refusal({"import", "folder", "--database", ""}), database);
  EXPECT_EQ(refusal({"play", "script", "--database", ""}), database);
  EXPECT_EQ(refusal({"import", "folder", "", "--database", "db"}),
            "PATH is empty: give a file or folder of DICOM files.");
  EXPECT_EQ(refusal({"play", ""}), "SCRIPT is empty: give a file with a session script.");
}

TEST(Terms, AreListedUnlessTheyAreToBeForgotten) {
  const auto terms = [](const std::vector<const char*>& words) { return std::get<TermsArguments>(*parse(words)); };
  EXPECT_FALSE(terms({"terms"}).forget || terms({"terms"}).forgetAll || terms({"terms"}).json);
  EXPECT_FALSE(terms({"terms", "--list"}).forget);
  EXPECT_EQ(terms({"terms", "--forget", "--hws"}).forget, "--hws") << "a description may begin with dashes";
  EXPECT_EQ(terms({"terms", "--forget", ""}).forget, "");
  EXPECT_TRUE(terms({"terms", "--forget-all"}).forgetAll);
  EXPECT_TRUE(terms({"terms", "--list", "--json"}).json);
  expectWords(refusal({"terms", "--list", "--forget-all"}), {"--list", "--forget-all"});
  expectWords(refusal({"terms", "--forget"}), {"--forget"});
}

TEST(Import, NeedsPathsAndADatabase) {
  const auto parsed = parse({"import", "a", "b", "--database", "db"});
  ASSERT_TRUE(parsed);
  EXPECT_EQ(std::get<ImportArguments>(*parsed).paths, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(std::get<ImportArguments>(*parsed).database, "db");
  expectWords(refusal({"import", "a"}), {"--database"});
  expectWords(refusal({"import", "--database", "db"}), {"PATH"});
}

TEST(Usage, NumbersThatAreNoneOrDoNotFitAreNamed) {
  const std::vector<const char*> base{"label", "folder", "--line", "1,2,3,4"};
  for (const char* option : {"--series", "--slice"}) {
    for (const char* number : {"99999999999", "1.5", "abc", ""}) {
      auto words = base;
      words.insert(words.end(), {option, number});
      expectWords(refusal(words), {option, "whole number", "'" + std::string(number) + "'"});
    }
  }
  for (const char* seed : {"-1", "99999999999999999999", "1.5"}) {
    expectWords(refusal({"phantom", "--region", "lumbar", "--out", "x", "--seed", seed}), {"--seed", seed});
  }
}

TEST(Usage, SizesOfImagesHaveBounds) {
  for (const char* size : {"15", "1025", "-32", "32x32"}) {
    expectWords(refusal({"phantom", "--region", "lumbar", "--out", "x", "--image-size", size}),
                {"--image-size", "from 16 to 1024", size});
  }
  const auto parsed = parse({"phantom", "--region", "lumbar", "--out", "x", "--image-size", "16"});
  ASSERT_TRUE(parsed);
  EXPECT_EQ(std::get<PhantomArguments>(*parsed).imageSize, 16);
}

TEST(Usage, TheLargestSeedFits) {
  const auto parsed = parse({"phantom", "--region", "lumbar", "--out", "x", "--seed", "18446744073709551615"});
  ASSERT_TRUE(parsed);
  EXPECT_EQ(std::get<PhantomArguments>(*parsed).seed, UINT64_MAX);
}

TEST(Usage, WhatIsWrongIsNamed) {
  expectWords(refusal({}), {"No command",
                            "demo, phantom, import, info, label, show, history, restore, render, export, play, terms"});
  expectWords(refusal({"--bogus"}), {"'--bogus'"});
  expectWords(refusal({"lable"}), {"'lable'", "label"});
  expectWords(refusal({"info", "--json=maybe", "folder"}), {"--json", "no value"});
  expectWords(refusal({"label", "folder", "--line", "1,2,3,4", "--line", "1,2,3,4"}), {"--line", "more than once"});
  expectWords(refusal({"label", "folder", "--line", "1,2,3,4", "--polygon", "1,2,3,4"}), {"--line", "--polygon"});
  expectWords(refusal({"label", "folder"}), {"--line", "--polygon"});
  expectWords(refusal({"show", "folder", "--json", "--csv"}), {"--json", "--csv"});
  expectWords(refusal({"phantom", "--region", "Lumbar", "--out", "x"}), {"--region", "Lumbar"});
}

/// `command` is empty for the program itself.
void expectFittingHelp(const std::string& command) {
  SCOPED_TRACE("vertana " + command + " --help");
  const auto parsed = command.empty() ? parse({"--help"}) : parse({command.c_str(), "--help"});
  ASSERT_TRUE(parsed);
  const auto& text = std::get<TextToPrint>(*parsed).text;
  std::istringstream lines(text);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_LE(count, 24);
  const auto example = text.find("\nExample:\n  ");
  ASSERT_NE(example, std::string::npos);
  EXPECT_EQ(text.find("\n\n", example), std::string::npos) << "the example comes last";
  EXPECT_NE(text.find("\n  vertana " + command, example), std::string::npos);
  EXPECT_EQ(text.find("/tmp", example), std::string::npos) << "what lies there may be another's";
}

TEST(Help, OfEveryCommandFitsAScreenOf80By24AndEndsWithAnExample) {
  CLI::App app;
  RawArguments raw;
  addCommands(app, raw);
  expectFittingHelp("");
  const auto commands = app.get_subcommands({});
  EXPECT_GE(commands.size(), 11U);
  for (const auto* command : commands) expectFittingHelp(command->get_name());
}

}  // namespace
}  // namespace cli::test
