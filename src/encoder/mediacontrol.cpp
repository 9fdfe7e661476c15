// Writing the values of the T.38 flags, a=silenceSupp, a=ecan and a=ipbcp.
#include "encoder/writers.hpp"

namespace sdpline {

// [ ":" value ]. A refused ":" is ignored.
SDPResult writeSwitch(auto &out, const SDPAttr &attr) {
    if (g_gstSdpT38OptCfg != SDP_T38_STYLE_VALUE) {
        return 0;
    }
    out.character(':');
    return out.number(attr.unAttrValue.ulValue);
}

// ( "on" / "off" ) params, which begin with their space
SDPResult writeSilenceSupp(auto &out, const SDPAttr &attr) {
    const SDPSilenceSuppression &silence = attr.unAttrValue.stSilenceSupp;
    appendKnownWord<kSwitchWords>(out, silence.bOn != 0 ? 1 : 0);
    return out.text(&silence.strParams);
}

// [ "fb" / "f" / "b" ] ( " on" / " off" ) params
SDPResult writeEcan(auto &out, const SDPAttr &attr) {
    const SDPEcan &ecan = attr.unAttrValue.stEcan;
    appendKnownWord<kEcanDirWords>(out, ecan.enEcanDir);
    appendKnownWord<kEcanSwitchWritten>(out, ecan.bOn != 0 ? 1 : 0);
    return out.text(&ecan.strParams);
}

// version ( " Request" / " Accepted" / " Confused" / " Rejected" )
SDPResult writeIpBcp(auto &out, const SDPAttr &attr) {
    const SDPIpBcp &ipBcp = attr.unAttrValue.stIpBcp;
    if (const uint32_t result = out.number(ipBcp.ucVersion)) {
        return result;
    }
    return appendWord<kIpBcpWritten>(out, ipBcp.ucType, Check::IpBcpTypeValue);
}

SDPLINE_LINE_WRITER(writeSwitch, const SDPAttr &);
SDPLINE_LINE_WRITER(writeSilenceSupp, const SDPAttr &);
SDPLINE_LINE_WRITER(writeEcan, const SDPAttr &);
SDPLINE_LINE_WRITER(writeIpBcp, const SDPAttr &);

} // namespace sdpline
