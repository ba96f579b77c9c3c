// The region that a study is guessed to show, and the terms that earlier runs have taught.

#include "spine/RegionTerms.h"
#include "tests/plugin/LabellingFixture.h"

namespace testhost {
namespace {

using pelmar::Value;
using Terms = std::vector<std::string>;

const std::string termsKey = "kVertanaCustomStudyDescriptionSearchTerms";

Value record(long region, const Terms& terms) {
  return Value::Dictionary{{"anatomicalRegion", static_cast<std::int64_t>(region)},
                           {"terms", Value::Array(terms.begin(), terms.end())}};
}

/// The study is set; nothing on the images tells the region.
struct RegionGuessing : LabellingFixture {
  void SetUp() override {
    LabellingFixture::SetUp();
    filter.setStudy(study);
    host.calls.clear();
  }

  long guessFor(const std::optional<std::string>& description) {
    study->description = description;
    return filter.guessedAnatomicalRegion();
  }
  long guessForBodyPart(const std::optional<std::string>& bodyPart) {
    shownImage()->bodyPart = bodyPart;
    return filter.guessedAnatomicalRegion();
  }
  pelmar::Ref<TestImage> shownImage() const {
    return sagittal->images[static_cast<std::size_t>(sagittal->view->current)];
  }
  Value stored() const { return host.defaults.objectForKey(termsKey); }
  void store(const Value& list) { host.defaults.values.insert_or_assign(termsKey, list); }
};

// --- the built-in tables ---

struct Word {
  const char* term;
  long region;
  friend std::ostream& operator<<(std::ostream& out, const Word& row) { return out << row.term; }
};

class BodyPart : public RegionGuessing, public ::testing::WithParamInterface<Word> {};

TEST_P(BodyPart, decidesInAnyCaseAndBeforeTheDescription) {
  const Word& row = GetParam();
  study->description = row.region == 0 ? "lumbar" : "cervical";
  EXPECT_EQ(guessForBodyPart(row.term), row.region);
  std::string lower = row.term;
  for (char& letter : lower) letter = static_cast<char>(letter - 'A' + 'a');
  EXPECT_EQ(guessForBodyPart(lower), row.region);
}

TEST_P(BodyPart, isComparedWhole) {
  study->description = "nothing known";
  const std::string term = GetParam().term;
  for (const auto& other : {term + "S", "X" + term, " " + term, term + " ", term.substr(0, term.size() - 1)}) {
    EXPECT_EQ(guessForBodyPart(other), -1) << other;
  }
}

INSTANTIATE_TEST_SUITE_P(Table, BodyPart,
                         ::testing::Values(Word{"CSPINE", 0}, Word{"HEADNECK", 0}, Word{"NECK", 0}, Word{"BREAST", 1},
                                           Word{"CHEST", 1}, Word{"TSPINE", 1}, Word{"ABDOMEN", 2}, Word{"LSPINE", 2},
                                           Word{"LSSPINE", 2}));

class DescriptionWord : public RegionGuessing, public ::testing::WithParamInterface<Word> {};

TEST_P(DescriptionWord, isFoundAnywhereInAnyCase) {
  const Word& row = GetParam();
  std::string upper = row.term;
  for (char& letter : upper) letter = static_cast<char>(letter - 'a' + 'A');
  EXPECT_EQ(guessFor(row.term), row.region);
  EXPECT_EQ(guessFor(upper), row.region);
  EXPECT_EQ(guessFor("MR x" + upper + "y sag"), row.region);
  EXPECT_EQ(guessFor(std::string(row.term).substr(1)), -1);
}

INSTANTIATE_TEST_SUITE_P(Table, DescriptionWord,
                         ::testing::Values(Word{"cervical", 0}, Word{"zervikal", 0}, Word{"thoracic", 1},
                                           Word{"thorax", 1}, Word{"dorsal", 1}, Word{"torax", 1}, Word{"lombaire", 2},
                                           Word{"lumbar", 2}, Word{"lumbale", 2}));

TEST(RegionTables, haveTheirRegionsAndTermsInOrder) {
  const auto expectTables = [](const std::vector<vertana::CustomTermRecord>& table, const std::vector<Terms>& terms) {
    ASSERT_EQ(table.size(), terms.size());
    for (std::size_t i = 0; i < terms.size(); ++i) {
      EXPECT_EQ(table[i].anatomicalRegion, static_cast<long>(i));
      EXPECT_EQ(table[i].terms, terms[i]);
    }
  };
  expectTables(vertana::bodyPartTerms(),
               {{"CSPINE", "HEADNECK", "NECK"}, {"BREAST", "CHEST", "TSPINE"}, {"ABDOMEN", "LSPINE", "LSSPINE"}});
  expectTables(
      vertana::studyDescriptionTerms(),
      {{"cervical", "zervikal"}, {"thoracic", "thorax", "dorsal", "torax"}, {"lombaire", "lumbar", "lumbale"}});
}

// --- which source decides ---

TEST_F(RegionGuessing, anUnknownBodyPartLeavesItToTheDescription) {
  study->description = "IRM dorsal";
  for (const auto* bodyPart : {"SPINE", "WHOLEBODY", ""}) EXPECT_EQ(guessForBodyPart(bodyPart), 1) << bodyPart;
}

TEST_F(RegionGuessing, anImageWithoutTheOperationOrTheValueLeavesItToTheDescription) {
  study->description = "IRM dorsal";
  EXPECT_EQ(guessForBodyPart(std::nullopt), 1);
  shownImage()->hasBodyPartExamined = false;
  EXPECT_EQ(guessForBodyPart("LSPINE"), 1);
}

TEST_F(RegionGuessing, theBodyPartIsThatOfTheImageShown) {
  sagittal->images[0]->bodyPart = "CSPINE";
  sagittal->images[1]->bodyPart = "CHEST";
  sagittal->view->current = 1;
  EXPECT_EQ(filter.guessedAnatomicalRegion(), 1);
  sagittal->view->current = 0;
  EXPECT_EQ(filter.guessedAnatomicalRegion(), 0);
}

TEST_F(RegionGuessing, theVerticalViewerComesBeforeTheOneOfTheCommand) {
  const auto axial = addAxial(study);
  axial->images[static_cast<std::size_t>(axial->view->current)]->bodyPart = "CHEST";
  filter.setViewerController(axial);
  EXPECT_EQ(guessForBodyPart("LSPINE"), 2);
  host.closeViewer(sagittal);
  EXPECT_EQ(filter.guessedAnatomicalRegion(), 1) << "no vertical viewer is left";
}

TEST_F(RegionGuessing, withoutAnyViewerTheDescriptionDecides) {
  host.closeViewer(sagittal);
  filter.setStudy(study);
  EXPECT_EQ(guessFor("lumbar"), 2);
}

TEST_F(RegionGuessing, regionsAreWalkedInOrderWhereverTheirWordsStand) {
  EXPECT_EQ(guessFor("cervical thoracic"), 0);
  EXPECT_EQ(guessFor("lumbar thoracic zervikal"), 0);
  EXPECT_EQ(guessFor("lumbar torax"), 1);
}

TEST_F(RegionGuessing, wordsOfSeveralLanguages) {
  EXPECT_EQ(guessFor("Columna Lumbale"), 2);
  EXPECT_EQ(guessFor("IRM dorsal"), 1);
  EXPECT_EQ(guessFor("Zervikale Wirbelsäule"), 0);
}

TEST_F(RegionGuessing, accentsAndFullWidthLettersDoNotHideABuiltInWord) {
  EXPECT_EQ(guessFor("Tórax"), 1);
  EXPECT_EQ(guessFor("COLUMNA LUMBÁR"), 2);
  EXPECT_EQ(guessFor("ce\u0301rvical"), 0) << "a combining accent";
  EXPECT_EQ(guessFor("ＬＵＭＢＡＲ"), 2) << "full width";
  EXPECT_EQ(guessFor("ｄｏｒｓａｌ"), 1);
}

TEST_F(RegionGuessing, aMissingDescriptionCountsAsCervicalUnlessTheBodyPartDecides) {
  store(Value::Array{record(1, {"mri"})});
  EXPECT_EQ(guessFor(std::nullopt), 0);
  EXPECT_EQ(guessForBodyPart("SPINE"), 0);
  EXPECT_EQ(guessForBodyPart("LSPINE"), 2);
}

TEST_F(RegionGuessing, anEmptyDescriptionMatchesNothing) {
  store(Value::Array{record(0, {""}), record(1, {"mri"})});
  EXPECT_EQ(guessFor(""), -1);
}

TEST_F(RegionGuessing, nothingKnownGivesMinusOneAndTheCommandTakesTheLumbarRegion) {
  EXPECT_EQ(guessFor("MRI SPINE"), -1);
  chooseLabels();
  EXPECT_EQ(filter.anatomicalRegion(), 2);
}

TEST_F(RegionGuessing, theCommandTakesTheGuess) {
  study->description = "IRM dorsal";
  chooseLabels();
  EXPECT_EQ(filter.anatomicalRegion(), 1);
}

// --- learnt terms ---

TEST_F(RegionGuessing, learntTermsAreSoughtInAnyCaseAfterTheBuiltInWords) {
  store(Value::Array{record(0, {}), record(1, {"MRI Whole Spine"}), record(2, {})});
  EXPECT_EQ(guessFor("mri whole spine sag"), 1);
  EXPECT_EQ(guessFor("T2 MRI WHOLE SPINE"), 1);
  EXPECT_EQ(guessFor("mri whole"), -1) << "the term is in the description, not the other way round";
  EXPECT_EQ(guessFor("mri whole spine lumbar"), 2);
}

TEST_F(RegionGuessing, accentsAndWidthCountInLearntTerms) {
  store(Value::Array{record(1, {"études"})});
  EXPECT_EQ(guessFor("ÉTUDES 1"), 1);
  EXPECT_EQ(guessFor("etudes"), -1);
  store(Value::Array{record(1, {"etude"})});
  EXPECT_EQ(guessFor("étude"), -1);
  EXPECT_EQ(guessFor("ｅｔｕｄｅ"), -1);
}

TEST_F(RegionGuessing, theStoredOrderDecidesAmongLearntTerms) {
  store(Value::Array{record(2, {"abc"}), record(0, {"ab"}), record(1, {"abc"})});
  EXPECT_EQ(guessFor("abc"), 2);
  EXPECT_EQ(guessFor("ab"), 0);
}

TEST_F(RegionGuessing, anEmptyLearntTermNeverMatches) {
  store(Value::Array{record(0, {"", "whole"})});
  EXPECT_EQ(guessFor("MRI"), -1);
  EXPECT_EQ(guessFor("whole"), 0);
}

using CustomTerms = RegionGuessing;

TEST_F(CustomTerms, theDefaultHasThreeEmptyRecordsAndIsNotWrittenByReading) {
  EXPECT_EQ(filter.customTerms(), Value(Value::Array{record(0, {}), record(1, {}), record(2, {})}));
  filter.guessedAnatomicalRegion();
  EXPECT_TRUE(stored().isNil());
  filter.setCustomTerm(std::nullopt, 1);
  EXPECT_TRUE(stored().isNil()) << "no term, nothing to file";
  EXPECT_TRUE(host.calls.lines().empty());
}

TEST_F(CustomTerms, anEmptyTermIsATerm) {
  filter.setCustomTerm("", 1);
  EXPECT_EQ(stored(), Value(Value::Array{record(0, {}), record(1, {""}), record(2, {})}));
}

TEST_F(CustomTerms, filingWritesTheListAndMovesTheTermFromItsFormerRegion) {
  filter.setCustomTerm("MRI WHOLE SPINE", 1);
  EXPECT_EQ(stored(), Value(Value::Array{record(0, {}), record(1, {"MRI WHOLE SPINE"}), record(2, {})}));
  EXPECT_EQ(filter.customTerms(), stored());
  filter.setCustomTerm("MRI WHOLE SPINE", 2);
  EXPECT_EQ(stored(), Value(Value::Array{record(0, {}), record(1, {}), record(2, {"MRI WHOLE SPINE"})}));
}

TEST_F(CustomTerms, filingAgainAddsNoDuplicateAndLosesNoOther) {
  filter.setCustomTerm("a", 1);
  filter.setCustomTerm("b", 1);
  filter.setCustomTerm("a", 1);
  auto list = vertana::regionTermsFromValue(stored());
  ASSERT_EQ(list.size(), 3U);
  std::sort(list[1].terms.begin(), list[1].terms.end());
  EXPECT_EQ(list[1].terms, (Terms{"a", "b"}));
}

TEST_F(CustomTerms, repeatedStoredTermsBecomeOne) {
  store(Value::Array{record(0, {"x", "y", "x"}), record(1, {"x"})});
  filter.setCustomTerm("z", 1);
  EXPECT_EQ(vertana::regionTermsFromValue(stored())[0].terms, (Terms{"x", "y"}));
}

TEST_F(CustomTerms, termsAreToldApartByCase) {
  filter.setCustomTerm("Spine", 1);
  filter.setCustomTerm("SPINE", 2);
  EXPECT_EQ(stored(), Value(Value::Array{record(0, {}), record(1, {"Spine"}), record(2, {"SPINE"})}));
}

TEST_F(CustomTerms, filingUnderMinusOneRemovesTheTermEverywhere) {
  store(Value::Array{record(0, {"a", "b"}), record(1, {"c"}), record(2, {"b"})});
  filter.setCustomTerm("b", -1);
  EXPECT_EQ(stored(), Value(Value::Array{record(0, {"a"}), record(1, {"c"}), record(2, {})}));
}

TEST_F(CustomTerms, aRegionWithoutARecordReceivesNothingAndNoRecordIsAddedOrDropped) {
  store(Value::Array{record(2, {"b"}), record(0, {})});
  filter.setCustomTerm("a", 1);
  EXPECT_EQ(stored(), Value(Value::Array{record(2, {"b"}), record(0, {})}));
  filter.setCustomTerm("b", 1);
  EXPECT_EQ(stored(), Value(Value::Array{record(2, {}), record(0, {})}));
}

TEST_F(CustomTerms, everyRecordOfTheRegionReceivesTheTerm) {
  store(Value::Array{record(1, {}), record(1, {"a"})});
  filter.setCustomTerm("b", 1);
  const auto list = vertana::regionTermsFromValue(stored());
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[0].terms, Terms{"b"});
  EXPECT_EQ(list[1].terms.size(), 2U);
}

TEST_F(CustomTerms, regionsAreReadAs32BitIntegers) {
  // 2^32 + 1: the low 32 bits are 1.
  store(Value::Array{record(4294967297, {"whole"})});
  EXPECT_EQ(guessFor("whole"), 1);
  store(Value::Array{record(4294967295, {"whole"})});
  EXPECT_EQ(vertana::regionTermsFromValue(stored())[0].anatomicalRegion, -1);
}

TEST_F(CustomTerms, aStoredListOfAnotherShapeIsReturnedAsItIs) {
  const std::vector<Value> shapes{
      Value("text"), Value(7), Value(Value::Dictionary{}), Value(Value::Array{}),
      Value(Value::Array{1, "two", Value::Dictionary{}, Value::Dictionary{{"anatomicalRegion", 1}, {"terms", "t"}}})};
  for (const auto& shape : shapes) {
    store(shape);
    EXPECT_EQ(filter.customTerms(), shape);
    EXPECT_EQ(guessFor("whole"), -1);
    EXPECT_EQ(stored(), shape) << "guessing repairs nothing";
  }
}

TEST_F(CustomTerms, usableEntriesOfAnOddListStillServe) {
  store(Value::Array{1, Value::Dictionary{{"terms", Value::Array{3, "whole"}}}});
  EXPECT_EQ(guessFor("whole"), 0) << "a record without a region is region 0";
}

TEST_F(CustomTerms, filingKeepsWhatIsNoTextAndNoRecordInItsPlace) {
  store(Value::Array{"odd", Value::Dictionary{{"terms", Value::Array{3, "whole", 3}}},
                     Value::Dictionary{{"anatomicalRegion", 1}, {"terms", "t"}}});
  filter.setCustomTerm("whole", 1);
  EXPECT_EQ(stored(),
            Value(Value::Array{"odd", Value::Dictionary{{"anatomicalRegion", 0}, {"terms", Value::Array{3}}},
                               Value::Dictionary{{"anatomicalRegion", 1}, {"terms", Value::Array{"whole"}}}}));
}

TEST_F(CustomTerms, filingIntoWhatIsNoListLeavesAnEmptyList) {
  store("text");
  filter.setCustomTerm("whole", 1);
  EXPECT_EQ(stored(), Value(Value::Array{}));
}

TEST_F(CustomTerms, everyRunTeachesTheDescriptionWhetherOrNotPlanesAreStored) {
  study->description = "MRI WHOLE SPINE";
  filter.setAnatomicalRegion(1);
  filter.saveCurrentState();
  EXPECT_FALSE(filter.intervertebralPlanes());
  EXPECT_EQ(guessFor("mri whole spine sag"), 1);
  study->description = "MRI WHOLE SPINE";
  filter.setAnatomicalRegion(2);
  filter.saveCurrentState();
  EXPECT_EQ(guessFor("mri whole spine sag"), 2);
  EXPECT_EQ(vertana::regionTermsFromValue(stored())[1].terms, Terms{});
}

TEST_F(CustomTerms, aStudyWithoutADescriptionTeachesNothing) {
  study->description = std::nullopt;
  filter.setStudyDescriptionAsCustomTermForCurrentRegion();
  filter.setStudy(nullptr);
  filter.setStudyDescriptionAsCustomTermForCurrentRegion();
  EXPECT_TRUE(stored().isNil());
}

}  // namespace
}  // namespace testhost
