// The sdpline program, which decodes, checks, compares and writes SDP bodies, for people and
// scripts.
#include <iostream>
#include <new>

#include "commands/commands.hpp"
#include "input/source.hpp"

namespace {

// "sdpline 1.0.0", and which inputs other than texts this build reads.
std::string version() {
    const std::string packed = cli::unpackable();
    return "sdpline " SDPLINE_VERSION "\ncaptures: pcap, pcapng\ncompressed inputs: " +
           (packed.empty() ? "none (built without zlib and libzstd)" : packed);
}

constexpr cli::Program kProgram = {
    "sdpline", "Reads the SDP bodies of SIP messages.", "",
    "Each subcommand has --help with examples. Colour is used only on terminals, and not\n"
    "when NO_COLOR is set. Exit status: 0 when nothing is wrong, 1 when something is\n"
    "refused or differs, 2 when something cannot be used."};

int run(int argc, char **argv) {
    int status = cli::kFine;
    const auto addCommands = [&status](CLI::App &app) {
        for (const auto &add : cli::kCommands) {
            add(app, status);
        }
    };
    const std::string versions = version();
    cli::Program program = kProgram;
    program.version = versions.c_str();
    cli::readCommandLine(program, argc, argv, addCommands, status);
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "sdpline: cannot write the output\n";
        return cli::kUnusable;
    }
    return status;
}

} // namespace

int main(int argc, char **argv) {
    std::ios::sync_with_stdio(false);
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc &) {
        std::cerr << "sdpline: not enough memory\n";
    } catch (const std::exception &error) {
        std::cerr << "sdpline: " << error.what() << '\n';
    }
    return cli::kUnusable;
}
