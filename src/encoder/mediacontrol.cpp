// How the values of the T.38 flags, a=silenceSupp, a=ecan and a=ipbcp are written.
#include "encoder/encoder.hpp"

namespace sdpline {

// [ ":" value ], where the refused ":" is no failure
SDPResult writeSwitch(Output &out, const SDPAttr &attr) {
    if (g_gstSdpT38OptCfg != SDP_T38_STYLE_VALUE) {
        return 0;
    }
    out.character(':');
    return out.number(attr.unAttrValue.ulValue);
}

// ( "on" / "off" ) params, which bring their own blank
SDPResult writeSilenceSupp(Output &out, const SDPAttr &attr) {
    const SDPSilenceSuppression &silence = attr.unAttrValue.stSilenceSupp;
    appendKnownWord(out, kSwitchWords, silence.bOn != 0 ? 1 : 0);
    return out.text(&silence.strParams);
}

// [ "fb" / "f" / "b" ] ( " on" / " off" ) params
SDPResult writeEcan(Output &out, const SDPAttr &attr) {
    const SDPEcan &ecan = attr.unAttrValue.stEcan;
    appendKnownWord(out, kEcanDirWords, ecan.enEcanDir);
    appendKnownWord(out, kEcanSwitchWritten, ecan.bOn != 0 ? 1 : 0);
    return out.text(&ecan.strParams);
}

// version ( " Request" / " Accepted" / " Confused" / " Rejected" )
SDPResult writeIpBcp(Output &out, const SDPAttr &attr) {
    const SDPIpBcp &ipBcp = attr.unAttrValue.stIpBcp;
    if (const uint32_t result = out.number(ipBcp.ucVersion)) {
        return result;
    }
    return appendWord(out, kIpBcpWritten, ipBcp.ucType, Check::IpBcpTypeValue);
}

} // namespace sdpline
