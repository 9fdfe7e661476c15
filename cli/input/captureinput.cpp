#include "input/captureinput.hpp"

#include "capture/capture.hpp"
#include "text/escape.hpp"
#include "text/strings.hpp"

namespace cli {

namespace {

constexpr size_t kChunk = 256u << 10; // bytes read at a time: they stay in the cache

class CaptureReader {
public:
    CaptureReader(Window &window, const std::string &path, const std::string &name, InputUser &user)
        : window_(window), path_(path), name_(name), user_(user) {}

    bool run() {
        const Capture::Use use = [this](const Packet &packet, std::string_view message) {
            hand(packet, message);
        };
        const bool read = readPackets(use);
        capture_.finish(use);
        report();
        return read;
    }

private:
    bool readPackets(const Capture::Use &use) {
        for (;;) {
            Frame frame;
            size_t used = 0;
            switch (container_.step(window_.text(), used, frame)) {
            case Container::Step::Packet: capture_.take(frame, use); break;
            case Container::Step::Passed: break;
            case Container::Step::Bad: problem(Problem::Unusable, container_.error()); return false;
            case Container::Step::More:
                if (window_.last()) {
                    noteRest();
                    return true;
                }
                if (!window_.fill(window_.text().size() + kChunk)) {
                    problem(Problem::Unusable, window_.error());
                    return false;
                }
                user_.bytesRead(window_.newlyTaken());
            }
            window_.drop(used);
        }
    }

    void noteRest() {
        if (!window_.text().empty()) {
            problem(Problem::Note, "the capture ends inside a packet");
        }
    }

    void hand(const Packet &packet, std::string_view message) {
        ++messages_;
        user_.message({name_, path_, message, 0, 1, message, packet});
        const Bodies found = bodiesOfMessage(message);
        for (const Problem &one : found.problems) {
            const Found place = {name_, path_, {}, 0, 1, message, packet};
            user_.problemAt(place, one.kind, escaped(one.text));
            found_ = found_ || one.kind != Problem::Note;
        }
        for (const BodyPlace &body : found.bodies) {
            const std::string_view head = message.substr(0, body.offset);
            user_.body({name_, path_, message.substr(body.offset, body.size), 0, 1, head, packet});
            found_ = true;
        }
    }

    void report() {
        for (const std::string &sentence : capture_.unread()) {
            problem(Problem::Note, sentence);
        }
        if (const size_t cut = capture_.cutMessages(); cut != 0) {
            problem(Problem::Unusable,
                    counted(cut, "SIP message is", "SIP messages are") +
                        " cut: the capture was made with a limit on the size of packets");
        } else if (messages_ == 0) {
            problem(Problem::Unusable,
                    "no SIP message is in " +
                        counted(static_cast<size_t>(capture_.packets()), "packet", "packets"));
        } else if (!found_) {
            problem(Problem::Unusable, "no SIP message carries an application/sdp body");
        }
    }

    void problem(Problem::Kind kind, const std::string &text) {
        user_.problem({kind, path_, escaped(text)});
    }

    Window &window_;
    const std::string &path_;
    const std::string &name_;
    InputUser &user_;
    Container container_;
    Capture capture_;
    size_t messages_ = 0;
    bool found_ = false; // a body or a problem that is more than a note
};

} // namespace

bool readCapture(Window &window, const std::string &path, const std::string &name,
                 InputUser &user) {
    return CaptureReader(window, path, name, user).run();
}

} // namespace cli
