#include "cpp/cpptest.hpp"

#include <cstdlib>
#include <iostream>

namespace cpptest {

const std::string_view kEveryLine = "v=0\r\n"
                                    "o=alice 2890844526 2890842807 IN IP4 host.example.com\r\n"
                                    "s=Weekly call\r\n"
                                    "i=About everything\r\n"
                                    "u=http://example.com/call\r\n"
                                    "e=alice@example.com\r\n"
                                    "e=bob@example.com (Bob)\r\n"
                                    "p=+1 617 555 6011\r\n"
                                    "c=IN IP4 224.2.1.1/127/3\r\n"
                                    "b=AS:128\r\n"
                                    "b=CT:256\r\n"
                                    "t=3034423619 3042462419\r\n"
                                    "r=7d 1h 0s 25h\r\n"
                                    "r=604800s 60m 0s\r\n"
                                    "z=2882844526 -1h\r\n"
                                    "k=prompt\r\n"
                                    "a=tool:sdpline\r\n"
                                    "a=recvonly\r\n"
                                    "m=audio 49170 RTP/AVP 0 96 101\r\n"
                                    "i=Speech\r\n"
                                    "c=IN IP6 2001:0DB8:0000:0000:0000:0000:0000:0065\r\n"
                                    "b=AS:64\r\n"
                                    "k=clear:secret\r\n"
                                    "a=rtpmap:96 AMR-WB/16000\r\n"
                                    "a=fmtp:96 mode-set=0,1,2; octet-align=1\r\n"
                                    "a=rtpmap:101 telephone-event/8000\r\n"
                                    "a=fmtp:101 0-15\r\n"
                                    "a=ptime:20\r\n"
                                    "a=sendonly\r\n"
                                    "m=video 51372/2 RTP/AVP 31\r\n"
                                    "m=image 49180 udptl t38\r\n"
                                    "a=T38FaxVersion:3\r\n"
                                    "m=message 7000 TCP/MSRP *\r\n";

const std::string_view kPlain = "v=0\r\n"
                                "o=- 1 1 IN IP4 192.0.2.1\r\n"
                                "s=-\r\n"
                                "t=0 0\r\n"
                                "m=audio 49170 RTP/AVP 0\r\n";

sdpline::Body decoded(std::string_view text) {
    auto body = sdpline::Body::decode(text);
    if (!body) {
        std::cerr << body.error().message() << " in\n" << text << '\n';
        std::abort();
    }
    return *std::move(body);
}

std::string written(const sdpline::Body &body) {
    auto text = body.encode();
    EXPECT_TRUE(text.ok()) << text.error().message();
    return text ? *text : std::string();
}

std::string linesOf(const std::string &text, char letter) {
    std::string found;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find("\r\n", at);
        if (text.compare(at, 2, {letter, '='}) == 0) {
            found += (found.empty() ? "" : "|") + text.substr(at + 2, end - at - 2);
        }
        at = end + 2;
    }
    return found;
}

} // namespace cpptest
