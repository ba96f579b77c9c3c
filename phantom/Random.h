#pragma once

#include <cstdint>

namespace phantom {

/// Scatters the bits of `value` (the finaliser of splitmix64): neighbouring values give unrelated results.
constexpr std::uint64_t scatter(std::uint64_t value) {
  value += 0x9e3779b97f4a7c15ULL;
  value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9ULL;
  value = (value ^ (value >> 27)) * 0x94d049bb133111ebULL;
  return value ^ (value >> 31);
}

/// A repeatable source of numbers: a seed gives the same sequence with every compiler and library, which the standard
/// library's distributions do not promise.
class Random {
 public:
  explicit constexpr Random(std::uint64_t seed) : state_(scatter(seed)) {}

  constexpr std::uint64_t next() {
    state_ += 0x9e3779b97f4a7c15ULL;
    return scatter(state_);
  }
  /// From `low` up to, not including, `high`.
  constexpr double uniform(double low, double high) {
    return low + (high - low) * static_cast<double>(next() >> 11) * 0x1.0p-53;
  }

 private:
  std::uint64_t state_;
};

/// A number with mean 0, variance 1 and nearly normal distribution that belongs to `key`: the sum of the four 16-bit
/// parts of the scattered key.
constexpr float noiseOf(std::uint64_t key) {
  const std::uint64_t bits = scatter(key);
  const auto sum =
      static_cast<float>((bits & 0xffff) + ((bits >> 16) & 0xffff) + ((bits >> 32) & 0xffff) + (bits >> 48));
  return (sum / 65535.0F - 2.0F) * 1.7320508F;
}

}  // namespace phantom
