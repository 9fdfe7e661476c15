// One function for each production, like the parser. Random values are drawn in the order of the
// text, because compilers evaluate operands in different orders.
#include "support/generator.hpp"

#include <algorithm>
#include <string_view>

#include "sdpline/sdpline.h"
#include "support/chance.hpp"

namespace support {

namespace {

// Bytes that a text of this kind must not contain, besides NUL and LF.
constexpr std::string_view kNotInText = "";
constexpr std::string_view kNotInWord = " \t";
constexpr std::string_view kNotInToken = " \t()<>;:@,";
constexpr std::string_view kNotInName = "/"; // of an rtpmap

constexpr uint32_t kLongestName = 255;

class Generator {
public:
    explicit Generator(std::mt19937 &engine) : chance_(engine) {}

    std::string body() {
        chooseStyle();
        session();
        while (!full_ && !chance_.oneIn(crowded_ ? 30 : 4)) {
            mediaDescription();
        }
        finish();
        return std::move(body_);
    }

private:
    // ---- The body as a whole

    void chooseStyle() {
        const uint32_t size = chance_.below(100);
        limit_ = size < 60   ? 150 + chance_.below(350)
                 : size < 90 ? 500 + chance_.below(700)
                             : 1200 + chance_.below(SDP_MAX_BODY - 1200 + 1);
        crowded_ = size >= 90;
        lineEnds_ = chance_.below(3);
        untidy_ = chance_.oneIn(6);
    }

    // version origin name [ info ] [ uri ] *email *phone [ connection ] *bandwidth, then the times
    // and what may follow them only
    void session() {
        put("v=").digits().endLine();
        origin();
        textLine("s=");
        optional([this] { textLine("i="); });
        optional([this] { textLine("u="); });
        repeated([this] { textLine("e="); });
        repeated([this] { textLine("p="); });
        optional([this] { connection(); });
        repeated([this] { textLine("b="); });
        if (chance_.oneIn(4)) {
            return;
        }
        times();
        optional([this] { textLine("z="); });
        optional([this] { textLine("k="); });
        repeated([this] { attribute(); });
    }

    void finish() {
        if (chance_.oneIn(8)) {
            body_.resize(body_.size() - lineEnd_.size());
            return;
        }
        const std::string_view emptyLine = chance_.oneIn(2) ? "\r\n" : "\n";
        if (!chance_.oneIn(8) || body_.size() + emptyLine.size() > SDP_MAX_BODY) {
            return;
        }
        body_ += emptyLine;
        const uint32_t stops = chance_.oneIn(8) ? 0xFFFFFFFFu : 60;
        while (body_.size() < SDP_MAX_BODY && !chance_.oneIn(stops)) {
            body_ += static_cast<char>(chance_.below(256));
        }
    }

    template <class Make>
    void optional(Make make) {
        if (chance_.oneIn(3)) {
            make();
        }
    }

    // A few, or as many as the body has room for.
    template <class Make>
    void repeated(Make make) {
        uint32_t count = chance_.below(4);
        count *= chance_.below(3);
        if (crowded_ && chance_.oneIn(12)) {
            count = SDP_MAX_BODY;
        }
        for (; count != 0 && !full_; --count) {
            make();
        }
    }

    // ---- Lines

    Generator &put(std::string_view text) {
        line_ += text;
        return *this;
    }

    // The three lines that a body must have are short enough for every limit.
    void endLine() {
        const char key = line_.front();
        const bool needed = key == 'v' || key == 'o' || key == 's';
        if (untidy_) {
            untidyLine();
        }
        const bool withCr = lineEnds_ == 0 || (lineEnds_ == 2 && chance_.oneIn(2));
        const std::string_view end = withCr ? "\r\n" : "\n";
        full_ = full_ || (!needed && body_.size() + line_.size() + end.size() > limit_);
        if (!full_) {
            last_ = key;
            lineEnd_ = end;
            body_ += line_;
            body_ += end;
        }
        line_.clear();
    }

    // Blanks before any line but the first, and NULs before any byte.
    void untidyLine() {
        if (!body_.empty() && chance_.oneIn(3)) {
            line_.insert(0, 1 + chance_.below(3), ' ');
        }
        if (chance_.oneIn(3)) {
            line_.insert(chance_.below(line_.size()), 1, '\0');
        }
    }

    void textLine(std::string_view key) { put(key).bytes(kNotInText, length()).endLine(); }

