// A body with a line of most kinds.
#pragma once

#include <string>

inline const std::string kManyLines =
    "v=0\r\no=- 1 2 IN IP4 h\r\ns=-\r\nc=IN IP4 1.2.3.4/5/6\r\nt=1 2\r\n"
    "r=7d 1h 0 25h\r\nm=audio 1/2 RTP/AVP 0 8\r\na=rtpmap:0 PCMU/8000/2\r\n"
    "a=des:qos optional remote sendrecv\r\na=ipbcp:1 Request\r\na=setup:active\r\n";
