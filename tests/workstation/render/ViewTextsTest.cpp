#include "workstation/render/ViewTexts.h"

#include <gtest/gtest.h>

#include <QRectF>
#include <algorithm>

namespace workstation::test {
namespace {

/// The texts of a usual slice in a view of this size.
ViewPicture pictureOfSize(double width, double height) {
  ViewPicture picture;
  picture.transform.viewWidth = width;
  picture.transform.viewHeight = height;
  picture.letters = {"R", "L", "A", "P"};
  picture.corners.topLeft = {"Doe, Jane", "P-1", "2024-02-29"};
  picture.corners.topRight = {"Lumbar spine", "Series 3: T2 tra", "MR"};
  picture.corners.bottomLeft = {"Slice 12 / 24", "H 12.5 mm"};
  picture.corners.bottomRight = {"Zoom 150%"};
  picture.scaleBar = ScaleBar{50, width / 4, "5 cm"};
  return picture;
}

const WindowLine usualWindow{"WL 480 WW 960", true};

/// The level of a slice, as the plug-in writes it: in the middle, 40 points below the upper edge.
PaintedAnnotation levelIn(const ViewPicture& picture) {
  PaintedAnnotation level;
  level.type = 13;
  level.thickness = 20;
  level.lines = {"L3-L4"};
  level.vertices = {picture.transform.toPixel({picture.transform.viewWidth / 2, picture.transform.viewHeight - 40})};
  return level;
}

class ViewTextsTest : public testing::Test {
 protected:
  void layOut(const ViewPicture& picture, const WindowLine& window = usualWindow) {
    bottom_ = picture.transform.viewHeight;
    texts_ = layOutTexts(picture, window, bottom_);
    width_ = picture.transform.viewWidth;
    expectEverythingApart();
  }
  const ViewText* line(const QString& text) const {
    const auto found =
        std::find_if(texts_.lines.begin(), texts_.lines.end(), [&](const ViewText& each) { return each.text == text; });
    return found == texts_.lines.end() ? nullptr : &*found;
  }
  bool isWhole(const QString& text) const {
    const ViewText* found = line(text);
    return found && boxOfLine(*found).width() > TextStamps::widthOf(text, found->style) - 0.01;
  }
  static QRectF boxOfLine(const ViewText& line) {
    const double whole = TextStamps::widthOf(line.text, line.style);
    const double width = line.style.longest > 0 ? std::min(line.style.longest, whole) : whole;
    const double left = line.align == TextStamps::Align::left    ? line.top.x()
                        : line.align == TextStamps::Align::right ? line.top.x() - width
                                                                 : line.top.x() - width / 2;
    return {left, line.top.y(), width, TextStamps::lineHeight(line.style.size)};
  }

  ViewTexts texts_;

 private:
  /// Nothing is written over anything else, nor beyond the view. The empty part of a box above and below its capital
  /// letters is no text.
  void expectEverythingApart() const {
    std::vector<std::pair<QString, QRectF>> boxes;
    for (const ViewText& each : texts_.lines) {
      const QRectF box = boxOfLine(each);
      boxes.emplace_back(each.text, box.adjusted(0, 0.2 * box.height(), 0, -0.21 * box.height()));
    }
    if (texts_.scaleBar) {
      boxes.emplace_back("bar", QRectF(texts_.scaleBar->p1() - QPointF(0, 4), texts_.scaleBar->p2() + QPointF(0, 1)));
    }
    for (std::size_t a = 0; a < boxes.size(); ++a) {
      EXPECT_TRUE(QRectF(0, 0, width_, bottom_).contains(boxes[a].second)) << boxes[a].first.toStdString();
      for (std::size_t b = a + 1; b < boxes.size(); ++b) {
        EXPECT_FALSE(boxes[a].second.intersects(boxes[b].second))
            << boxes[a].first.toStdString() << " and " << boxes[b].first.toStdString() << " at " << width_;
      }
    }
  }

