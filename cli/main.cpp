// The sdpline program: bodies decoded for people, and written back.
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>

#include <CLI/CLI.hpp>

#include "input.hpp"
#include "sdpline/sdpline.h"
#include "tree.hpp"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;

struct ReleaseBody {
    void operator()(SdpLine *line) const { SdpLibReleaseSdp(&line); }
};
using Body = std::unique_ptr<SdpLine, ReleaseBody>;

struct ReleaseText {
    void operator()(SipStringBuffer *text) const { SipSbReleaseStringBuffer(text); }
};
using Text = std::unique_ptr<SipStringBuffer, ReleaseText>;

struct ReleaseRef {
    void operator()(SipRefString *text) const { SipSmReleaseRefString(text); }
};
using RefText = std::unique_ptr<SipRefString, ReleaseRef>;

// "offer.sdp:4:14: the fourth octet is above 255 (0x05035065)"
void reportRefusal(const std::string &name, SDPResult result) {
    SDPFailure failure = {};
    SDPResultText text = {};
    SdpLibGetLastFailure(&failure);
    SdpLibDescribeResult(result, &text);
    std::cerr << name;
    if (failure.ulResult == result && failure.ulLine != 0) {
        std::cerr << ':' << failure.ulLine << ':' << failure.ulColumn;
    }
    std::cerr << ": " << text.pcSentence << " (" << text.pcSource << ' ' << text.pcFunction
              << ", 0x" << std::hex << std::setw(8) << std::setfill('0') << result << std::dec
              << ")\n";
}

// Null when the file cannot be read or its body is refused; standard error says why.
Body decodeFile(const std::string &path) {
    const std::string name = path == "-" ? "standard input" : path;
    std::string error;
    const auto input = cli::readInput(path, error);
    auto sdp = input ? cli::extractSdp(*input, error) : std::nullopt;
    if (!sdp) {
        std::cerr << "sdpline: " << name << ": " << error << '\n';
        return nullptr;
    }
    const SipString text = {static_cast<uint32_t>(sdp->size()), sdp->data()};
    SdpLine *line = nullptr;
    if (const SDPResult result = SdpLibDecodeSdp(&text, &line)) {
        reportRefusal(name, result);
    }
    return Body(line);
}

int decode(const std::string &path) {
    const Body body = decodeFile(path);
    if (!body) {
        return kFailure;
    }
    std::cout << cli::describeTree(*body);
    return kSuccess;
}

int format(const std::string &path) {
    const Body body = decodeFile(path);
    if (!body) {
        return kFailure;
    }
    SipStringBuffer *buffer = nullptr;
    SipRefString *reference = nullptr;
    const SDPResult result = SdpLibEncodeSdp(body.get(), &buffer);
    const Text text(buffer);
    if (result != 0 || SipSbConvertToRefString(buffer, &reference) != 0) {
        std::cerr << "sdpline: the body cannot be written\n";
        return kFailure;
    }
    const RefText written(reference);
    std::cout.write(SipSmGetDataFromRefString(reference), SipSmGetLenFromRefString(reference));
    return kSuccess;
}

} // namespace

int main(int argc, char **argv) {
    CLI::App app("Reads the SDP bodies of SIP messages.", "sdpline");
    app.require_subcommand(1);
    app.set_version_flag("--version", SDPLINE_VERSION);

    std::string path = "-";
    int status = kSuccess;
    const auto addFile = [&path](CLI::App *command) {
        command
            ->add_option("FILE", path, "SDP, or a SIP message that carries it; - is standard input")
            ->capture_default_str();
        return command;
    };
    addFile(app.add_subcommand("decode", "Print the decoded body as a tree."))->callback([&] {
        status = decode(path);
    });
    addFile(app.add_subcommand("format", "Decode the body and write it back."))->callback([&] {
        status = format(path);
    });

    CLI11_PARSE(app, argc, argv);
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "sdpline: cannot write the output\n";
        return kFailure;
    }
    return status;
}
