#include "cli/export/ExportFile.h"

#include <cstdint>
#include <span>

#include "workstation/dicom/FileSignature.h"

namespace cli {

namespace fs = std::filesystem;
using workstation::Outcome;

namespace {

Outcome mayReplace(const fs::path& file) {
  std::error_code error;
  const auto status = fs::status(file, error);
  if (!fs::exists(status)) return Outcome::done();
  if (!fs::is_regular_file(status)) {
    return Outcome::refused(file.string() + " is " + (fs::is_directory(status) ? "a folder" : "no ordinary file") +
                            ": give --out the name of a file.");
  }
  std::string problem;
  const auto signature = workstation::signatureOf(file, problem);
  if (signature != workstation::FileSignature::dicom && signature != workstation::FileSignature::headerless) {
    return Outcome::done();
  }
  return Outcome::refused(file.string() + " is a DICOM file, which an export never replaces: give --out another name.");
}

/// The file itself where the name is a link to one.
fs::path withoutLink(const fs::path& file) {
  std::error_code error;
  if (!fs::is_symlink(file, error)) return file;
  const auto target = fs::canonical(file, error);
  return error ? file : target;
}

}  // namespace

Outcome writeExport(const fs::path& file, const std::string& bytes, const workstation::DiskCalls& disk) {
  if (auto allowed = mayReplace(file); !allowed) return allowed;
  const auto target = withoutLink(file);
  workstation::TemporaryFile fresh(target, disk);
  const std::span<const std::uint8_t> contents(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  if (auto step = fresh.write(contents); !step) return step;
  if (auto step = fresh.sync(); !step) return step;
  if (auto step = fresh.publish(); !step) return step;
  return syncFolder(target.parent_path(), disk);
}

}  // namespace cli
