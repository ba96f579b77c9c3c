#pragma once

#include <string>

namespace cli {

/// What `vertana play` is given.
struct PlayArguments {
  std::string script;    ///< file with one JSON object, see Script.h
  std::string database;  ///< database folder, instead of the script's; empty: none given
};

/// Plays a session script: checks the whole of it, then runs its steps, and prints the dumps on standard output, one
/// line each, as they come. The exit status: see ExitStatus; a script that is wrong is wrong usage.
int play(const PlayArguments& arguments);

}  // namespace cli
