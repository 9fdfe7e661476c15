// Reads the bodies in files, folders and standard input, one after another.
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

// What a command prepared for a body in the thread that read it.
class Prepared {
public:
    virtual ~Prepared() = default;
    virtual size_t size() const { return 0; } // about, in memory
};

// One body, and where it is. Its text is valid while it is used.
struct Found {
    std::string name; // of the input, escaped
    std::string path; // of the input
    std::string_view text;
    size_t offset;              // in the input
    size_t line;                // of the start of the body, from 1
    std::string_view head = {}; // the SIP message up to the body; empty for a plain body
    Packet packet = {};         // that carried it, where the input is a capture
    std::shared_ptr<const Prepared> prepared = {};
};

// A problem of an input.
struct InputProblem {
    Problem::Kind kind;
    std::string path;
    std::string text; // escaped
    size_t line = 0;  // of the problem, from 2; 0: the whole input

    // "offer.sip:12: the body is cut"
    std::string message() const;
};

// A command that reads inputs.
class InputUser {
public:
    virtual ~InputUser() = default;

    // Called before the first input with the number of inputs, and their size if all are files, or
    // 0.
    virtual void files(size_t /*count*/, uint64_t /*bytes*/) {}
    // Called when this many more bytes of the inputs have been read.
    virtual void bytesRead(uint64_t /*count*/) {}
    // Called for each SIP message of the input before its bodies: `text` is the whole message.
    virtual void message(const Found & /*whole*/) {}
    virtual void body(const Found &found) = 0;
    // Prepares a body for body(), without regard to the bodies before it: several threads may call
    // this at once. If it returns null, body() does all the work.
    virtual std::shared_ptr<const Prepared> prepare(const Found & /*found*/) const { return {}; }
    virtual void problem(const InputProblem &problem) = 0;
    // A problem in a message of a capture.
    virtual void problemAt(const Found &place, Problem::Kind kind, const std::string &text);
    virtual void fileDone(bool /*read*/) {}
    virtual bool wantsMessages() const { return false; } // whether message() must be called

    // The packet of a body or a message, and the text of a body, with masks if wanted.
    virtual std::string packetOf(const Found &found);
    virtual std::string textOf(const Found &found) { return std::string(found.text); }
    // Which messages are wanted.
    virtual const Selection &selection() const;
    // How many inputs may be read at once.
    virtual unsigned jobs() const { return 1; }
};

// Reads the paths, and the files in the folders among them: texts and captures, also compressed
// ones. An input is read in parts, so that the memory needed does not depend on its size.
void readInputs(const std::vector<std::string> &paths, InputUser &user);

// "standard input", or the escaped path.
std::string inputName(const std::string &path);

} // namespace cli
