// The bytes of a file or of standard input, unpacked where they are compressed by gzip or zstd.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace cli {

// Where bytes come from.
class Source {
public:
    virtual ~Source() = default;

    // Up to that many bytes; 0 at the end, or where reading fails: see error().
    virtual size_t read(char *bytes, size_t size) = 0;
    // Bytes read so far of the file itself, as they are there: compressed ones before unpacking.
    virtual uint64_t taken() const = 0;
    virtual std::string error() const = 0;
};

// "-" is standard input. A file that cannot be opened is a source with an error.
std::unique_ptr<Source> openSource(const std::string &path);

// "gzip, zstd": what can be unpacked in this build; empty where nothing can.
std::string unpackable();

} // namespace cli