    void origin() {
        put("o=").bytes(kNotInWord, length()).put(" ").digits().put(" ").digits();
        put(chance_.oneIn(2) ? " IN IP4 " : " IN IP6 ").bytes(kNotInWord, length()).endLine();
    }

    void connection() {
        if (chance_.oneIn(2)) {
            put("c=IN IP4 ").dotted();
        } else {
            put("c=IN IP6 ").ipv6();
        }
        if (chance_.oneIn(2)) {
            put("/").put(std::to_string(chance_.below(chance_.oneIn(2) ? 256 : 4294967295)));
            if (chance_.oneIn(2)) {
                put("/").digits();
            }
        }
        endLine();
    }

    void times() {
        do {
            put("t=").time().put(" ").time().endLine();
            repeated([this] { repeatLine(); });
        } while (!full_ && chance_.oneIn(crowded_ ? 2 : 10));
        if (crowded_ && chance_.oneIn(10)) {
            for (uint32_t count = chance_.below(600); count != 0; --count) {
                put("t=0 0").endLine();
            }
        }
    }

    void repeatLine() {
        static constexpr std::string_view units[] = {"", "", "d", "h", "m", "s", "days", "sX"};
        put("r=").digits().put(chance_.pick(units));
        for (uint32_t more = chance_.below(6); more != 0; --more) {
            put(" ").digits().put(chance_.pick(units));
        }
        endLine();
    }

    // ---- Media descriptions

    // An m= line follows s=, c=, t= and what follows the times; the rest needs a t= before.
    void mediaDescription() {
        if (inSession_ && std::string_view("iuepb").find(last_) != std::string_view::npos) {
            times();
        }
        inSession_ = false;
        if (crowded_ && chance_.oneIn(20)) {
            for (uint32_t count = chance_.below(400); count != 0; --count) {
                put("m=x 1 udp x").endLine();
            }
        }
        mediaLine();
        optional([this] { textLine("i="); });
        optional([this] { connection(); });
        repeated([this] { textLine("b="); });
        optional([this] { textLine("k="); });
        repeated([this] { attribute(); });
    }

    void mediaLine() {
        static constexpr std::string_view words[] = {"audio",   "video", "application", "data",
                                                     "control", "image", "text",        "AUDIO"};
        put("m=");
        if (chance_.oneIn(8)) {
            bytes(kNotInToken, length());
        } else {
            put(chance_.pick(words));
        }
        put(" ");
        if (chance_.oneIn(12)) {
            put("0 ")
                .put(chance_.oneIn(2) ? "RTP/AVP" : "RTP/SAVP")
                .put(chance_.oneIn(2) ? " " : "");
        } else {
            positive();
            if (chance_.oneIn(4)) {
                put("/").positive();
            }
            put(" ").formats();
        }
        endLine();
    }

    Generator &formats() {
        static constexpr std::string_view other[] = {"udp", "UDP",   "TCP",     "tcp",
                                                     "Udp", "udptl", "TCP/TLS", "rtp/avp"};
        if (chance_.oneIn(2)) {
            put(chance_.oneIn(3) ? "RTP/SAVP " : "RTP/AVP ");
            return payloads(chance_.oneIn(20) ? SDP_MAX_PAYLOADS : 1 + chance_.below(8));
        }
        if (chance_.oneIn(4)) {
            return put("RTP/AVPF ").digits(); // a number alone is one format of other kind too
        }
        if (chance_.oneIn(8)) {
            return bytes(kNotInToken, length()).put(" t38");
        }
        const std::string_view word = chance_.pick(other);
        put(word).put(" ");
        if ((word == "TCP" || word == "tcp") && chance_.oneIn(2)) {
            return put("t120");
        }
        return chance_.oneIn(2) ? put("t38") : bytes(kNotInToken, length());
    }

    Generator &payloads(uint32_t count) {
        digits();
        for (uint32_t i = 1; i < count; ++i) {
            put(" ").digits();
        }
        return put(count < SDP_MAX_PAYLOADS && chance_.oneIn(8) ? " " : "");
    }

    // ---- Attributes

    void attribute() {
        const uint32_t type = 1 + chance_.below(uint32_t{SDP_ATTR_SETUP});
        put("a=");
        if (type == SDP_ATTR_UNREC_VALUE || type == SDP_ATTR_UNREC_NOVALUE) {
            unrecognised(type == SDP_ATTR_UNREC_VALUE);
        } else if (type >= SDP_ATTR_FAX && type <= SDP_ATTR_X_MODEM) {
            anyCase(name(type));
        } else {
            put(name(type)).value(type);
        }
        endLine();
    }

