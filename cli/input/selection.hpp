// Which SIP messages of the inputs are wanted, and where their bodies are written.
#pragma once

#include <cstdint>
#include <string>

#include "sip/origin.hpp"

namespace cli {

// Empty and 0 select all messages. Bodies that no SIP message carries are always taken.
struct Selection {
    std::string callId;
    std::string from;   // a part of the From header's URI
    std::string method; // "INVITE": requests and their responses; "200": a status
    uint32_t frame = 0;
    std::string extract; // a folder that bodies are written to

    bool narrows() const;
    bool takes(const Origin &origin) const;
};

} // namespace cli
