#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

class DcmDataset;
class DcmFileFormat;

namespace workstation {

/// A DICOM file whose structure has been read, its long values (pixels among them) still on disk. Internal to this
/// folder.
class ParsedFile {
 public:
  ParsedFile();
  ~ParsedFile();
  ParsedFile(const ParsedFile&) = delete;
  ParsedFile& operator=(const ParsedFile&) = delete;

  /// Reads the structure. False, with a phrase in `problem`, when the file is damaged or truncated, or nested so deeply
  /// that reading it would not be safe.
  bool parse(const std::filesystem::path& file, std::string& problem);
  /// The same of the elements up to group 0020 only: what the file is and where it belongs.
  bool parseHeader(const std::filesystem::path& file, std::string& problem);
  /// The same as parse of a file's bytes; long values are in memory, too.
  bool parse(const std::vector<std::uint8_t>& bytes, std::string& problem);

  DcmDataset& dataset();
  /// Media Storage SOP Class UID of the file meta information, or an empty string.
  std::string mediaStorageSopClass();

 private:
  template <class Stream>
  bool parseStream(Stream& stream, bool headerOnly, std::string& problem);
  bool parseFile(const std::filesystem::path& file, bool headerOnly, std::string& problem);

  std::unique_ptr<DcmFileFormat> format_;
};

}  // namespace workstation
