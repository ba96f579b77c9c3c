#pragma once

#include <string>
#include <string_view>

namespace workstation {

/// A DICOM unique identifier made from a name: "2.25." and the decimal value of a 128-bit UUID (PS3.5 B.2) that is a
/// hash of the seed. The same seed always gives the same identifier, on every machine; different seeds give different
/// ones with the certainty that 122 hashed bits give. At most 44 characters. Not for anything that must be unguessable.
std::string makeUid(std::string_view seed);

/// A DICOM unique identifier of the same form that nothing else has: its seed is 256 random bits.
std::string freshUid();

}  // namespace workstation
