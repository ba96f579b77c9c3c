#pragma once
// Files that are there whole or not at all, whatever happens while they are written.

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>
#include <utility>

#include "workstation/model/Outcome.h"

namespace workstation {

/// The calls by which a file gets onto the disk; tests replace one of them to see what a failing disk does.
struct DiskCalls {
  ssize_t (*write)(int file, const void* bytes, std::size_t count);
  int (*sync)(int file);
  int (*rename)(const char* from, const char* to);
  DiskCalls();
};

/// An open file, closed with the object.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor();
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  bool isOpen() const { return number_ >= 0; }
  int number() const { return number_; }

 private:
  int number_;
};

/// A file under a temporary name beside the place where it will lie. What is not published is gone with the object;
/// what a crash leaves has a name for which isTemporaryName is true.
class TemporaryFile {
 public:
  /// Nothing is done yet. `disk` must outlive it.
  TemporaryFile(std::filesystem::path target, const DiskCalls& disk);
  ~TemporaryFile();
  TemporaryFile(TemporaryFile&& other) noexcept;
  TemporaryFile& operator=(TemporaryFile&&) = delete;

  /// Makes the file with these bytes. The folder must exist.
  Outcome write(std::span<const std::uint8_t> bytes);
  /// Makes the file with the bytes of another one.
  Outcome copyFrom(const std::filesystem::path& source);
  /// What is written survives a loss of power, but under the temporary name.
  Outcome sync();
  /// Gives the file its name; a file of that name is replaced. The folder is not synchronised yet.
  Outcome publish();

  const std::filesystem::path& target() const { return target_; }

 private:
  Result<Descriptor> create();
  Outcome append(const Descriptor& file, std::span<const std::uint8_t> bytes);
  Outcome refuse(int error);
  void discard();

  std::filesystem::path target_;
  std::filesystem::path temporary_;
  const DiskCalls* disk_;
};

/// Makes the names in a folder survive a loss of power. Folders of file systems that cannot do that are left as they
/// are.
Outcome syncFolder(const std::filesystem::path& folder, const DiskCalls& disk);

/// All steps in a row. When it is refused nothing is left behind: also when the folder, the last step, cannot be
/// synchronised, the file is removed again.
Outcome writeAtomically(const std::filesystem::path& target, std::span<const std::uint8_t> bytes,
                        const DiskCalls& disk);

/// Whether a file of that name is one that was being written when a program died, or is being written now.
bool isTemporaryName(std::string_view name);

/// Removes from a folder the temporary files that are older than a day: nobody is writing those any more.
void removeLeftovers(const std::filesystem::path& folder);

}  // namespace workstation
