#pragma once
// How much an archive may hold. The labelling of a whole spine has 25 levels: some 200 values in 4 KB, 40 KB as XML.
// The bounds leave a wide margin above that and keep the memory for reading any archive, however it was made, below
// 10 MB. What is written keeps the same bounds, so what can be written can be read; and what was read within them can
// be written again: a value takes at most 5 objects and 64 bytes of a binary property list, a text twice its length.

#include <cstddef>
#include <cstdint>

namespace workstation::archive_bounds {

/// Bytes of an archive, in either form.
constexpr std::size_t bytes = 1 << 20;
/// Objects of a property list (elements, in XML), and entries of its `$objects`.
constexpr std::uint32_t objects = 65536;
/// Values that one archive stands for, dictionary keys included. An object that is referred to more than once counts
/// each time, because it becomes a value of its own each time.
constexpr std::size_t values = 10000;
/// Values inside values; the root is at level 1. Reading and writing call themselves once a level and no deeper.
constexpr std::size_t depth = 64;
/// Elements inside elements of a property list in XML.
constexpr std::size_t elementDepth = 64;
/// Bytes of one text, in UTF-8.
constexpr std::size_t textBytes = 16384;
/// Bytes of all texts together, counted like the values.
constexpr std::size_t totalTextBytes = 131072;
/// Entries of a dictionary of the property list itself. (An archived dictionary is two arrays there.)
constexpr std::uint32_t objectKeys = 64;

}  // namespace workstation::archive_bounds
