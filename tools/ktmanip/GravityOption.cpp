#include <CLI/CLI.hpp>

#include "Commands.h"
#include "Numbers.h"

void addGravityOption(CLI::App& command, std::vector<double>& gravity) {
  command
      .add_option("--gravity", gravity,
                  "upward gravity vector, m/s^2, as in files: 0 0 9.81 pulls along -z (default: "
                  "that of the file)")
      ->expected(3)
      ->allow_extra_args(false)  // otherwise it takes the file name, too
      ->check([](const std::string& text) {
        std::vector<double> value;
        std::string wrong;
        return readNumbers(text, " ", value, wrong) ? "" : '"' + text + "\" is not a number";
      });
}
