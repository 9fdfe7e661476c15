// Masks for what identifies people and machines, so that output can be shown to others.
//
// Masked are addresses and host names, user names, e-mail addresses, phone numbers and URIs, keys
// (k=, a=crypto, a=key-mgmt), fingerprints and ICE credentials. Equal values get equal masks
// throughout one run, numbered in the order of the text, and a mask is valid where its value was.
// Ports, payloads, media, session ids and all other text stay.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "sdpline/sdpline.h"

namespace cli {

// A piece of a text, and what stands there instead.
struct Edit {
    size_t begin;
    size_t end;
    std::string with;
};

std::string applied(std::string_view text, const std::vector<Edit> &edits);

// Where an offset of the text is afterwards; inside a masked piece, its start.
size_t movedOffset(size_t offset, const std::vector<Edit> &edits);

class Redactor {
public:
    // Gives the values of a body their numbers, so that they do not depend on what is shown.
    void learn(std::string_view body);

    // What is to mask in one line of a body, given without its line end. A line that is none of SDP
    // loses all its letters and digits.
    std::vector<Edit> editsOf(std::string_view line);

    std::string redacted(std::string_view line) { return applied(line, editsOf(line)); }

    std::string user(std::string_view name);       // "-" stays
    std::string address(std::string_view address); // of an o= or c= line
    std::string ipv4(const std::array<uint8_t, 4> &address);
    std::string ipv6(const std::array<uint8_t, 16> &address);

private:
    // Values of different kinds have numbers of their own, from 1.
    enum Kind { User, Host, Ipv4, Ipv6, Email, Phone, Uri, Secret, KindCount };

    size_t number(Kind kind, std::string_view value);
    std::string named(Kind kind, std::string_view value);

    void originEdits(std::string_view line, std::vector<Edit> &edits);
    void keyEdits(std::string_view line, std::vector<Edit> &edits);
    void attributeEdits(std::string_view line, std::vector<Edit> &edits);
    void candidateEdits(std::string_view line, size_t from, std::vector<Edit> &edits);
    void wordEdits(std::string_view line, size_t from, std::vector<Edit> &edits);
    void wordEdit(std::string_view line, size_t begin, size_t end, std::vector<Edit> &edits);
    size_t addressEdit(std::string_view line, size_t at, size_t end, std::vector<Edit> &edits);

    std::array<std::map<std::string, size_t, std::less<>>, KindCount> numbers_;
};

// Masks a decoded body in place; new text comes from its own block.
void redactRecords(SdpLine &line, Redactor &redactor);

} // namespace cli
