// The bodies in files, folders and standard input, one after another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "input/selection.hpp"
#include "sip/bodies.hpp"
#include "sip/origin.hpp"

namespace cli {

// What a command made of a body in the thread that read it.
class Prepared {
public:
    virtual ~Prepared() = default;
    virtual size_t size() const { return 0; } // about, in memory
};

// One body, and where it is. Its text is valid while it is used.
struct Found {
    std::string name; // of the input, as it may be shown
    std::string path; // as it was given or found
    std::string_view text;
    size_t offset;              // in the input
    size_t line;                // that the body begins in, from 1
    std::string_view head = {}; // the SIP message up to the body; empty for a plain body
    Packet packet = {};         // that carried it, where the input is a capture
    std::shared_ptr<const Prepared> prepared = {};
};

// Something about an input that its reader should know.
struct InputProblem {
    Problem::Kind kind;
    std::string path; // as it was given or found
    std::string text; // as it may be shown
    size_t line = 0;  // that it is about, from 2; 0: the whole input

    // "offer.sip:12: the body is cut"
    std::string message() const;
};

// What a command does with its inputs.
class InputUser {
public:
    virtual ~InputUser() = default;

    // Before the first one: how many there are, and their bytes, where all are files; else 0.
    virtual void files(size_t /*count*/, uint64_t /*bytes*/) {}
    // So many bytes more of the inputs were read.
    virtual void bytesRead(uint64_t /*count*/) {}
    // Each SIP message of the input, before what is found in it: `text` is the whole message.
    virtual void message(const Found & /*whole*/) {}
    virtual void body(const Found &found) = 0;
    // What the user makes of a body alone, whatever came before it, for body(): several threads may
    // ask at once. Null: body() does it all.
    virtual std::shared_ptr<const Prepared> prepare(const Found & /*found*/) const { return {}; }
    virtual void problem(const InputProblem &problem) = 0;
    // A problem in a message of a capture.
    virtual void problemAt(const Found &place, Problem::Kind kind, const std::string &text);
    virtual void fileDone(bool /*read*/) {}
    virtual bool wantsMessages() const { return false; } // else message() need not be called

    // As it may be shown: the packet of a body or a message, and a body's text.
    virtual std::string packetOf(const Found &found);
    virtual std::string textOf(const Found &found) { return std::string(found.text); }
    // What of the inputs is wanted.
    virtual const Selection &selection() const;
    // How many inputs may be read at once. The user is called by one thread.
    virtual unsigned jobs() const { return 1; }
};

// Reads the paths, and the files of folders among them: texts and captures, also those compressed.
// An input is read in parts: what is needed of memory does not depend on its size.
void readInputs(const std::vector<std::string> &paths, InputUser &user);

// "standard input", or the path as it may be shown.
std::string inputName(const std::string &path);

} // namespace cli
