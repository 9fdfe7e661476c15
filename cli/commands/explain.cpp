// sdpline explain: puts result codes and names of checks into words.
#include "commands/commands.hpp"

#include <charconv>
#include <iostream>

#include "output/checktable.hpp"
#include "output/diagnostic.hpp"
#include "sdpline/tidy.hpp"
#include "text/escape.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

using sdpline::ResultKind;

struct ExplainOptions {
    std::vector<std::string> questions;
    std::string fileBase = "0";
    bool list = false;
};

std::optional<uint32_t> numberOf(std::string_view digits, int base) {
    uint32_t value = 0;
    const char *const end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, value, base);
    return error == std::errc{} && rest == end ? std::optional(value) : std::nullopt;
}

bool isPrefixed(std::string_view text) {
    return text.starts_with("0x") || text.starts_with("0X");
}

// The numbers that a text may mean, the likelier first: "0x05035065" is one, "84103269" may be two.
std::vector<uint32_t> numbersOf(std::string_view text) {
    const bool prefixed = isPrefixed(text);
    const std::optional<uint32_t> hex = numberOf(text.substr(prefixed ? 2 : 0), 16);
    const std::optional<uint32_t> decimal = prefixed ? std::nullopt : numberOf(text, 10);
    std::vector<uint32_t> numbers;
    for (const std::optional<uint32_t> &number : {decimal, hex}) {
        if (number && (numbers.empty() || numbers.front() != *number)) {
            numbers.push_back(*number);
        }
    }
    if (numbers.size() == 2 && text.starts_with('0')) {
        std::swap(numbers[0], numbers[1]); // no decimal number begins with a zero
    }
    return numbers;
}

std::string_view classText(uint32_t errorClass) {
    switch (errorClass) {
    case SDP_ERRCLASS_RESOURCE: return "an argument, memory, a token too long, input that ended";
    case SDP_ERRCLASS_NOT_SDP: return "no input, or it does not start with \"v=\"";
    case SDP_ERRCLASS_FIELD_SYNTAX: return "a token that the grammar of the field does not allow";
    case SDP_ERRCLASS_UNEXPECTED_LINE: return "a kind of line that is not allowed there";
    case SDP_ERRCLASS_BAD_ADDRESS: return "an IPv6 address, or a field that cannot be written";
    default: return "not a class of the library";
    }
}

void printParts(uint32_t code) {
    const uint32_t errorClass = code & 0x3FF;
    std::cout << "  parts     file " << (code >> 24) << ", location " << (code >> 10 & 0x3FFF)
              << ", class " << errorClass << " (" << classText(errorClass) << ")\n";
}

// ---- Codes

const CheckInfo *composedCheck(uint32_t code, uint32_t base) {
    for (const CheckInfo &check : allChecks()) {
        if (check.returns(ResultKind::Composed) && codeOf(check, base) == code) {
            return &check;
        }
    }
    return nullptr;
}

bool isBare(uint32_t code) {
    for (const CheckInfo &check : allChecks()) {
        if (check.returns(ResultKind::Bare) && check.outcome.location == code) {
            return true;
        }
    }
    return false;
}

bool isKnown(uint32_t code, uint32_t base) {
    return code == 0 || isBare(code) || composedCheck(code, base) != nullptr;
}

void printCheck(std::string_view code, const CheckInfo &check) {
    const std::string_view source = sourceOf(check);
    std::cout << code << ": " << check.sentence << '\n'
              << "  check     " << check.name << '\n'
              << "  made by   " << check.function << (source.empty() ? "" : " in ") << source
              << '\n';
}

void printComposed(const CheckInfo &check, uint32_t base) {
    const uint32_t code = codeOf(check, base);
    printCheck(codeText(code), check);
    printParts(code);
}

// Several checks return the same bare number.
void printBare(uint32_t code) {
    std::cout << codeText(code) << ": the number " << code
              << " alone, which these checks return; only the log entry says which one failed\n";
    for (const CheckInfo &check : allChecks()) {
        if (check.returns(ResultKind::Bare) && check.outcome.location == code) {
            std::cout << "  " << check.function << ": " << check.sentence << " [" << check.name
                      << "]\n";
        }
    }
}

void printUnknown(uint32_t code, uint32_t base) {
    std::cout << codeText(code) << ": no check of the library returns this under file base " << base
              << '\n';
    printParts(code);
    for (const CheckInfo &check : allChecks()) {
        const uint32_t fitting = ((code >> 24) - check.file) & 0xFF;
        if (check.returns(ResultKind::Composed) && codeOf(check, fitting) == code) {
            std::cout << "  with --file-base " << fitting << ": " << check.sentence << " ["
                      << check.name << "]\n";
        }
    }
}

bool explainCode(uint32_t code, uint32_t base) {
    const CheckInfo *const check = composedCheck(code, base);
    if (code == 0) {
        std::cout << codeText(code) << ": success\n";
    } else if (isBare(code)) {
        printBare(code);
    } else if (check != nullptr) {
        printComposed(*check, base);
    } else {
        printUnknown(code, base);
        return false;
    }
    return true;
}

