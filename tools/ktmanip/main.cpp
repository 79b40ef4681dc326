// The command-line tool ktmanip.

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <cstdio>
#include <exception>

#include "Commands.h"

int main(int argc, char** argv) {
  try {
    CLI::App app{"Imports, inspects, evaluates and simulates mechanisms of rigid links."};
    app.set_version_flag("--version", KTMANIP_VERSION);
    app.require_subcommand(0, 1);  // none is reported below, after a misspelt one
    int status = 0;
    addImport(app, status);
    addInspect(app, status);
    addEvaluate(app, status);
    addSimulate(app, status);
    try {
      app.parse(argc, argv);
      if (app.get_subcommands().empty()) throw CLI::RequiredError("A subcommand");
    } catch (const CLI::ParseError& e) {
      return app.exit(e);
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
      std::fputs("ktmanip: standard output can't be written\n", stderr);
      return 1;
    }
    return status;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "ktmanip: %s\n", e.what());
    return 1;
  }
}