    // The text, with a colon if a value follows.
    static std::string_view name(uint32_t type) {
        const SipString &row = sstrSdpAttrNames[type - 1];
        return {row.pcData, row.ulLen};
    }

    void anyCase(std::string_view word) {
        for (const char letter : word) {
            const bool swaps = letter != '-' && chance_.oneIn(2);
            line_ += swaps ? static_cast<char>(letter ^ 0x20) : letter;
        }
    }

    void unrecognised(bool withValue) {
        static constexpr std::string_view known[] = {"foo", "RTPMAP", "X-", "fa", "sendRecv", "IN"};
        if (chance_.oneIn(2)) {
            put(chance_.pick(known));
        } else {
            bytes(kNotInToken, length());
        }
        if (withValue) {
            put(":").bytes(kNotInText, length());
        }
    }

    void value(uint32_t type) {
        static constexpr std::string_view setups[] = {"passive", "active", "actpass"};
        static constexpr std::string_view echos[] = {"fb", "f", "b"};
        static constexpr std::string_view answers[] = {"Request", "Accepted", "Confused",
                                                       "Rejected"};
        switch (type) {
        case SDP_ATTR_RTPMAP: rtpMap(); return;
        case SDP_ATTR_SENDRECV:
        case SDP_ATTR_SENDONLY:
        case SDP_ATTR_RECVONLY:
        case SDP_ATTR_INACTIVE: return;
        case SDP_ATTR_T38_FILL_BIT_REMOVAL:
        case SDP_ATTR_T38_TRANSCODING_MMR:
        case SDP_ATTR_T38_TRANSCODING_JBIG:
            if (chance_.oneIn(2)) {
                put(":").digits();
            }
            return;
        case SDP_ATTR_T38_RATE_MANAGEMENT:
            put(chance_.oneIn(2) ? "localTCF" : "transferredTCF");
            return;
        case SDP_ATTR_T38_UDP_EC: put(chance_.oneIn(2) ? "t38UDPFEC" : "t38UDPRedundancy"); return;
        case SDP_ATTR_SILENCE_SUPP: onOff(); return;
        case SDP_ATTR_ECAN: put(chance_.pick(echos)).put(" ").onOff(); return;
        case SDP_ATTR_DES:
        case SDP_ATTR_CURR:
        case SDP_ATTR_CONF: precondition(type == SDP_ATTR_DES); return;
        case SDP_ATTR_IPBCP: digits().put(" ").put(chance_.pick(answers)); return;
        case SDP_ATTR_SETUP: put(chance_.pick(setups)); return;
        case SDP_ATTR_FRAMERATE: digits().put(chance_.oneIn(2) ? ".97" : ""); return;
        default: break;
        }
        if (type >= SDP_ATTR_FMTP && type <= SDP_ATTR_LANG) {
            bytes(kNotInText, length());
        } else {
            digits();
        }
    }

    void rtpMap() {
        static constexpr std::string_view names[] = {"PCMU", "PCMA", "DVI4", "L16",
                                                     "pcmu", "CelB", "",     "telephone-event"};
        digits().put(" ");
        if (chance_.oneIn(4)) {
            bytes(kNotInName, chance_.oneIn(8) ? kLongestName : std::min(length(), kLongestName));
        } else {
            put(chance_.pick(names));
        }
        put("/").digits();
        if (chance_.oneIn(3)) {
            put("/").positive();
        }
    }

    // The byte after the word is no letter, which would be part of the word.
    void onOff() {
        put(chance_.oneIn(2) ? "on" : "off").put(chance_.oneIn(4) ? "-" : " ");
        bytes(kNotInText, std::min(length(), SDP_MAX_VALUE - 1));
    }

    void precondition(bool withStrength) {
        static constexpr std::string_view strengths[] = {"mandatory", "optional", "none", "failure",
                                                         "unknown"};
        static constexpr std::string_view statuses[] = {"e2e", "local", "remote"};
        static constexpr std::string_view directions[] = {"none", "send", "recv", "sendrecv"};
        if (chance_.oneIn(2)) {
            put("qos ");
        } else {
            bytes(kNotInToken, length()).put(" ");
        }
        if (withStrength) {
            put(chance_.pick(strengths)).put(" ");
        }
        put(chance_.pick(statuses)).put(" ").put(chance_.pick(directions));
    }

