#include "cli/Commands.h"

int main(int argc, char** argv) { return cli::run(argc, argv); }
