#include "workstation/dicom/Uid.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>

namespace workstation {
namespace {

/// Spreads every bit of the input over the whole word (a bijection: xor-shifts and odd multipliers).
std::uint64_t mix(std::uint64_t word) {
  word ^= word >> 30;
  word *= 0xbf58476d1ce4e5b9ULL;
  word ^= word >> 27;
  word *= 0x94d049bb133111ebULL;
  return word ^ (word >> 31);
}

struct Hash128 {
  std::uint64_t high = 0x243f6a8885a308d3ULL;  // the first digits of pi
  std::uint64_t low = 0x13198a2e03707344ULL;
};

/// Two lanes that feed each other byte by byte; a change of any byte reaches both.
Hash128 hashOf(std::string_view text) {
  Hash128 hash;
  for (const char character : text) {
    const std::uint64_t byte = static_cast<unsigned char>(character);
    hash.high = mix(hash.high ^ (byte + 0x9e3779b97f4a7c15ULL) ^ hash.low);
    hash.low = mix(hash.low + (byte << 32) + hash.high);
  }
  hash.high = mix(hash.high ^ text.size());
  hash.low = mix(hash.low + hash.high);
  return hash;
}

std::string decimal(Hash128 value) {
  std::array<std::uint64_t, 4> limbs = {value.high >> 32, value.high & 0xffffffffU, value.low >> 32,
                                        value.low & 0xffffffffU};
  std::string digits;
  while (std::any_of(limbs.begin(), limbs.end(), [](std::uint64_t limb) { return limb != 0; })) {
    std::uint64_t remainder = 0;
    for (std::uint64_t& limb : limbs) {
      const std::uint64_t dividend = (remainder << 32) | limb;
      limb = dividend / 10;
      remainder = dividend % 10;
    }
    digits.push_back(static_cast<char>('0' + remainder));
  }
  std::reverse(digits.begin(), digits.end());
  return digits;
}

}  // namespace

std::string makeUid(std::string_view seed) {
  Hash128 uuid = hashOf(seed);
  uuid.high = (uuid.high & ~0xf000ULL) | 0x8000ULL;                       // version 8: own hash
  uuid.low = (uuid.low & 0x3fffffffffffffffULL) | 0x8000000000000000ULL;  // the standard's variant
  return "2.25." + decimal(uuid);
}

std::string freshUid() {
  std::random_device chance;
  std::string seed = "fresh";
  for (int word = 0; word < 8; ++word) seed += " " + std::to_string(chance());
  return makeUid(seed);
}

}  // namespace workstation
