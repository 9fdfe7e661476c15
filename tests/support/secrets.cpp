#include "support/secrets.hpp"

#include <string_view>

#include "support/chance.hpp"

namespace support {

namespace {

constexpr char kLower[] = "abcdefghijklmnopqrstuvwxyz";
constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kHex[] = "0123456789ABCDEF";

class SecretGenerator {
public:
    explicit SecretGenerator(std::mt19937 &engine) : chance_(engine) {}

    SecretBody run() {
        put("v=0");
        put("o=" + (chance_.oneIn(4) ? "-" : user()) + ' ' + sessionId() + ' ' + sessionId() +
            " IN IP" + (chance_.oneIn(2) ? "4 " : "6 ") + anyHost());
        put("s=" + freeText());
        maybe([this] { put("i=" + freeText()); });
        maybe([this] { put("u=" + uri()); });
        maybe([this] { put("e=" + mail() + " (" + user() + ' ' + user() + ')'); });
        maybe([this] { put("p=" + phone()); });
        put(connection());
        put("b=AS:128");
        put("t=1010101010 1010101010");
        maybe([this] { put("k=" + keyLine()); });
        for (uint32_t more = chance_.below(3); more != 0; --more) {
            put("a=" + attribute());
        }
        for (uint32_t media = 1 + chance_.below(2); media != 0; --media) {
            mediaDescription();
        }
        return std::move(body_);
    }

private:
    void put(const std::string &line) { body_.text += line + "\r\n"; }

    template <class Make>
    void maybe(Make make) {
        if (chance_.oneIn(2)) {
            make();
        }
    }

    void mediaDescription() {
        put("m=audio " + std::to_string(10010 + chance_.below(90)) + " RTP/SAVP 0 96");
        maybe([this] { put("i=" + freeText()); });
        maybe([this] { put(connection()); });
        maybe([this] { put("k=" + keyLine()); });
        for (uint32_t more = 1 + chance_.below(8); more != 0; --more) {
            put("a=" + attribute());
        }
    }

    // ---- Lines

    std::string connection() {
        return chance_.oneIn(2) ? "c=IN IP4 " + ipv4() + "/127" : "c=IN IP6 " + ipv6();
    }

    std::string keyLine() {
        switch (chance_.below(4)) {
        case 0: return "clear:" + key(12);
        case 1: return "base64:" + key(24);
        case 2: return "uri:" + uri();
        default: return key(10);
        }
    }

    // Words of session names.
    std::string freeText() {
        std::string text;
        for (uint32_t more = 1 + chance_.below(5); more != 0; --more) {
            static constexpr std::string_view plain[] = {"call", "with", "from", "-", "SIP"};
            text += text.empty() ? "" : " ";
            switch (chance_.below(8)) {
            case 0: text += user(); break;
            case 1: text += phone(); break;
            case 2: text += anyHost(); break;
            case 3: text += '<' + uri() + '>'; break;
            case 4: text += sipUri(); break;
            case 5: text += '(' + ipv4() + ":5060)"; break;
            case 6: text += uuid() + ','; break;
            default: text += chance_.pick(plain);
            }
        }
        return text;
    }

    std::string attribute() {
        switch (chance_.below(4)) {
        case 0: return iceAttribute();
        case 1: return keyAttribute();
        case 2: return nameAttribute();
        default: return otherAttribute();
        }
    }

    std::string iceAttribute() {
        switch (chance_.below(7)) {
        case 0:
            return "candidate:" + word(8) + " 1 UDP 2130706431 " + anyHost() +
                   " 1010 typ srflx raddr " + anyHost() + " rport 9 ufrag " + key(6);
        case 1: return "candidate:1 1 tcp 2130706431 " + word(7) + " 9 typ host tcptype active";
        case 2: return "remote-candidates:1 " + anyHost() + " 5000 2 " + anyHost() + " 5001";
        case 3: return "ice-ufrag:" + key(6);
        case 4: return "ice-pwd:" + key(22);
        case 5: return "alt:1 1 : " + key(8) + ' ' + key(8) + ' ' + ipv4() + " 10101";
        default: return "rtcp:53020 IN IP4 " + anyHost();
        }
    }

    std::string keyAttribute() {
        switch (chance_.below(14)) {
        case 0: return "crypto:1 AES_CM_128_HMAC_SHA1_80 inline:" + key(40) + "|2^20|1:32";
        case 1: return "crypto:" + key(40);
        case 2: return "crypto:1 inline:" + key(40);
        case 3: return "fingerprint:sha-256 " + fingerprint();
        case 4: return "fingerprint:" + fingerprint();
        case 5: return "key-mgmt:mikey " + key(40);
        case 6: return "key-mgmt:" + key(40);
        case 7: return "acap:1 crypto:1 AES_CM_128_HMAC_SHA1_32 inline:" + key(40);
        case 8: return "acap:2 key-mgmt:mikey " + key(40);
        case 9: return "tcap:1 crypto:1 " + key(40);
        case 10: return "zrtp-hash:1.10 " + key(40);
        case 11: return "password:" + key(9);
        case 12: return "identity:" + key(60);
        default: return "x-token:" + key(32);
        }
    }

