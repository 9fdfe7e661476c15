// Which of the SIP messages of an input are wanted, and where their bodies are written.
#pragma once

#include <cstdint>
#include <string>

#include "sip/origin.hpp"

namespace cli {

// What is empty or 0 selects all. Bodies that no SIP message carries are not asked.
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
