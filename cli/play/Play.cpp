#include "cli/play/Play.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <iostream>
#include <system_error>

#include "cli/Console.h"
#include "cli/play/Player.h"
#include "cli/play/ScriptReader.h"
#include "workstation/database/AtomicFile.h"

namespace cli {

namespace {

/// A step takes some hundred bytes. What is longer is another file, or a device that never ends.
constexpr std::size_t longestScript = std::size_t{64} << 20;

Failure unreadable(const std::string& file, int error) {
  const std::string begin = "The script " + file + " cannot be read";
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return {ExitUnreadable, begin + ": check that there is such a file."};
    case EISDIR:
      return {ExitUnreadable, begin + ": it is a folder; give the file that holds the script."};
    case EACCES:
    case EPERM:
      return {ExitUnreadable, begin + ": you have no permission to; ask its owner for it."};
    default:
      return {ExitUnreadable, begin + " (" + std::generic_category().message(error) +
                                  "): check the disk or the medium it is on and try again."};
  }
}

Expected<std::string> textOfFile(const std::string& file) {
  const workstation::Descriptor in(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!in.isOpen()) return unreadable(file, errno);
  std::string text;
  std::array<char, 1 << 16> block{};
  while (true) {
    const ssize_t count = ::read(in.number(), block.data(), block.size());
    if (count == 0) return text;
    if (count > 0) {
      text.append(block.data(), static_cast<std::size_t>(count));
      if (text.size() > longestScript) {
        return Failure{ExitUnreadable,
                       "The script " + file + " cannot be read: it is longer than 64 MB, as no script is."};
      }
    } else if (errno != EINTR) {
      return unreadable(file, errno);
    }
  }
}

std::optional<Failure> playSteps(const Script& script, Player& player) {
  for (std::size_t index = 0; index < script.steps.size(); ++index) {
    auto failure = interrupted() ? Failure{ExitNotAllowed, "Interrupted before it."} : player.run(script.steps[index]);
    if (failure) return Failure{failure->status, stepTitle(script, index) + ": " + failure->sentence};
  }
  return std::nullopt;
}

}  // namespace

int play(const PlayArguments& arguments) {
  const auto text = textOfFile(arguments.script);
  if (!text) return fail(text.failure);
  const auto script = readScript(*text);
  if (!script) return fail(script.failure);
  const auto& database = arguments.database.empty() ? script->database.value_or("") : arguments.database;
  auto player = Player::start(*script, database, std::cout);
  if (!player) return fail(player.failure);
  // A script that stops in the middle ends like a program that is killed: nothing more happens to the studies.
  if (const auto failure = playSteps(*script, **player)) return fail(*failure);
  const auto lost = (*player)->quit();
  return lost ? fail(*lost) : ExitDone;
}

}  // namespace cli
