#include "workstation/database/ImportLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace workstation {
namespace {

/// A person who cancels does not notice this.
constexpr std::chrono::milliseconds betweenAttempts{50};

}  // namespace

Result<Descriptor> lockForImport(const std::filesystem::path& folder, const std::function<bool()>& goesOn) {
  const std::filesystem::path name = folder / "import.lock";
  Descriptor file(::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  if (!file.isOpen()) {
    return Result<Descriptor>::refused("The file " + name.string() +
                                       " cannot be opened: " + std::generic_category().message(errno) +
                                       "; make the database folder writable, or name another one.");
  }
  while (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) break;
    if (!goesOn()) return Result<Descriptor>::of(Descriptor(-1));
    std::this_thread::sleep_for(betweenAttempts);
  }
  return Result<Descriptor>::of(std::move(file));
}

}  // namespace workstation
