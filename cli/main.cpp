// The sdpline program: SDP bodies decoded, checked, compared and written, for people and scripts.
#include <iostream>

#include "commands/commands.hpp"

namespace {

constexpr cli::Program kProgram = {
    "sdpline", "Reads the SDP bodies of SIP messages.", "sdpline " SDPLINE_VERSION,
    "Each subcommand has --help and examples. Colour is used on terminals only, and not\n"
    "when NO_COLOR is set."};

} // namespace

int main(int argc, char **argv) {
    std::ios::sync_with_stdio(false);
    cli::Outcome outcome;
    const auto addCommands = [&outcome](CLI::App &app) {
        cli::addDecode(app, outcome);
        cli::addFormat(app, outcome);
        cli::addEncode(app, outcome);
        cli::addCheck(app, outcome);
        cli::addDiff(app, outcome);
        cli::addExplain(app, outcome);
        cli::addProfiles(app, outcome);
    };
    if (int status = 0; !cli::readCommandLine(kProgram, argc, argv, addCommands, status)) {
        return status;
    }
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "sdpline: cannot write the output\n";
        return outcome.trouble;
    }
    return outcome.status;
}
