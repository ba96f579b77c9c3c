#pragma once

namespace guibench {

/// From each event of drags of the curve's vertices to the painted window, on a labelled study in four viewers. Prints
/// the times beside their limits and answers whether they are kept.
bool measureDrags();

/// Through a series of 512 x 512 of 16 bits by the wheel, from disk and then from the cache. Prints how many images a
/// second are painted beside the limit and answers whether it is kept.
bool measureScrolling();

}  // namespace guibench
