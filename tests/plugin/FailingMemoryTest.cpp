// Memory that runs out: whichever allocation it is that fails, no question lets an exception out to the host.

#include <cstdlib>
#include <functional>
#include <new>

#include "tests/plugin/LabellingFixture.h"

namespace {

thread_local long allocationsUntilFailure = 0;  // 0: none fails, or it has failed

void* allocate(std::size_t size) {
  if (allocationsUntilFailure > 0 && --allocationsUntilFailure == 0) throw std::bad_alloc();
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

}  // namespace

// These stand in for the library's in the whole test program.
void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace testhost {
namespace {

using FailingMemory = LabellingFixture;

/// Asks with the first allocation failing, then the second ...; the answer is nil until none fails any more.
void expectNilUntilMemorySuffices(const std::function<pelmar::Value()>& question) {
  const pelmar::Value right = question();
  ASSERT_FALSE(right.isNil());
  long failing = 1;
  for (;; ++failing) {
    ASSERT_LT(failing, 10000);
    pelmar::Value answer;
    bool thrown = false;
    allocationsUntilFailure = failing;
    try {
      answer = question();
    } catch (...) {
      thrown = true;
    }
    const bool failed = allocationsUntilFailure == 0;
    allocationsUntilFailure = 0;
    ASSERT_FALSE(thrown) << "allocation " << failing;
    if (!failed) {
      EXPECT_EQ(answer, right);
      break;
    }
    EXPECT_TRUE(answer.isNil()) << "allocation " << failing;
  }
  EXPECT_GT(failing, 1) << "nothing was ever allocated";
}

TEST_F(FailingMemory, letsQuestionsToThePluginAnswerNil) {
  filter.setStudy(study);
  filter.setAnatomicalRegion(2);
  expectNilUntilMemorySuffices([this] { return filter.stateSnapshot(); });
  expectNilUntilMemorySuffices([this] { return filter.valueForKey("intervertebralPlanesLabels"); });
  expectNilUntilMemorySuffices([this] { return filter.valueForKey("guessedAnatomicalRegion"); });
}

TEST_F(FailingMemory, letsControlsOfThePaletteShowNothing) {
  chooseLabels();
  const auto window = palette();
  ASSERT_TRUE(window->isVisible());
  for (const char* key : {"anatomicalRegion", "drawMode", "displayLabels", "additionalVertebra"}) {
    SCOPED_TRACE(key);
    expectNilUntilMemorySuffices([&] { return window->owner->valueForKey(key); });
  }
}

}  // namespace
}  // namespace testhost
