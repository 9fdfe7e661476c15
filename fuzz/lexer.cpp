// The lexer, under operations and context switches in any order, returns what a simple model finds
// byte by byte.
#include "lexers.hpp"

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const uint32_t operations = input.byte();
    const std::string_view text = input.front(input.rest().size() / 2);
    fuzz::Lexers lexers(text);
    for (uint32_t i = 0; i < operations; ++i) {
        lexers.operate(input); // without numbers left, the context is switched to none
    }
    return 0;
}
