// Writes what comes along with the command, into FOLDER/man and FOLDER/bash-completion:
//   vertana_documents FOLDER DATE
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "cli/documents/Completion.h"
#include "cli/documents/ManPage.h"

namespace {

namespace fs = std::filesystem;

/// Answers whether all of it was written.
template <class Writer>
bool write(const fs::path& file, const Writer& writer) {
  fs::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  writer(out);
  out.close();
  if (!out) std::cerr << file.string() << " cannot be written.\n";
  return static_cast<bool>(out);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: vertana_documents FOLDER DATE\n";
    return 2;
  }
  try {
    const fs::path folder = argv[1];
    const auto facts = cli::commandTable();
    const bool page = write(folder / "man" / "man1" / "vertana.1",
                            [&](std::ostream& out) { cli::writeManPage(out, facts, VERTANA_VERSION, argv[2]); });
    const bool completion = write(folder / "bash-completion" / "completions" / "vertana",
                                  [&](std::ostream& out) { cli::writeCompletion(out, facts); });
    return page && completion ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
