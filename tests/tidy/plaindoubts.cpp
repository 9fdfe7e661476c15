#include "tidy/plaindoubts.hpp"

#include <arpa/inet.h>

#include <algorithm>
#include <map>
#include <regex>
#include <vector>

#include "sdpline/sdpline.h"

namespace tidytest {

namespace {

// The largest number of 32 bits.
const std::string kLargest = "4294967295";

struct PlainLine {
    std::string given;
    std::string read;          // without NULs and indentation
    std::vector<size_t> place; // of each byte read, in the given line
    size_t number;
};

// Compares a run of digits by its length and its digits.
bool isAbove(std::string digits, const std::string &most) {
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    return digits.size() != most.size() ? digits.size() > most.size() : digits > most;
}

bool isRtp(const std::string &protocol, bool rtpFamily) {
    static const std::regex family("[^]*RTP/S?AVPF?");
    return protocol == "RTP/AVP" || protocol == "RTP/SAVP" ||
           (protocol == "RTP/AVPF" && SdpGetSupMedProtoRtpAvpf() == 1) ||
           (rtpFamily && std::regex_match(protocol, family));
}

class Plain {
public:
    Plain(const std::string &text, bool rtpFamily) : text_(text), rtpFamily_(rtpFamily) {}

    std::string run() {
        cut();
        std::string direction;
        size_t media = 0;
        size_t times = 0;
        for (const PlainLine &line : lines_) {
            bytes(line);
            const char key = line.read.empty() ? '\0' : line.read.front();
            if (key == 'm') {
                direction.clear();
                if (++media == 256) {
                    add(line, 0, "MediaCount");
                }
            }
            if (key == 't' && ++times > 1) {
                add(line, std::string::npos, "TimeAgain");
            }
            values(line, key);
            static const std::regex mode("a=(sendrecv|sendonly|recvonly|inactive)");
            if (std::regex_match(line.read, mode)) {
                if (!direction.empty() && direction != line.read) {
                    add(line, std::string::npos, "DirectionTwice");
                }
                direction = line.read;
            }
        }
        if (afterEnd_) {
            out_ += std::to_string(afterLine_) + ':' + std::to_string(afterColumn_) +
                    " LinesAfterEnd\n";
        }
        return out_;
    }

private:
    // Lines up to the first that is empty but for blanks and NULs.
    void cut() {
        size_t at = 0;
        for (size_t number = 1; at < text_.size(); ++number) {
            const size_t end = std::min(text_.find('\n', at), text_.size());
            PlainLine line = {text_.substr(at, end - at), "", {}, number};
            if (end != text_.size() && line.given.ends_with('\r')) {
                line.given.pop_back();
            }
            at = end + 1;
            const bool indentGoes = number > 1;
            for (size_t i = 0; i < line.given.size(); ++i) {
                const bool indent = indentGoes && line.read.empty() && line.given[i] == ' ';
                if (line.given[i] != '\0' && !indent) {
                    line.read += line.given[i];
                    line.place.push_back(i);
                }
            }
            if (line.read.empty()) {
                rest(at, number + 1);
                return;
            }
            lines_.push_back(line);
        }
    }

    void rest(size_t at, size_t number) {
        size_t column = 1;
        for (; at < text_.size(); ++at, ++column) {
            if (std::string("\r\n \t", 5).find(text_[at]) == std::string::npos) {
                afterEnd_ = true;
                afterLine_ = number;
                afterColumn_ = column;
                return;
            }
            if (text_[at] == '\n') {
                ++number;
                column = 0;
            }
        }
    }

    // `at` is an offset of the line as it is read; npos is where the line begins, which is
    // its indentation.
    void add(const PlainLine &line, size_t at, const std::string &name) {
        const size_t first = line.given.find_first_not_of('\0');
        const size_t column = at == std::string::npos ? first : line.place[at];
        out_ += std::to_string(line.number) + ':' + std::to_string(column + 1) + ' ' + name + '\n';
    }

    void bytes(const PlainLine &line) {
        const size_t nul = line.given.find('\0');
        if (nul != std::string::npos) {
            out_ += std::to_string(line.number) + ':' + std::to_string(nul + 1) + " NulInside\n";
        }
        const size_t cr = line.given.find('\r');
        if (cr != std::string::npos) {
            out_ += std::to_string(line.number) + ':' + std::to_string(cr + 1) + " CrInside\n";
        }
        const size_t first = line.given.find_first_not_of('\0');
        if (line.number > 1 && line.given[first] == ' ') {
            add(line, std::string::npos, "LineIndent");
        }
    }

    // Reports the number at a group of the match when it is above the limit.
    void limit(const PlainLine &line, const std::smatch &match, size_t group,
               const std::string &most, const std::string &name) {
        if (match[group].matched && isAbove(match.str(group), most)) {
            add(line, static_cast<size_t>(match.position(group)), name);
        }
    }

    // The largest number in 32 bits is written back as if none had been given.
    void given(const PlainLine &line, const std::smatch &match, size_t group) {
        const bool wraps = match[group].matched && isAbove(match.str(group), kLargest);
        limit(line, match, group, "4294967294", wraps ? "NumberWraps" : "AttributeLost");
    }

    // A number of 0 is written back as if none had been given.
    void counted(const PlainLine &line, const std::smatch &match, size_t group) {
        limit(line, match, group, kLargest, "NumberWraps");
        if (match[group].matched && !isAbove(match.str(group), "0")) {
            add(line, static_cast<size_t>(match.position(group)), "AttributeLost");
        }
    }

