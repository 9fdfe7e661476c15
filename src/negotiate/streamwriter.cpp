// Writing the lines of an accepted stream.
#include "negotiate/answer.hpp"

#include <algorithm>

#include "negotiate/attributes.hpp"
#include "negotiate/direction.hpp"
#include "negotiate/feedback.hpp"
#include "negotiate/precondition.hpp"
#include "negotiate/t38.hpp"

namespace sdpline::negotiate {

void StreamWriter::run() {
    mediaLine();
    describeSides({input_.offer, offered_, pairing_.offered.kinds},
                  {input_.local, ours_, pairing_.ours.kinds}, stream_);
    stream_.enDirection = directionOf(flows());
    formats();
    acceptance();
    if (pairing_.chosenCount != 0 && sameWord(pairing_.offered.items[0].name, "t38")) {
        answerFax(offered_, ours_, match_.stream, report_, draft_.attributes);
    }
    const bool others = (pairing_.offered.kinds & kOtherKinds) != 0;
    if (others) {
        answerFeedback(offered_, ours_, pairing_, match_.stream, report_, draft_.attributes);
    }
    declared();
    multicastLines();
    transport();
    if (others) {
        multiplexing();
    }
    if (((pairing_.offered.kinds | pairing_.ours.kinds) & kPreconditionKinds) != 0) {
        preconditions();
    }
    direction();
    notes();
}

// The media word, the protocol and the payload numbers are those of the offer.
void StreamWriter::mediaLine() {
    SDPMediaField &line = draft_.line;
    line = offered_.stMediaField;
    line.ulPort = match_.port;
    const uint32_t theirs = std::max(offered_.stMediaField.ulNoOfPorts, uint32_t{1});
    const uint32_t own = std::max(ours_.stMediaField.ulNoOfPorts, uint32_t{1});
    line.ulNoOfPorts = match_.multicast ? theirs : std::min(theirs, own);
    if (!sameProtocol(offered_, ours_)) {
        line.stProto = ours_.stMediaField.stProto;
        report_.add(Reason::AvpForAvpf, match_.stream, protocolWord(ours_));
    }
    draft_.connection = match_.multicast ? connectionOf(input_.offer, offered_)
                                         : static_cast<const SDPConnection *>(ours_.pstConnection);
    draft_.bandwidths = match_.multicast ? offered_.pstBandwidthList : ours_.pstBandwidthList;
    if (line.stMediaFmt.enFmtType != SDP_FMT_RTP_PAYLOADS) {
        return; // one word, which is common
    }
    auto *const numbers = report_.arena.make<uint32_t>(pairing_.chosenCount);
    for (uint32_t i = 0; numbers != nullptr && i < pairing_.chosenCount; ++i) {
        numbers[i] = pairing_.offered.items[pairing_.chosen[i]].number;
    }
    line.stMediaFmt.unMediaFmt.stRtpPayLoads = {numbers != nullptr ? pairing_.chosenCount : 0,
                                                numbers};
}

void StreamWriter::formats() {
    SdpNegotiateFormat **const all = makeFormats(report_.arena, pairing_.chosenCount);
    if (all == nullptr) {
        return;
    }
    for (uint32_t i = 0; i < pairing_.chosenCount; ++i) {
        format(pairing_.chosen[i], *all[i]);
    }
    stream_.ulNoOfFormats = pairing_.chosenCount;
    stream_.ppstFormats = all;
}

void StreamWriter::format(uint32_t place, SdpNegotiateFormat &target) {
    const Format &offered = pairing_.offered.items[place];
    const Format &ours = pairing_.ourOf(place);
    target.ulSend = target.ulReceive = offered.number;
    describeFormat(report_.arena, offered, target);
    if (offered.number == SDP_NEGOTIATE_NONE) {
        return;
    }
    mapLine(offered, ours);
    target.strSendParameters = lent(report_.arena.copy(offered.parameters));
    target.strReceiveParameters = lent(parameterLine(place, offered, ours));
}

void StreamWriter::mapLine(const Format &offered, const Format &ours) {
    const SDPAttr *const source = offered.map != nullptr ? offered.map : ours.map;
    if (source != nullptr) {
        SDPAttr line = *source;
        line.unAttrValue.stRtpMap.ulPayloadType = offered.number;
        add(line);
    }
}

// Adds our a=fmtp line with the offer's number; returns its parameters.
std::string_view StreamWriter::parameterLine(uint32_t place, const Format &offered,
                                             const Format &ours) {
    Text parameters;
    writeParameters(pairing_, place, parameters);
    if (parameters.empty()) {
        return {};
    }
    if (parameters.view().size() > ours.parameters.size() && offered.role == Role::Codec) {
        report_.add(Reason::ModeSetTaken, match_.stream, *parameter(offered.parameters, "mode-set"),
                    offered.number);
    }
    Text text;
    text << offered.number << " " << parameters.view();
    const SDPAttr line = textLine(report_.arena, SDP_ATTR_FMTP, text);
    add(line);
    const std::string_view kept = viewOf(line.unAttrValue.strValue);
    return after(kept, text.view().size() - parameters.view().size());
}

bool StreamWriter::passes(const SDPAttr &attribute) {
    if (otherName(attribute) == "rtcp") {
        return match_.port == ours_.stMediaField.ulPort; // it is about that port
    }
    if (match_.multicast && attribute.ulAttrType == SDP_ATTR_PTIME) {
        return find(attributesOf(offered_.pstAttrList), uint32_t{SDP_ATTR_PTIME}) == nullptr;
    }
    return passesThrough(attribute, [this](std::string_view name) {
        std::optional<bool> &known = name == "fingerprint" ? hasDtls_ : hasIce_;
        if (!known) {
            known = findFor(input_.offer, offered_, name) != nullptr;
        }
        return *known;
    });
}

void StreamWriter::declared() {
    for (const SDPAttr *const attribute : attributesOf(ours_.pstAttrList)) {
        if (passes(*attribute)) {
            add(*attribute);
        }
    }
}

// All sides have the same view of a multicast stream (RFC 3264 section 6.2).
void StreamWriter::multicastLines() {
    if (!match_.multicast) {
        return;
    }
    report_.add(Reason::Multicast, match_.stream);
    const AttributeSpan theirs = attributesOf(offered_.pstAttrList);
    if (const SDPAttr *const ptime = find(theirs, uint32_t{SDP_ATTR_PTIME})) {
        add(*ptime);
        stream_.ulReceivePTime = ptime->unAttrValue.ulValue;
    }
}

void StreamWriter::transport() {
    Arena &arena = report_.arena;
    if (match_.crypto.offered != nullptr) {
        Text text;
        writeCrypto(match_.crypto, text);
        add(otherLine(arena, "crypto", text));
        std::string_view suite = text.view();
        takeWord(suite);
        report_.add(Reason::CryptoChosen, match_.stream, takeWord(suite));
    }
    if (match_.setup.mode == 0) {
        return;
    }
    SDPAttr line = flagLine(SDP_ATTR_SETUP);
    line.unAttrValue.enT120Mode = match_.setup.mode;
    add(line);
    report_.add(Reason::SetupChosen, match_.stream, wordOf(SetupRole{match_.setup.mode}));
    // The side that opens a TCP connection has no port of its own (RFC 4145 section 4.1).
    if (match_.setup.mode == SDP_T120_ACTIVE && isTcp(offered_)) {
        draft_.line.ulPort = kDiscardPort;
    }
    const Sides sides = {input_.offer, offered_, input_.local, ours_};
    const MediaSpan before = input_.previous != nullptr ? mediaOf(*input_.previous) : MediaSpan();
    const std::string_view connection =
        chooseConnection(sides, match_.stream < before.size() ? before[match_.stream] : nullptr);
    if (!connection.empty()) {
        add(otherLine(arena, "connection", Text() << connection));
    }
}

void StreamWriter::multiplexing() {
    for (const std::string_view name : {"rtcp-mux", "rtcp-rsize"}) {
        if (offeredLine(name) == nullptr) {
            continue;
        }
        if (ourLine(name) != nullptr) {
            add(otherFlag(report_.arena, name));
        } else if (name == "rtcp-mux") {
            report_.add(Reason::RtcpMuxDropped, match_.stream);
        } else {
            report_.add(Reason::AttributeDropped, match_.stream, name);
        }
    }
}

void StreamWriter::preconditions() {
    const PreconditionAnswer answer =
        answerPreconditions(offered_, ours_, match_.stream, report_, &draft_.attributes);
    stream_.enPreconditions = answer.state;
    stream_.bConfirm = answer.confirm ? 1 : 0;
}

// The offered flows as we see them, restricted to ours (RFC 3264 section 6.1); for a multicast
// stream the offered ones.
uint32_t StreamWriter::flows() const {
    const uint32_t theirs = flowsOf(theirDirection_);
    return match_.multicast ? theirs : turned(theirs) & flowsOf(input_.local, ours_);
}

// Without a direction line of the offer, sendrecv is not written: it is the default.
void StreamWriter::direction() {
    if (stream_.enDirection != SDP_ATTR_SENDRECV || theirDirection_ != nullptr) {
        add(flagLine(stream_.enDirection));
    }
}

void StreamWriter::acceptance() {
    if (!report_.wanted()) {
        return;
    }
    Text text;
    writeFormats(stream_, text);
    text << "; " << directionWord(flowsOf(stream_.enDirection));
    report_.add(Reason::Accepted, match_.stream, text);
    if (stream_.bPeerHeld != 0) {
        report_.add(Reason::Held, match_.stream);
    }
}

void StreamWriter::notes() {
    if (!report_.wanted()) {
        return;
    }
    eachNumber(offered_, [this](uint32_t number) {
        if (number > kHighestPayload) {
            report_.add(Reason::FormatNumberTooHigh, match_.stream, Text() << number, number);
        }
    });
    for (uint32_t i = 0; i < pairing_.offered.count; ++i) {
        if (!pairing_.isChosen(i)) {
            const Format &format = pairing_.offered.items[i];
            Text detail;
            detail << (format.defined ? format.name : std::string_view("number"));
            if (format.number != SDP_NEGOTIATE_NONE) {
                detail << " " << format.number;
            }
            report_.add(pairing_.leftOut[i], match_.stream, detail, format.number);
        }
    }
    if ((pairing_.offered.kinds & kOtherKinds) == 0) {
        return;
    }
    for (const SDPAttr *const attribute : attributesOf(offered_.pstAttrList)) {
        const Handling handling = handlingOf(*attribute);
        if (handling == Handling::Unknown || handling == Handling::Offered) {
            report_.add(Reason::AttributeDropped, match_.stream, otherName(*attribute));
        }
    }
}

} // namespace sdpline::negotiate