    std::string nameAttribute() {
        switch (chance_.below(10)) {
        case 0: return "tool:" + user() + ' ' + word(6);
        case 1: return "tls-id:" + key(20);
        case 2: return "msid:" + uuid() + ' ' + word(8);
        case 3: return "msid:{" + uuid() + "} {" + uuid() + '}';
        case 4: return "label:" + word(8);
        case 5: return "ssrc:1010101010 cname:" + user() + '@' + word(6);
        case 6: return "ssrc:1010101010 msid:" + word(9) + ' ' + uuid();
        case 7: return "ssrc:1010101010 label:" + word(9);
        case 8: return "msid-semantic: WMS " + word(9);
        default: return "cat:" + freeText();
        }
    }

    std::string otherAttribute() {
        switch (chance_.below(13)) {
        case 10: return "fmtp:96 mode=1;password=" + key(9);
        case 11: return "lang:" + word(6);
        case 12: return "fmtp:96 x\ra=label:" + word(7);
        case 0: return "source-filter: incl IN IP4 * " + anyHost() + ' ' + anyHost();
        case 1: return "path:msrp://" + anyHost() + ":1011/" + word(8) + ";tcp";
        case 2: return "x-contact:" + sipUri();
        case 3: return "x-owner:" + user() + ' ' + phone();
        case 4: return "fmtp:96 dest=" + ipv4() + ";via=" + dottedHost() + ";from=" + sipUri();
        case 5: return "control:rtsp://" + ipv4() + "/" + word(8);
        case 6: return "x-mac:" + hardware();
        case 7: return "etag:{" + uuid() + '}';
        case 8: return "x-address:" + ipv6() + '%' + word(4);
        default: return word(8) + '.' + dottedHost() + ":1";
        }
    }

    // ---- Values

    std::string secret(std::string value) {
        body_.secrets.push_back(value);
        return value;
    }

    template <size_t N>
    std::string letters(const char (&alphabet)[N], uint32_t count) {
        std::string text;
        for (; count != 0; --count) {
            text += alphabet[chance_.below(N - 1)];
        }
        return text;
    }

    std::string word(uint32_t count) { return secret("q" + letters(kLower, count - 1)); }
    std::string user() { return secret("Z" + letters(kLower, 5)); }
    std::string key(uint32_t count) { return secret(letters(kBase64, count - 2) + "x7"); }
    std::string sessionId() {
        return secret(std::to_string(1000000000 + chance_.below(999999999)));
    }

    std::string ipv4() {
        std::string text = std::to_string(20 + chance_.below(90));
        for (uint32_t i = 0; i < 3; ++i) {
            text += '.' + std::to_string(chance_.below(256));
        }
        return secret(text);
    }

    // Eight groups of four digits, which is how the library writes them too.
    std::string ipv6() {
        std::string text = "2A" + letters(kHex, 2);
        for (uint32_t i = 1; i < 8; ++i) {
            text.append(":1").append(letters(kHex, 3));
        }
        return secret(text);
    }

    std::string dottedHost() {
        const std::string first = word(6);
        const std::string second = word(7);
        return first + '.' + second + (chance_.oneIn(2) ? ".example" : ".local");
    }

    std::string anyHost() {
        switch (chance_.below(4)) {
        case 0: return ipv4();
        case 1: return dottedHost();
        case 2: return word(8);
        default: return ipv6();
        }
    }

    std::string phone() {
        const std::string area = letters("23456789", 4);
        const std::string line = letters("23456789", 4);
        body_.secrets.push_back(area);
        body_.secrets.push_back(line);
        switch (chance_.below(3)) {
        case 0: return "+1 " + area + "-" + line;
        case 1: return "+1" + area + line;
        default: return "(" + area + ") " + line;
        }
    }

    std::string mail() {
        const std::string local = user();
        return local + '@' + dottedHost();
    }

    std::string sipUri() {
        switch (chance_.below(5)) {
        case 0: return "sip:" + mail() + ":5060";
        case 1: return "sip:" + anyName() + ":5060";
        case 2: return "tel:" + secret("+1" + letters("23456789", 8));
        case 3: return "sips:[" + ipv6() + ']';
        default: return "<sip:" + user() + ':' + word(7) + '@' + ipv4() + ";user=phone>";
        }
    }

    std::string anyName() { return chance_.oneIn(2) ? word(6) : dottedHost(); }

    std::string uri() {
        static constexpr std::string_view schemes[] = {"http", "https", "rtsp", "qzjwx"};
        const std::string scheme(chance_.pick(schemes));
        const std::string host = anyName();
        return scheme + "://" + host + '/' + word(6);
    }

    std::string uuid() {
        std::string text = letters(kHex, 8);
        for (const uint32_t count : {4u, 4u, 4u, 12u}) {
            text += '-' + letters(kHex, count);
        }
        return secret(text);
    }

    std::string pairs(uint32_t count, char between) {
        std::string text = letters(kHex, 2);
        for (; count != 1; --count) {
            text += between + letters(kHex, 2);
        }
        return secret(text);
    }
    std::string fingerprint() { return pairs(32, ':'); }
    std::string hardware() { return pairs(6, chance_.oneIn(2) ? ':' : '-'); }

    Chance chance_;
    SecretBody body_;
};

} // namespace

SecretBody generateSecrets(std::mt19937 &engine) {
    return SecretGenerator(engine).run();
}

} // namespace support