    void values(const PlainLine &line, char key) {
        switch (key) {
        case 'v': version(line); break;
        case 'c':
            ip4(line);
            ip6(line);
            break;
        case 'a':
            number(line);
            flag(line);
            control(line);
            map(line);
            break;
        case 'r': repeat(line); break;
        case 'm': media(line); break;
        }
    }

    void version(const PlainLine &line) {
        static const std::regex form("v=(\\d+)");
        std::smatch match;
        if (std::regex_match(line.read, match, form)) {
            limit(line, match, 1, kLargest, "NumberWraps");
        }
    }

    void ip4(const PlainLine &line) {
        static const std::regex form(
            "c=IN IP4 (\\d+)\\.(\\d+)\\.(\\d+)\\.(\\d+)(?:/(\\d+))?(?:/(\\d+))?");
        std::smatch match;
        if (std::regex_match(line.read, match, form)) {
            for (size_t octet = 1; octet <= 4; ++octet) {
                limit(line, match, octet, "255", "OctetRange");
            }
            given(line, match, 5);
            given(line, match, 6);
        }
    }

    void ip6(const PlainLine &line) {
        static const std::regex form("c=IN IP6 ([^/]*)(?:/(\\d+))?(?:/(\\d+))?");
        std::smatch match;
        if (std::regex_match(line.read, match, form)) {
            in6_addr address;
            if (inet_pton(AF_INET6, match.str(1).c_str(), &address) != 1) {
                add(line, static_cast<size_t>(match.position(1)), "AddressText");
            }
            given(line, match, 2);
            given(line, match, 3);
        }
    }

    void number(const PlainLine &line) {
        static const std::regex form("a=(?:ptime|maxptime|framerate|quality|T38FaxVersion|"
                                     "T38MaxBitRate|T38FaxMaxBuffer|T38FaxMaxDatagram):"
                                     "(\\d+)(\\.\\d+)?");
        std::smatch match;
        if (std::regex_match(line.read, match, form)) {
            limit(line, match, 1, kLargest, "NumberWraps");
            if (match[2].matched && match.str(2).find_first_not_of(".0") != std::string::npos) {
                add(line, static_cast<size_t>(match.position(2)), "FramerateRounded");
            }
        }
    }

    void flag(const PlainLine &line) {
        static const std::regex form(
            "a=T38Fax(?:FillBitRemoval|TranscodingMMR|TranscodingJBIG):(\\d+)");
        std::smatch match;
        if (std::regex_match(line.read, match, form)) {
            const bool lost = SdpGetT380ptCfg() != SDP_T38_STYLE_VALUE;
            if (lost ? isAbove(match.str(1), "1") || !isAbove(match.str(1), "0")
                     : isAbove(match.str(1), kLargest)) {
                add(line, static_cast<size_t>(match.position(1)),
                    lost ? "AttributeLost" : "NumberWraps");
            }
        }
    }

    void control(const PlainLine &line) {
        static const std::regex form("a=ipbcp:(\\d+) .*");
        std::smatch match;
        if (std::regex_match(line.read, match, form)) {
            limit(line, match, 1, "255", "AttributeLost");
        }
    }

    void map(const PlainLine &line) {
        static const std::regex form("a=rtpmap:(\\d+) [^/]*/(\\d+)(?:/(\\d+))?");
        std::smatch match;
        if (std::regex_match(line.read, match, form)) {
            limit(line, match, 1, "127", "PayloadRange");
            limit(line, match, 2, kLargest, "NumberWraps");
            counted(line, match, 3);
        }
    }

    void repeat(const PlainLine &line) {
        static const std::regex time("(\\d+)([A-Za-z]*)");
        auto at = std::sregex_iterator(line.read.begin() + 2, line.read.end(), time);
        for (; at != std::sregex_iterator(); ++at) {
            if (isAbove(at->str(1), kLargest)) {
                add(line, static_cast<size_t>(at->position(1)) + 2, "NumberWraps");
            }
            if (at->str(2).size() > 1) {
                add(line, static_cast<size_t>(at->position(2)) + 2, "RepeatUnit");
            }
        }
    }

    void media(const PlainLine &line) {
        static const std::regex field("m=[^ ]* (\\d+)(?:/(\\d+))? ([^ ]*)([^]*)");
        std::smatch match;
        if (!std::regex_match(line.read, match, field)) {
            return;
        }
        limit(line, match, 1, "65535", "PortRange");
        counted(line, match, 2);
        if (!isRtp(match.str(3), rtpFamily_)) {
            return;
        }
        static const std::regex payload("\\d+");
        const auto begin = line.read.begin() + match.position(4);
        for (auto at = std::sregex_iterator(begin, line.read.end(), payload);
             at != std::sregex_iterator(); ++at) {
            if (isAbove(at->str(), "127")) {
                add(line, static_cast<size_t>(at->position() + match.position(4)), "PayloadRange");
            }
        }
    }

    const std::string &text_;
    bool rtpFamily_;
    std::vector<PlainLine> lines_;
    std::string out_;
    bool afterEnd_ = false;
    size_t afterLine_ = 0;
    size_t afterColumn_ = 0;
};

} // namespace

std::string plainDoubts(const std::string &text, bool rtpFamily) {
    return Plain(text, rtpFamily).run();
}

} // namespace tidytest
