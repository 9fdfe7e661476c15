// Reads a file or standard input, and unpacks data that is compressed by gzip or zstd.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace cli {

// A source of bytes.
class Source {
public:
    virtual ~Source() = default;

    // Reads up to `size` bytes, and returns how many; 0 at the end, or where reading fails: see
    // error().
    virtual size_t read(char *bytes, size_t size) = 0;
    // How many bytes of the file were read, counted before unpacking.
    virtual uint64_t taken() const = 0;
    virtual std::string error() const = 0;
};

// "-" is standard input. A file that cannot be opened is a source with an error.
std::unique_ptr<Source> openSource(const std::string &path);

// "gzip, zstd": the formats that this build can unpack; empty for none.
std::string unpackable();

} // namespace cli
