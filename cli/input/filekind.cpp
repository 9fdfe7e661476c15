#include "input/filekind.hpp"

#include <array>

#include "text/strings.hpp"

namespace cli {

namespace {

struct Kind {
    std::string_view begin;
    std::string_view message;
};

constexpr std::string_view kUtf16 = "it is UTF-16 text: convert it to UTF-8 or ASCII";

// Where one beginning is part of another, the longer one comes first.
constexpr auto kKinds = std::to_array<Kind>({
    {{"\x1f\x8b", 2}, "it is compressed by gzip: unpack it, as \"gzip -dc\" does"},
    {"BZh", "it is compressed by bzip2: unpack it, as \"bzip2 -dc\" does"},
    {{"\xfd"
      "7zXZ\0",
      6},
     "it is compressed by xz: unpack it, as \"xz -dc\" does"},
    {{"\x28\xb5\x2f\xfd", 4}, "it is compressed by zstd: unpack it, as \"zstd -dc\" does"},
    {{"PK\x03\x04", 4}, "it is a zip archive: unpack it"},
    {{"\xef\xbb\xbf", 3}, "it begins with a byte order mark (EF BB BF): save it without one"},
    {{"\xff\xfe", 2}, kUtf16},
    {{"\xfe\xff", 2}, kUtf16},
    {{"v\0=\0", 4}, kUtf16},
    {{"\0v\0=", 4}, kUtf16},
});

// The quotation marks before "v=" in the first line of a quoted text; empty where there are none.
std::string_view quoteMarks(std::string_view text) {
    const size_t end = text.find_first_not_of(">|\"'` \t");
    const bool quoted = end != std::string_view::npos && text.substr(end).starts_with("v=") &&
                        text.substr(0, end).find_first_of(">|\"'`") != std::string_view::npos;
    return quoted ? text.substr(0, end) : std::string_view();
}

} // namespace

std::string foreignKind(std::string_view text) {
    for (const Kind &kind : kKinds) {
        if (text.starts_with(kind.begin)) {
            return std::string(kind.message);
        }
    }
    constexpr size_t kLongestMarks = 16;
    const std::string_view marks = quoteMarks(text.substr(0, kLongestMarks));
    return marks.empty()
               ? ""
               : "its lines begin with quotation marks (" + std::string(marks) + "): remove them";
}

} // namespace cli