  double width_ = 0;
  double bottom_ = 0;
};

TEST_F(ViewTextsTest, InAViewOfUsualSizeEverythingIsWrittenWhole) {
  for (const double width : {260.0, 400.0, 800.0}) {
    layOut(pictureOfSize(width, 260));
    for (const char* text : {"Doe, Jane", "P-1", "2024-02-29", "Lumbar spine", "Series 3: T2 tra", "MR",
                             "Slice 12 / 24", "H 12.5 mm", "Zoom 150%", "WL 480 WW 960", "5 cm", "R", "L", "A", "P"})
      EXPECT_TRUE(isWhole(text)) << text << " at " << width;
    EXPECT_TRUE(texts_.scaleBar);
  }
}

TEST_F(ViewTextsTest, InTheSmallestViewSliceAndWindowAreWholeAndScaleBarAndZoomGo) {
  layOut(pictureOfSize(120, 120));
  for (const char* text : {"Slice 12 / 24", "WL 480 WW 960", "R", "L", "A", "P"}) EXPECT_TRUE(isWhole(text)) << text;
  for (const char* text : {"Zoom 150%", "H 12.5 mm", "5 cm"}) EXPECT_FALSE(line(text)) << text;
  EXPECT_FALSE(texts_.scaleBar);
}

TEST_F(ViewTextsTest, TheNumbersOfTheWindowStandAboveTheLowerLetterWhereTheyHaveNoRoomBesideIt) {
  ViewPicture picture = pictureOfSize(260, 260);
  layOut(picture);
  ASSERT_TRUE(line("WL 480 WW 960"));
  EXPECT_GT(boxOfLine(*line("WL 480 WW 960")).bottom(), 250) << "beside it";
  const WindowLine wide{"WL 12345.5 WW 23456.5", true};
  layOut(picture, wide);
  EXPECT_TRUE(isWhole(wide.text));
  EXPECT_TRUE(isWhole("Slice 12 / 24"));
  EXPECT_LT(boxOfLine(*line(wide.text)).bottom(), boxOfLine(*line("P")).top() + 3);
  EXPECT_FALSE(texts_.scaleBar) << "its place is taken";
}

TEST_F(ViewTextsTest, NamesAreCutOnlyWhereOthersStandAndNeverToAnEllipsis) {
  const std::string longName = "Description of the study in very many words that no view has room for";
  const QString name = QString::fromStdString(longName);
  ViewPicture picture = pictureOfSize(260, 260);
  picture.corners.topLeft = {longName, longName, longName};
  picture.corners.topRight = {"MR", "MR", longName};
  picture.annotations = {levelIn(picture)};
  layOut(picture);
  ASSERT_EQ(
      std::count_if(texts_.lines.begin(), texts_.lines.end(), [&](const ViewText& each) { return each.text == name; }),
      4);
  std::vector<double> lengths;
  for (const ViewText& each : texts_.lines) {
    if (each.text == name) lengths.push_back(each.style.longest);
  }
  EXPECT_GT(lengths[0], 260 / 2.0 - 30) << "beside the upper letter";
  EXPECT_GT(lengths[1], 260 - 60) << "all that the other side leaves";
  // At 20 points the name is about 65 wide.
  EXPECT_LT(lengths[2], (260 - 65) / 2.0 - 5) << "beside the slice's level";
  EXPECT_GT(lengths[2], (260 - 84) / 2.0 - 10);
  layOut([&] {
    ViewPicture narrow = pictureOfSize(120, 260);
    narrow.corners.topLeft = narrow.corners.topRight = {longName, longName, longName};
    return narrow;
  }());
  for (const ViewText& each : texts_.lines) {
    if (each.text == name) {
      EXPECT_GE(each.style.longest, 40);
    }
  }
}

TEST_F(ViewTextsTest, ATableOfTheFileHasANameThatMayBeCut) {
  const WindowLine table{"A table with an explanation of many words", false};
  layOut(pictureOfSize(260, 260), table);
  ASSERT_TRUE(line(table.text));
  EXPECT_GT(line(table.text)->style.longest, 80);
  EXPECT_TRUE(isWhole("Slice 12 / 24"));
  EXPECT_TRUE(isWhole("H 12.5 mm"));
}

TEST_F(ViewTextsTest, ALowViewHasNoScaleBar) {
  layOut(pictureOfSize(400, 199));
  EXPECT_FALSE(texts_.scaleBar) << "it would lie over the labels in the middle";
  EXPECT_FALSE(line("5 cm"));
  layOut(pictureOfSize(400, 200));
  EXPECT_TRUE(texts_.scaleBar);
}

TEST_F(ViewTextsTest, WhereWarningsLeaveLittleRoomTheNumbersStayAndNothingLiesOverAnything) {
  for (double height = 60; height < 200; height += 7) {
    const ViewPicture picture = pictureOfSize(150, height);
    layOut(picture);
    if (height >= 88) {
      EXPECT_TRUE(isWhole("Slice 12 / 24")) << height;
    }
  }
}

}  // namespace
}  // namespace workstation::test
