// Any capture file is read to its end with bounded memory, and the messages in it do not depend on
// how many bytes are read at a time.
#include <string>
#include <vector>

#include "capture/capture.hpp"
#include "capture/container.hpp"
#include "fuzz.hpp"

namespace {

using fuzz::require;

struct Messages {
    std::vector<std::string> texts;
    std::vector<std::string> unread;
};

Messages read(std::string_view text, size_t chunk) {
    Messages messages;
    cli::Container container;
    cli::Capture capture;
    uint64_t last = 0;
    const cli::Capture::Use use = [&](const cli::Packet &packet, std::string_view message) {
        require(packet.frame >= last, "frames come in order");
        require(!message.empty(), "a message has bytes");
        last = packet.frame;
        messages.texts.emplace_back(message);
    };
    size_t begin = 0;
    size_t end = std::min(chunk, text.size());
    for (bool more = true; more;) {
        fuzz::Exact bytes(text.substr(begin, end - begin));
        cli::Frame frame;
        size_t used = 0;
        switch (container.step(bytes.view(), used, frame)) {
        case cli::Container::Step::Packet: capture.take(frame, use); break;
        case cli::Container::Step::Passed: break;
        case cli::Container::Step::Bad:
            require(!container.error().empty(), "a damaged capture has a reason");
            more = false;
            break;
        case cli::Container::Step::More:
            more = end < text.size();
            end += std::min(chunk, text.size() - end);
        }
        require(used <= end - begin, "no more is used than there is");
        begin += used;
    }
    capture.finish(use);
    messages.unread = capture.unread();
    return messages;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::Input input(data, size);
    const size_t chunk = 1 + input.byte();
    const std::string_view text = input.rest();
    const Messages whole = read(text, text.size() + 1);
    const Messages parts = read(text, chunk);
    require(whole.texts == parts.texts, "the messages do not depend on how the file is read");
    require(whole.unread == parts.unread, "nor does what is not read");
    return 0;
}
