#include "cli/play/Play.h"

#include <fstream>
#include <iostream>
#include <iterator>

#include "cli/Console.h"
#include "cli/play/Player.h"
#include "cli/play/ScriptReader.h"

namespace cli {

namespace {

Expected<std::string> textOfFile(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (!in) return Failure{ExitUnreadable, "The script " + file + " cannot be read: check that there is such a file."};
  return text;
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
