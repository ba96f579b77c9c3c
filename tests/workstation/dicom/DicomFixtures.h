#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"
#include "workstation/dicom/ImageWriter.h"
#include "workstation/dicom/StudyReader.h"

class DcmDataset;

namespace workstation::test {

using testsupport::TemporaryFolder;

/// A sagittal MR slice of 8 columns and 6 rows, 0.5 mm between columns and 0.75 mm between rows; the sample of column c
/// and row r is 100 r + c.
ImageToWrite sagittalImage(int instanceNumber = 1);
/// An axial CT slice of the same size; samples 100 r + c - 200.
ImageToWrite axialImage(int instanceNumber = 1);

/// Writes the image; the test fails when that does not work.
void write(const ImageToWrite& image, const std::filesystem::path& file);
/// Changes a file's data set; `syntax` is a transfer syntax UID to store it in, empty for the one it has.
void edit(const std::filesystem::path& file, const std::function<void(DcmDataset&)>& change,
          const std::string& syntax = "");

std::vector<std::uint8_t> bytesOf(const std::filesystem::path& file);
void writeBytes(const std::filesystem::path& file, const std::vector<std::uint8_t>& bytes);
void writeText(const std::filesystem::path& file, const std::string& text);
/// Cuts the file to that many bytes.
void truncate(const std::filesystem::path& file, std::uintmax_t length);

/// The reason for which a file is unreadable, or an empty string when it is not.
std::string reasonFor(const std::filesystem::path& file, const ReadResult& result);
/// The only record that a file yields; the test fails when there is not exactly one.
ImageRecord onlyImage(const std::filesystem::path& file);

}  // namespace workstation::test
