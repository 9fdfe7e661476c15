#include "support/damage.hpp"

#include <algorithm>
#include <string_view>

#include "support/chance.hpp"

namespace support {

namespace {

class Injury {
public:
    Injury(std::string &body, std::mt19937 &engine) : body_(body), chance_(engine) {}

    void add() {
        switch (chance_.below(11)) {
        case 0: changeByte(static_cast<char>(chance_.below(256))); break;
        case 1: changeByte(signal()); break;
        case 2: insertByte(signal()); break;
        case 3: lose(1 + chance_.below(8)); break;
        case 4: doubleBytes(); break;
        case 5: grow(); break;
        case 6: body_.resize(place()); break;
        case 7: dropLine(); break;
        case 8: moveLine(false); break;
        case 9: moveLine(true); break;
        default: renameLine(); break;
        }
    }

private:
    // 0 to the length
    size_t place() { return chance_.below(body_.size() + 1); }

    // A byte that has a meaning in the parser.
    char signal() {
        static constexpr char signals[] = {'\0', '\r', '\n', ' ', '\t', '=', ':',    '/',
                                           '.',  '-',  '0',  '9', 'I',  'X', '\x7F', '\x80'};
        return chance_.pick(signals);
    }

    void changeByte(char byte) {
        if (!body_.empty()) {
            body_[chance_.below(body_.size())] = byte;
        }
    }

    void insertByte(char byte) { body_.insert(place(), 1, byte); }

    void lose(size_t count) { body_.erase(place(), count); }

    void doubleBytes() {
        const size_t from = place();
        const std::string bytes = body_.substr(from, 1 + chance_.below(40));
        body_.insert(place(), bytes);
    }

    // Beyond the limits of names, values and bodies.
    void grow() {
        static constexpr size_t counts[] = {11, 100, 255, 256, 1022, 1023, 1024, 4096};
        const char byte = chance_.oneIn(2) ? '1' : signal();
        const size_t count = chance_.pick(counts);
        body_.insert(place(), count, byte);
    }

    struct Line {
        size_t begin;
        size_t size; // with its line feed
    };

    Line line() {
        const size_t at = place();
        const size_t before = at == 0 ? std::string::npos : body_.rfind('\n', at - 1);
        const size_t begin = before == std::string::npos ? 0 : before + 1;
        const size_t end = body_.find('\n', begin);
        return {begin, end == std::string::npos ? body_.size() - begin : end + 1 - begin};
    }

    void dropLine() {
        const Line dropped = line();
        body_.erase(dropped.begin, dropped.size);
    }

    void moveLine(bool keep) {
        const Line moved = line();
        const std::string bytes = body_.substr(moved.begin, moved.size);
        if (!keep) {
            body_.erase(moved.begin, moved.size);
        }
        body_.insert(line().begin, bytes);
    }

    void renameLine() {
        constexpr std::string_view letters = "voseiupcbtrzkamxVA";
        const Line renamed = line();
        if (renamed.size != 0) {
            body_[renamed.begin] = letters[chance_.below(letters.size())];
        }
    }

    std::string &body_;
    Chance chance_;
};

} // namespace

std::string damage(std::string body, std::mt19937 &engine) {
    Injury injury(body, engine);
    for (uint32_t count = 1 + Chance(engine).below(4); count != 0; --count) {
        injury.add();
    }
    return body;
}

} // namespace support
