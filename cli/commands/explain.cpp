// sdpline explain: result codes in words.
#include "commands/commands.hpp"

#include <charconv>
#include <iostream>

#include "output/checks.hpp"
#include "output/text.hpp"

namespace cli {

namespace {

constexpr int kUnknown = 1;
constexpr int kNoNumber = 2;

struct Options {
    std::vector<std::string> codes;
    std::string fileBase = "0";
    bool list = false;
};

// "0x0509e065", "0509e065" (it has a letter) or "84533349"
std::optional<uint32_t> numberOf(std::string_view text) {
    const bool prefixed = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(prefixed ? 2 : 0);
    const bool hex = prefixed || text.find_first_of("abcdefABCDEF") != std::string_view::npos;
    uint32_t value = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), value, hex ? 16 : 10);
    const bool whole = error == std::errc{} && end == text.data() + text.size();
    return whole ? std::optional(value) : std::nullopt;
}

std::string_view classText(uint32_t errorClass) {
    switch (errorClass) {
    case SDP_ERRCLASS_RESOURCE: return "an argument, memory, a token too long, input that ended";
    case SDP_ERRCLASS_NOT_SDP: return "no input, or it does not start with \"v=\"";
    case SDP_ERRCLASS_FIELD_SYNTAX: return "a token that the field's grammar does not admit";
    case SDP_ERRCLASS_UNEXPECTED_LINE: return "a line kind that may not stand here";
    case SDP_ERRCLASS_BAD_ADDRESS: return "an IPv6 address, or a field that could not be written";
    default: return "none of the library's";
    }
}

void printParts(uint32_t code) {
    const uint32_t errorClass = code & 0x3FF;
    std::cout << "  parts     file " << (code >> 24) << ", location " << (code >> 10 & 0x3FFF)
              << ", class " << errorClass << " (" << classText(errorClass) << ")\n";
}

// Several checks answer the same bare number.
void printBare(uint32_t code) {
    std::cout << codeText(code) << ": a bare " << code
              << ", which these checks answer; only the log entry tells which one failed\n";
    for (const CheckInfo &check : allChecks()) {
        if (check.kind == CheckInfo::Bare && check.location == code) {
            std::cout << "  " << check.function << ": " << check.sentence << " [" << check.name
                      << "]\n";
        }
    }
}

bool isBare(uint32_t code) {
    for (const CheckInfo &check : allChecks()) {
        if (check.kind == CheckInfo::Bare && check.location == code) {
            return true;
        }
    }
    return false;
}

void printUnknown(uint32_t code, uint32_t base) {
    std::cout << codeText(code) << ": no check of the library answers this under file base " << base
              << '\n';
    printParts(code);
    std::string bases;
    for (const CheckInfo &check : allChecks()) {
        const uint32_t fitting = ((code >> 24) - check.file) & 0xFF;
        if (check.kind == CheckInfo::Composed && codeOf(check, fitting) == code) {
            bases += "  with --file-base " + std::to_string(fitting) + ": " + check.sentence +
                     " [" + check.name + "]\n";
        }
    }
    std::cout << bases;
}

bool explain(uint32_t code, uint32_t base) {
    SDPResultText text = {};
    if (code == 0) {
        std::cout << codeText(code) << ": success\n";
    } else if (isBare(code)) {
        printBare(code);
    } else if (SdpLibDescribeResult(code, &text) == 0) {
        std::cout << codeText(code) << ": " << text.pcSentence << '\n'
                  << "  check     " << text.pcCheck << '\n'
                  << "  made by   " << text.pcFunction << " in " << text.pcSource << '\n';
        printParts(code);
    } else {
        printUnknown(code, base);
        return false;
    }
    return true;
}

void printList(uint32_t base) {
    for (const CheckInfo &check : allChecks()) {
        if (check.kind != CheckInfo::PassedUp) {
            std::cout << codeText(codeOf(check, base)) << ' ' << check.name << ' ' << check.function
                      << ": " << check.sentence << '\n';
        }
    }
}

int run(const Options &options) {
    const std::optional<uint32_t> base = numberOf(options.fileBase);
    if (!base) {
        std::cerr << "sdpline: --file-base " << options.fileBase << ": not a number\n";
        return kNoNumber;
    }
    g_gSipStackFileId = *base;
    if (options.list) {
        printList(*base);
    }
    int status = 0;
    for (const std::string &text : options.codes) {
        if (const std::optional<uint32_t> code = numberOf(text)) {
            status = std::max(status, explain(*code, *base) ? 0 : kUnknown);
        } else {
            std::cerr << "sdpline: " << text << ": not a result code\n";
            status = kNoNumber;
        }
    }
    return status;
}

} // namespace

void addExplain(CLI::App &app, Outcome &outcome) {
    const auto options = std::make_shared<Options>();
    CLI::App &command =
        addCommand(app,
                   {"explain", "Say what result codes of the library mean.",
                    "Examples:\n"
                    "  sdpline explain 0x05035065\n"
                    "  sdpline explain 84103269 --file-base 0\n"
                    "  sdpline explain --list | grep rtpmap\n\n"
                    "Exit status: 0, 1 when a code is none of the library's, 2 when it is no\n"
                    "number."},
                   [options, &outcome] {
                       if (options->codes.empty() && !options->list) {
                           requireOperand("CODE");
                       }
                       outcome.trouble = kNoNumber;
                       outcome.status = run(*options);
                   });
    addWords(command, "CODE", options->codes, "Result codes, hexadecimal or decimal");
    addWord(command, "--file-base", options->fileBase, "N",
            "The stack's base of file numbers (0 by default)");
    addFlag(command, "--list", options->list, "Print every code of the library");
}

} // namespace cli
