#pragma once

#include <filesystem>
#include <string>

namespace workstation {

/// What the first bytes of a file say.
enum class FileSignature {
  dicom,       ///< a DICOM file: "DICM" after a preamble of 128 bytes (PS3.10 7.1)
  headerless,  ///< begins like a DICOM data set, without preamble or without file meta information
  empty,       ///< no bytes at all
  cutShort,    ///< nothing but the beginning of an empty preamble
  other,       ///< anything else
  unopenable,  ///< could not be opened or read
};

/// Looks at the beginning of a file; `problem` is set to a phrase for `unopenable`.
FileSignature signatureOf(const std::filesystem::path& file, std::string& problem);

}  // namespace workstation
