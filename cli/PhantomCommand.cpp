#include <iostream>

#include "cli/Commands.h"
#include "cli/Console.h"
#include "phantom/Phantom.h"

namespace cli {

int runPhantom(const PhantomArguments& arguments) {
  phantom::PhantomOptions options;
  options.region = arguments.region;
  options.seed = arguments.seed;
  options.extraVertebra = arguments.extraVertebra;
  options.angledAxials = arguments.angledAxials;
  options.ct = arguments.ct;
  options.imageSize = arguments.imageSize;
  options.outDir = arguments.outDir;
  phantom::PhantomResult result;
  {
    ProgressLine progress("Writing the phantom");
    options.progress = [&](int done, int total) {
      return progress.show(static_cast<std::size_t>(done), static_cast<std::size_t>(total));
    };
    result = phantom::writePhantom(options);
  }
  if (result.cancelled) {
    printMessage("Interrupted; nothing was left in " + arguments.outDir + ".");
    return ExitNotAllowed;
  }
  if (!result.written) {
    printMessage(result.problem);
    return ExitNotAllowed;
  }
  std::cout << "Wrote a " << regionName(arguments.region) << " spine to " << arguments.outDir << ": " << result.images
            << " images, and what is true of them in " << result.truth.string() << ".\n";
  return ExitDone;
}

}  // namespace cli