// Explains the numbers that the library returns, or else the likelier one.
bool explainNumbers(std::vector<uint32_t> numbers, uint32_t base) {
    const uint32_t likelier = numbers.front();
    std::erase_if(numbers, [base](uint32_t code) { return !isKnown(code, base); });
    if (numbers.empty()) {
        return explainCode(likelier, base);
    }
    for (const uint32_t code : numbers) {
        explainCode(code, base);
    }
    return true;
}

// ---- Names of checks

// "ConnLastOctetRange" for "[ConnLastOctetRange]", which sdpline check prints.
std::string_view nameIn(std::string_view question) {
    const bool bracketed = question.starts_with('[') && question.ends_with(']');
    return bracketed ? question.substr(1, question.size() - 2) : question;
}

const CheckInfo *checkNamed(std::string_view name) {
    for (const CheckInfo &check : allChecks()) {
        if (equalsIgnoringCase(check.name, name)) {
            return &check;
        }
    }
    return nullptr;
}

void explainCheck(const CheckInfo &check, uint32_t base) {
    if (check.returns(ResultKind::Composed)) {
        printComposed(check, base);
        return;
    }
    printCheck(check.returns(ResultKind::Bare) ? codeText(check.outcome.location)
                                               : "the code of what it called",
               check);
}

// ---- Names of doubts and repairs

bool explainRule(std::string_view name) {
    const auto number = sdpline::TidyRules::numberOf(name);
    if (number) {
        const SDPTidyRule &rule = *SdpTidyRuleAt(*number);
        const bool doubt = rule.enSet == SDP_TIDY_DOUBT;
        std::cout << rule.pcName << ": " << rule.pcWrong << ": " << rule.pcDone << '\n'
                  << "  rule      " << rule.pcReference << '\n'
                  << "  made by   " << (doubt ? "check, as a warning" : "tidy, as a repair")
                  << '\n';
        return true;
    }
    if (equalsIgnoringCase(name, kLineKind)) {
        std::cout << kLineKind << ": " << kLineKindSentence << '\n'
                  << "  made by   check --every-line\n";
        return true;
    }
    return false;
}

// ---- The command

void printList(uint32_t base) {
    for (const CheckInfo &check : allChecks()) {
        if (!check.returns(ResultKind::Forwarded)) {
            std::cout << codeText(codeOf(check, base)) << ' ' << check.name << ' ' << check.function
                      << ": " << check.sentence << '\n';
        }
    }
}

ExitStatus explain(const std::string &question, uint32_t base) {
    const std::string_view name = nameIn(question);
    const CheckInfo *const check = checkNamed(name);
    if (check != nullptr) {
        explainCheck(*check, base);
    }
    if (explainRule(name) || check != nullptr) { // a few checks and rules have the same name
        return kFine;
    }
    const std::vector<uint32_t> numbers = numbersOf(question);
    if (numbers.empty()) {
        std::cerr << "sdpline: " << escaped(question)
                  << ": expected a result code or the name of a check, doubt or repair\n";
        return kUnusable;
    }
    return explainNumbers(numbers, base) ? kFine : kRefused;
}

int runExplain(const ExplainOptions &options) {
    const std::string_view text = options.fileBase;
    const bool prefixed = isPrefixed(text);
    const std::optional<uint32_t> base =
        numberOf(text.substr(prefixed ? 2 : 0), prefixed ? 16 : 10);
    if (!base) {
        std::cerr << "sdpline: --file-base: expected a number, found \"" << escaped(text) << "\"\n";
        return kUnusable;
    }
    g_gSipStackFileId = *base;
    if (options.list) {
        printList(*base);
    }
    int status = kFine;
    for (const std::string &question : options.questions) {
        status = std::max(status, static_cast<int>(explain(question, *base)));
    }
    return status;
}

constexpr CommandText kExplainText = {"explain", "Say what result codes and names of checks mean.",
                                      R"(Examples:
  sdpline explain 0x05035065
  sdpline explain ConnLastOctetRange
  sdpline explain 84103269 --file-base 0
  sdpline explain --list | grep rtpmap

Exit status: 0 when everything is explained, 1 when the library does not return a code,
2 when an argument is neither a code nor a name.)"};

} // namespace

void addExplain(CLI::App &app, int &status) {
    const auto options = std::make_shared<ExplainOptions>();
    CLI::App &command = addCommand(app, kExplainText, [options, &status] {
        if (options->questions.empty() && !options->list) {
            requireOperand("CODE");
        }
        status = runExplain(*options);
    });
    addWords(command, "CODE", options->questions,
             "Result codes, hexadecimal or decimal, or names of checks, doubts and repairs");
    addWord(command, "--file-base", options->fileBase, "N",
            "The value of g_gSipStackFileId in the stack (0 by default)");
    addFlag(command, "--list", options->list, "Print every code of the library");
}

} // namespace cli