    // ---- Addresses

    Generator &dotted() {
        // The library accepts digits that wrap to a number with the top bit set as an octet.
        static constexpr std::string_view odd[] = {"010", "000255", "4294967295", "2147483648"};
        for (uint32_t i = 0; i < 4; ++i) {
            put(i == 0 ? "" : ".");
            if (chance_.oneIn(16)) {
                put(chance_.pick(odd));
            } else {
                put(std::to_string(chance_.below(256)));
            }
        }
        return *this;
    }

    // Addresses as they are written, and words of letters, digits and colons.
    Generator &ipv6() {
        const uint32_t before = chance_.below(4);
        switch (chance_.below(5)) {
        case 0: return groups(8);
        case 1: return groups(before).put("::").groups(chance_.below(4));
        case 2: return groups(6).put(":").plainDotted();
        case 3: return groups(before).put("::").put(chance_.oneIn(2) ? "ffff:" : "").plainDotted();
        default: return addressWord();
        }
    }

    Generator &groups(uint32_t count) {
        for (uint32_t i = 0; i < count; ++i) {
            put(i == 0 ? "" : ":");
            for (uint32_t digitsLeft = 1 + chance_.below(4); digitsLeft != 0; --digitsLeft) {
                line_ += "0123456789abcdefABCDEF"[chance_.below(22)];
            }
        }
        return *this;
    }

    Generator &plainDotted() {
        for (uint32_t i = 0; i < 4; ++i) {
            put(i == 0 ? "" : ".").put(std::to_string(chance_.below(256)));
        }
        return *this;
    }

    Generator &addressWord() {
        uint32_t colons = 8;
        for (uint32_t left = length(); left != 0; --left) {
            if (colons != 0 && chance_.oneIn(4)) {
                --colons;
                line_ += ':';
            } else {
                line_ += "0123456789abcdefghijklmnopqrstuvwxyzXYZ"[chance_.below(39)];
            }
        }
        return *this;
    }

    // ---- Numbers and bytes

    Generator &digits() {
        static constexpr std::string_view edges[] = {
            "0", "00", "007", "255", "256", "65535", "4294967295", "4294967296", "70000"};
        const uint32_t kind = chance_.below(20);
        if (kind < 4) {
            return put(chance_.pick(edges));
        }
        if (kind == 4) {
            for (uint32_t left = std::min(length(), SDP_MAX_VALUE - 1); left != 0; --left) {
                line_ += static_cast<char>('0' + chance_.below(10));
            }
            return put("1");
        }
        return put(std::to_string(kind < 14 ? chance_.below(200) : chance_.number()));
    }

    // Neither 0 nor a number that wraps to 0.
    Generator &positive() { return put(std::to_string(1 + chance_.below(65535))); }

    Generator &time() {
        static constexpr std::string_view edges[] = {"0", "0", "0000000001", "4294967295"};
        return chance_.oneIn(2) ? put(chance_.pick(edges)) : put(std::to_string(chance_.number()));
    }

    // At least 1. Only optional lines have long values.
    uint32_t length() {
        const uint32_t size = chance_.below(500);
        if (size < 480 || body_.size() < 100) {
            return 1 + chance_.below(size < 250 ? 4 : 16);
        }
        return 1 + chance_.below(size < 496 ? 80 : SDP_MAX_VALUE);
    }

    // Bytes that print, or any. A CR at the end of a line would be part of the line end.
    Generator &bytes(std::string_view not_, uint32_t count) {
        const bool any = chance_.oneIn(8);
        for (uint32_t left = count; left != 0;) {
            const auto byte =
                static_cast<char>(any ? 1 + chance_.below(255) : ' ' + chance_.below(95));
            const bool lineEnd = byte == '\n' || (byte == '\r' && left == 1);
            if (!lineEnd && not_.find(byte) == std::string_view::npos) {
                line_ += byte;
                --left;
            }
        }
        return *this;
    }

    Chance chance_;
    std::string body_;
    std::string line_;
    std::string_view lineEnd_;
    char last_ = '\0'; // the key of the last line
    size_t limit_ = 0;
    uint32_t lineEnds_ = 0; // 0: CR LF, 1: LF, 2: both
    bool crowded_ = false;
    bool untidy_ = false;
    bool inSession_ = true;
    bool full_ = false; // nothing more is taken
};

} // namespace

std::string generateBody(std::mt19937 &engine) {
    return Generator(engine).body();
}

} // namespace support
