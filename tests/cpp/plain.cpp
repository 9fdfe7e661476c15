// The API in a program without exceptions and without run-time type information.
#include "cpp/plain.hpp"

#include "sdpline/sdpline.hpp"

#if defined(__cpp_exceptions) || defined(__cpp_rtti)
#error "this file is compiled without exceptions and run-time types"
#endif

namespace cpptest {

std::string answerWithoutExceptions(const std::string &offer) {
    auto body = sdpline::Body::decode(offer);
    if (!body) {
        return body.error().message();
    }
    for (const sdpline::MediaEditor &media : body->media()) {
        if (const auto done = media.attributes().setDirection(sdpline::Direction::RecvOnly);
            !done) {
            return done.error().message();
        }
    }
    auto copy = body->clone();
    return copy ? copy->encode().valueOr("") : copy.error().message();
}

} // namespace cpptest
