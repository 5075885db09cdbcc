// The program "korvex".
#include <iostream>

#include "cli/cli.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  return korvex::cli::runCli({argv + 1, argv + argc}, {std::cin, std::cout, std::cerr});
}
