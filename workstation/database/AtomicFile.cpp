#include "workstation/database/AtomicFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace workstation {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view temporaryPrefix = ".vertana-";
constexpr std::string_view temporarySuffix = ".tmp";

/// How old a leftover must be: nobody writes one file, or imports one study, for a day.
constexpr std::chrono::hours youngestLeftover{24};

std::string temporaryName() {
  std::random_device chance;
  std::array<char, 40> name{};
  std::snprintf(name.data(), name.size(), ".vertana-%08x%08x.tmp", static_cast<unsigned>(chance()),
                static_cast<unsigned>(chance()));
  return name.data();
}

std::string reasonOf(int error) { return std::generic_category().message(error); }

/// What the person can do about it.
std::string adviceFor(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
      return "make room there and try again";
    case EROFS:
    case EACCES:
    case EPERM:
      return "make the folder writable, or copy it to a place where you may write";
    case ENOENT:
    case ENOTDIR:
      return "check that the folder is still there";
    default:
      return "check the disk and try again";
  }
}

}  // namespace

DiskCalls::DiskCalls()
    : write(&::write), sync(&::fsync), rename([](const char* from, const char* to) { return std::rename(from, to); }) {}

Descriptor::~Descriptor() {
  if (isOpen()) ::close(number_);
}

TemporaryFile::TemporaryFile(fs::path target, const DiskCalls& disk) : target_(std::move(target)), disk_(&disk) {}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : target_(std::move(other.target_)), temporary_(std::exchange(other.temporary_, {})), disk_(other.disk_) {}

TemporaryFile::~TemporaryFile() { discard(); }

void TemporaryFile::discard() {
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
  temporary_.clear();
}

Outcome TemporaryFile::refuse(int error) {
  discard();
  return Outcome::refused("The file " + target_.string() + " cannot be written: " + reasonOf(error) + "; " +
                          adviceFor(error) + ".");
}

Result<Descriptor> TemporaryFile::create() {
  discard();
  temporary_ = target_.parent_path() / temporaryName();
  Descriptor file(::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
  if (file.isOpen()) return Result<Descriptor>::of(std::move(file));
  const int error = errno;
  temporary_.clear();
  return Result<Descriptor>::refused(*refuse(error).problem);
}

Outcome TemporaryFile::append(const Descriptor& file, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = disk_->write(file.number(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return refuse(written < 0 ? errno : ENOSPC);
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return Outcome::done();
}

Outcome TemporaryFile::write(std::span<const std::uint8_t> bytes) {
  const Result<Descriptor> file = create();
  return file ? append(*file, bytes) : Outcome::refused(file.problem);
}

Outcome TemporaryFile::copyFrom(const fs::path& source) {
  const Result<Descriptor> file = create();
  if (!file) return Outcome::refused(file.problem);
  const Descriptor from(::open(source.c_str(), O_RDONLY | O_CLOEXEC));
  std::vector<std::uint8_t> block(1 << 18);
  while (from.isOpen()) {
    const ssize_t count = ::read(from.number(), block.data(), block.size());
    if (count == 0) return Outcome::done();
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) break;
    if (Outcome step = append(*file, {block.data(), static_cast<std::size_t>(count)}); !step) return step;
  }
  const int error = errno;
  discard();
  return Outcome::refused("The file " + source.string() + " cannot be read: " + reasonOf(error) +
                          "; check the disk or the medium it is on and try again.");
}

Outcome TemporaryFile::sync() {
  const Descriptor file(::open(temporary_.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.isOpen() || disk_->sync(file.number()) != 0) return refuse(errno);
  return Outcome::done();
}

Outcome TemporaryFile::publish() {
  if (disk_->rename(temporary_.c_str(), target_.c_str()) != 0) return refuse(errno);
  temporary_.clear();
  return Outcome::done();
}

Outcome syncFolder(const fs::path& folder, const DiskCalls& disk) {
  const Descriptor file(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (file.isOpen() && disk.sync(file.number()) == 0) return Outcome::done();
  const int error = errno;
  if (error == EINVAL || error == ENOTSUP) return Outcome::done();
  return Outcome::refused("The folder " + folder.string() +
                          " cannot be brought to the disk safely: " + reasonOf(error) + "; " + adviceFor(error) + ".");
}

Outcome writeAtomically(const fs::path& target, std::span<const std::uint8_t> bytes, const DiskCalls& disk) {
  TemporaryFile file(target, disk);
  if (Outcome step = file.write(bytes); !step) return step;
  if (Outcome step = file.sync(); !step) return step;
  if (Outcome step = file.publish(); !step) return step;
  Outcome last = syncFolder(target.parent_path(), disk);
  if (!last) ::unlink(target.c_str());
  return last;
}

bool isTemporaryName(std::string_view name) {
  return name.size() > temporaryPrefix.size() + temporarySuffix.size() && name.starts_with(temporaryPrefix) &&
         name.ends_with(temporarySuffix);
}

void removeLeftovers(const fs::path& folder) {
  std::error_code error;
  const auto newest = fs::file_time_type::clock::now() - youngestLeftover;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    if (!isTemporaryName(entry->path().filename().native())) continue;
    std::error_code unknown;
    if (entry->last_write_time(unknown) > newest || unknown) continue;
    ::unlink(entry->path().c_str());
  }
}

}  // namespace workstation
