// Arrays of the host: bounds, insertion, removal by equality, nil.

#include "host/List.h"

#include <gtest/gtest.h>

#include "host/MyPoint.h"
#include "host/ROI.h"

namespace pelmar {
namespace {

MyPoint at(double x) { return MyPoint::point({x, 0}); }

std::vector<MyPoint> points(const std::vector<double>& xs) {
  std::vector<MyPoint> result;
  for (const double x : xs) result.push_back(at(x));
  return result;
}

TEST(NilList, isEmptyAndTakesNothing) {
  const Ref<MutableList<MyPoint>> list;
  list->addObject(at(1));
  list->insertObject(at(1), 0);
  EXPECT_EQ(list->count(), 0U);
  EXPECT_EQ(list->objectAtIndex(0), MyPoint());
  EXPECT_FALSE(list->containsObject(MyPoint()));
}

TEST(VectorList, answersTheDefaultOutsideItsBounds) {
  const VectorList<MyPoint> list(points({1, 2}));
  EXPECT_EQ(list.objectAtIndex(1), at(2));
  EXPECT_EQ(list.objectAtIndex(2), MyPoint());
  EXPECT_EQ(list.objectAtIndex(static_cast<std::size_t>(-1)), MyPoint());
}

TEST(VectorList, insertsBeforeAppendsAtTheEndAndIgnoresWhatLiesBeyond) {
  VectorList<MyPoint> list(points({2}));
  list.insertObject(at(1), 0);
  list.insertObject(at(3), 2);
  list.insertObject(at(9), 4);
  EXPECT_EQ(list.elements(), (std::vector<MyPoint>{at(1), at(2), at(3)}));
}

TEST(VectorList, removesEveryEqualElement) {
  VectorList<MyPoint> list(points({1, 2, 1}));
  list.removeObject(at(1));
  EXPECT_EQ(list.elements(), std::vector<MyPoint>{at(2)});
  list.removeAllObjects();
  EXPECT_EQ(list.count(), 0U);
}

TEST(VectorList, findsHandlesByIdentity) {
  const auto roi = makeRef<ROI>();
  VectorList<Ref<ROI>> list;
  list.addObject(roi);
  EXPECT_TRUE(list.containsObject(roi));
  EXPECT_FALSE(list.containsObject(makeRef<ROI>()));
  EXPECT_FALSE(list.objectAtIndex(1)) << "outside: nil";
}

TEST(SharedList, showsChangesToEveryoneWhoHoldsIt) {
  const auto list = makeRef<VectorList<MyPoint>>();
  const Ref<MutableList<MyPoint>> writer = list;
  const Ref<List<MyPoint>> reader = list;
  writer->addObject(at(5));
  EXPECT_EQ(reader->count(), 1U);
  EXPECT_EQ(reader->objectAtIndex(0), at(5));
}

}  // namespace
}  // namespace pelmar
