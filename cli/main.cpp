#include <cstdio>

#include "cli/Version.h"

int main() {
  std::printf("textwizard %s\n", cli::Version());
  return 0;
}
