// Entry point of the `bsn` command-line host; everything else lives in the
// bsncli library so that tests can drive it in-process.
#include <iostream>

#include "cli/host.h"

int main(int argc, char** argv) { return bsncli::Main(argc, argv, std::cout, std::cerr); }
