// The o= line and its version.
#include "negotiate/origin.hpp"

#include "negotiate/draft.hpp"

namespace sdpline::negotiate {

namespace {

std::string_view withoutZeros(std::string_view digits) {
    const size_t begin = digits.find_first_not_of('0');
    return begin < digits.size() ? after(digits, begin) : std::string_view("0");
}

} // namespace

// The nines at the end become zeros, and the digit before them is incremented: 199 becomes 200.
void writeNext(std::string_view version, Text &text) {
    const size_t rising = version.find_last_not_of('9');
    const size_t nines = rising < version.size() ? version.size() - rising - 1 : version.size();
    if (rising < version.size()) {
        const char digit = static_cast<char>(version[rising] + 1);
        text << firstBytes(version, rising) << std::string_view(&digit, 1);
    } else {
        text << "1";
    }
    for (size_t i = 0; i < nines; ++i) {
        text << "0";
    }
}

bool isNext(std::string_view version, std::string_view previous) {
    Text next;
    writeNext(previous, next);
    return withoutZeros(next.view()) == withoutZeros(version);
}

bool sameOrigin(const SDPOrigin &one, const SDPOrigin &two) {
    return viewOf(one.strUserName) == viewOf(two.strUserName) &&
           viewOf(one.strSessionId) == viewOf(two.strSessionId) &&
           one.stNetType.enNetType == two.stNetType.enNetType &&
           one.stAddrType.enAddrType == two.stAddrType.enAddrType &&
           viewOf(one.strAddress) == viewOf(two.strAddress);
}

Reason continueOrigin(const SdpLine &previous, SdpLine &body, Report &report) {
    const std::string_view text = textOf(body, report.arena);
    if (!text.empty() && textOf(previous, report.arena) == text) {
        report.add(Reason::VersionKept, kSession, viewOf(previous.stOrigin.strSessionVersion));
        return Reason::None;
    }
    Text version;
    writeNext(viewOf(previous.stOrigin.strSessionVersion), version);
    const SipString next = lent(version.view());
    SipString fresh = {};
    if (SipSmCopyString(body.pstMemCp, &next, &fresh) != 0) {
        return Reason::NoMemory;
    }
    SipSmClearString(body.pstMemCp, &body.stOrigin.strSessionVersion);
    body.stOrigin.strSessionVersion = fresh;
    report.add(Reason::VersionRaised, kSession, version);
    return Reason::None;
}

} // namespace sdpline::negotiate
