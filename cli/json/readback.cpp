#include "json/readback.hpp"

#include <algorithm>

#include "text/strings.hpp"
#include "json/json.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

// Restores at its end the settings of the library that are changed to write and read a body.
class Settings {
public:
    Settings()
        : t38Style_(SdpGetT380ptCfg()), avpf_(SdpGetSupMedProtoRtpAvpf()),
          rtpFamily_(SdpGetSupMedProtoRtpFamily()) {}
    ~Settings() {
        SdpSetT38OptCfg(t38Style_);
        SdpSetSupMedProtoRtpAvpf(avpf_);
        SdpSetSupMedProtoRtpFamily(rtpFamily_);
    }
    Settings(const Settings &) = delete;
    Settings &operator=(const Settings &) = delete;

    // Sets those with which the decoder would make these records.
    static void readAs(const SdpLine &line) {
        const auto hasMedia = [&line](auto isSuch) {
            const SDPMediaSet &media = line.stMediaSet;
            return std::any_of(
                media.ppstMediaDescs, media.ppstMediaDescs + media.ulNoOfMediaDescs,
                [&](const SDPMediaDesc *desc) { return isSuch(desc->stMediaField); });
        };
        SdpSetSupMedProtoRtpAvpf(hasMedia([](const SDPMediaField &media) {
            return media.stProto.enProto == SDP_PROTO_RTP_AVPF;
        }));
        SdpSetSupMedProtoRtpFamily(hasMedia([](const SDPMediaField &media) {
            return media.stProto.enProto == SDP_PROTO_OTHER &&
                   media.stMediaFmt.enFmtType == SDP_FMT_RTP_PAYLOADS;
        }));
    }

private:
    uint32_t t38Style_;
    uint32_t avpf_;
    uint32_t rtpFamily_;
};

std::string shown(const Json &value) {
    return value.dump(-1, ' ', true, Json::error_handler_t::replace);
}

// The first difference of the second document, as "/media/0/port: ..."; empty where there is none.
std::string differenceOf(const Json &wanted, const Json &got, const std::string &path) {
    if (wanted.type() != got.type() || !wanted.is_structured()) {
        return wanted == got ? "" : path + ": would be read back as " + shown(got);
    }
    if (wanted.is_array()) {
        for (size_t i = 0; i < std::max(wanted.size(), got.size()); ++i) {
            const std::string item = path + '/' + std::to_string(i);
            if (i >= wanted.size() || i >= got.size()) {
                return item + (i >= got.size() ? ": would be lost" : ": would be added");
            }
            if (std::string found = differenceOf(wanted[i], got[i], item); !found.empty()) {
                return found;
            }
        }
        return "";
    }
    for (const auto &[key, value] : wanted.items()) {
        const auto found = got.find(key);
        const std::string inner = path + '/' + key;
        std::string problem =
            found == got.end() ? inner + ": would be lost" : differenceOf(value, *found, inner);
        if (!problem.empty()) {
            return problem;
        }
    }
    for (const auto &[key, value] : got.items()) {
        if (!wanted.contains(key)) {
            return path + '/' + key + ": would be read back as " + shown(value);
        }
    }
    return "";
}

// Why the decoder refuses the text, with the line of the failure.
std::string refusalOf(const std::string &text, const sdpline::Error &error) {
    if (text.size() > SdpGetMaxBodySize()) {
        return "the body would be " + std::to_string(text.size()) + " bytes long, more than " +
               std::to_string(SdpGetMaxBodySize());
    }
    const std::string why = "would be refused: " + std::string(error.sentence);
    if (error.line == 0) {
        return why;
    }
    const size_t begin = error.offset - (error.column - 1);
    const std::string line = text.substr(begin, text.find_first_of("\r\n", begin) - begin);
    return "line " + std::to_string(error.line) + ", \"" + line + "\": " + why;
}

// Why the text does not decode to the document; empty where it does.
std::string problemOf(std::string text, const SdpLine &line, const Json &wanted) {
    // The decoder does not end a line at a CR alone.
    if (view(SdpGetCrlfString(0)) == "\r") {
        std::replace(text.begin(), text.end(), '\r', '\n');
    }
    Settings::readAs(line);
    sdpline::Result<sdpline::Body> body = sdpline::Body::decode(text);
    return body ? differenceOf(wanted, jsonOf(*body->record()), "") : refusalOf(text, body.error());
}

} // namespace

std::optional<std::string> textOfJson(const nlohmann::json &document, std::string &error) {
    std::optional<sdpline::Body> body = bodyOf(document, error);
    if (!body) {
        return std::nullopt;
    }
    const Settings settings;
    const SdpLine &line = *body->record();
    const Json wanted = jsonOf(*body->record());
    const sdpline::Result<std::string> text = body->encode();
    if (!text) {
        error = "the body cannot be written: " + text.error().message();
        return std::nullopt;
    }
    error = problemOf(*text, line, wanted);
    if (!error.empty() && SdpGetT380ptCfg() == SDP_T38_STYLE_FLAG) {
        SdpSetT38OptCfg(SDP_T38_STYLE_VALUE);
        const sdpline::Result<std::string> withValues = body->encode();
        if (withValues && problemOf(*withValues, line, wanted).empty()) {
            error.clear();
            return *withValues;
        }
    }
    return error.empty() ? std::optional(*text) : std::nullopt;
}

} // namespace cli
