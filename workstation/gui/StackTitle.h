#pragma once

#include <string>

#include "workstation/model/Workstation.h"

namespace workstation {

/// A stack in a list: "3: T2 sagittal (15 slices)", with the plane where its series has several. "" where there is
/// none.
std::string stackTitle(const Workstation& workstation, const StackId& id);

/// How many things there are: "1 series", "12 images".
std::string countText(std::size_t count, const std::string& one, const std::string& many);

/// "Doe, Jane", or what stands for a name that is not there.
std::string patientText(const std::string& dicomName);

/// "2024-02-29" for 20240229, anything else as it stands.
std::string dateWithDashes(const std::string& date);

}  // namespace workstation
