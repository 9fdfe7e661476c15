#include "output/maskedorigin.hpp"

#include "redact/linemasks.hpp"
#include "text/escape.hpp"

namespace cli {

namespace {

// "3c26@host": an identifier of the call, and a host that bodies may name too.
std::string maskedCallId(const std::string &callId, Masks &masks) {
    const size_t at = callId.find('@');
    const std::string local = callId.substr(0, at);
    std::string mask = local.empty() ? "" : masks.of(Mask::Word, local);
    if (at != std::string::npos) {
        mask += '@' + addressMask(std::string_view(callId).substr(at + 1), masks);
    }
    return mask;
}

// "sip:alice@example.com:5060;user=phone": port and parameters are dropped.
std::string maskedUri(const std::string &uri, Masks &masks) {
    const size_t scheme = std::min(uri.find(':'), uri.size());
    const size_t at = uri.find('@', scheme);
    const size_t user = std::min(scheme + 1, uri.size());
    const size_t host = at == std::string::npos ? user : at + 1;
    std::string mask = uri.substr(0, user);
    if (host > user) {
        mask += masks.of(Mask::User, std::string_view(uri).substr(user, host - 1 - user)) + '@';
    }
    const std::string_view rest = std::string_view(uri).substr(host);
    const size_t bracket = rest.starts_with('[') ? rest.find(']') : 0;
    const size_t end = std::min(rest.find_first_of(":;?", bracket), rest.size());
    std::string_view address = rest.substr(0, end);
    if (address.starts_with('[') && address.ends_with(']')) {
        return mask + '[' + addressMask(address.substr(1, address.size() - 2), masks) + ']';
    }
    return address.empty() ? mask : mask + addressMask(address, masks);
}

} // namespace

Origin originOf(const Found &body, Redactor *redactor) {
    Origin origin = originOf(body.packet, body.head);
    if (redactor != nullptr) {
        Masks &masks = redactor->masks();
        for (std::string *const address : {&origin.packet.source, &origin.packet.destination}) {
            *address = address->empty() ? "" : addressMask(*address, masks);
        }
        origin.callId = maskedCallId(origin.callId, masks);
        origin.from = maskedUri(origin.from, masks);
        origin.to = maskedUri(origin.to, masks);
    }
    return origin;
}

std::string packetName(const Found &body, Redactor *redactor) {
    if (body.packet.frame == 0) {
        return "";
    }
    const Origin origin = originOf(body, redactor);
    std::string text = "frame " + std::to_string(origin.packet.frame) + " (" +
                       origin.packet.source + " > " + origin.packet.destination;
    if (!origin.message.empty()) {
        text += ", " + escaped(origin.message);
    }
    if (!origin.callId.empty()) {
        text += ", Call-ID " + escaped(origin.callId);
    }
    return text + ')';
}

std::string placeName(const Found &body, Redactor *redactor) {
    const std::string packet = packetName(body, redactor);
    return packet.empty() ? body.name : body.name + ':' + packet;
}

nlohmann::ordered_json jsonOf(const Origin &origin) {
    nlohmann::ordered_json json = nlohmann::ordered_json::object();
    const Packet &packet = origin.packet;
    if (packet.frame != 0) {
        json = {{"frame", packet.frame},
                {"time", timeText(packet.time)},
                {"source", packet.source},
                {"sourcePort", packet.sourcePort},
                {"destination", packet.destination},
                {"destinationPort", packet.destinationPort},
                {"transport", packet.transport}};
    }
    json["message"] = origin.message;
    json["callId"] = origin.callId;
    json["cseq"] = origin.cseq;
    json["from"] = origin.from;
    json["to"] = origin.to;
    return json;
}

} // namespace cli
