// The sdpline program: SDP bodies decoded, checked, compared and written, for people and scripts.
#include <iostream>

#include "commands/commands.hpp"

namespace {

constexpr int kUsage = 2;

} // namespace

int main(int argc, char **argv) {
    std::ios::sync_with_stdio(false);
    CLI::App app("Reads the SDP bodies of SIP messages.", "sdpline");
    app.require_subcommand(1);
    app.set_version_flag("--version", "sdpline " SDPLINE_VERSION);
    app.footer(
        "Each subcommand has --help and examples. Colour is used on terminals only, and not\n"
        "when NO_COLOR is set.");

    cli::Outcome outcome;
    cli::addDecode(app, outcome);
    cli::addFormat(app, outcome);
    cli::addEncode(app, outcome);
    cli::addCheck(app, outcome);
    cli::addDiff(app, outcome);
    cli::addExplain(app, outcome);
    cli::addProfiles(app, outcome);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : kUsage;
    }
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "sdpline: cannot write the output\n";
        return outcome.trouble;
    }
    return outcome.status;
}
