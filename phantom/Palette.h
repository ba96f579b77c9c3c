#pragma once

namespace phantom {

/// A material's signal in both contrasts: T2-weighted MR in arbitrary units, CT in Hounsfield units.
struct Material {
  float t2;
  float hounsfield;

  constexpr float signal(bool ct) const { return ct ? hounsfield : t2; }
};

namespace material {
inline constexpr Material air{8, -1000};
inline constexpr Material skin{300, 20};
inline constexpr Material fat{720, -95};
inline constexpr Material muscle{190, 55};
inline constexpr Material softTissue{330, 40};
inline constexpr Material marrow{420, 200};
inline constexpr Material cortical{45, 850};
inline constexpr Material nucleus{820, 70};
inline constexpr Material annulus{130, 100};
inline constexpr Material ligament{70, 60};
inline constexpr Material fluid{980, 8};
inline constexpr Material cord{400, 42};
inline constexpr Material nerve{360, 40};
inline constexpr Material brain{430, 38};
inline constexpr Material vessel{35, 48};
inline constexpr Material lung{30, -830};
inline constexpr Material bowel{460, 25};
inline constexpr Material liver{230, 60};
inline constexpr Material kidney{560, 35};
}  // namespace material

constexpr float mix(float a, float b, double t) { return a + static_cast<float>(t) * (b - a); }

}  // namespace phantom
