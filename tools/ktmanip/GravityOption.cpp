#include <CLI/CLI.hpp>

#include "Commands.h"
#include "Numbers.h"

void addGravityOption(CLI::App& command, std::vector<double>& gravity) {
  command
      .add_option("--gravity", gravity,
                  "acceleration upwards, as in files: 0 0 9.81 pulls along -z (default: the "
                  "file's)")
      ->expected(3)
      ->allow_extra_args(false)  // else it swallows the file
      ->check([](const std::string& text) {
        std::vector<double> value;
        std::string wrong;
        return readNumbers(text, " ", value, wrong) ? "" : '"' + text + "\" is not a number";
      });
}
