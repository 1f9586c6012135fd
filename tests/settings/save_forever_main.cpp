// SPDX-License-Identifier: MIT
//
// Saves one configuration after the other into the folder named on the command line until
// it is killed, one byte on its output for each that is saved. Each is recognisable
// by its interface name, the number of its save.
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "settings/configuration_store.hpp"

int main(int argc, char** argv) {
  if (argc != 3) {
    return 2;
  }
  const vantora::ConfigurationStore store{std::filesystem::path(argv[1])};
  for (long number = std::strtol(argv[2], nullptr, 10);; ++number) {
    vantora::AppConfiguration configuration;
    configuration.networkInterface = std::to_string(number);
    if (store.save(configuration) || ::write(STDOUT_FILENO, ".", 1) != 1) {
      return 1;
    }
  }
}
