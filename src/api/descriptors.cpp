// The descriptors of the records: constant data only.
//
// The addresses of the stack's descriptors are known only to the dynamic linker. `constinit` makes
// them relocations, so that a descriptor is complete before any constructor of the process runs.
#include "sdpline/sdpdescriptors.h"

#include <cstddef>

namespace {

constexpr uint32_t kPointerSize = sizeof(void *);
// An attribute's type and value: all of SDPAttr but the name.
constexpr uint32_t kAttrTypeSize = offsetof(SDPAttr, pstAttrName);
constexpr uint32_t kIpv4Size = sizeof(SDPTptAddr::unTptAddr.aucIpv4);
constexpr uint32_t kIpv6Size = sizeof(SDPTptAddr::unTptAddr.aucIpv6);

template <size_t N>
consteval SipDsmSequenceDef sequence(const SipDsmTypeDef *const (&members)[N]) {
    return {N, members};
}

// `selectors` counts the value 0, "nothing", which has no alternative.
template <size_t N>
consteval SipDsmChoiceDef choice(uint32_t selectors, const SipDsmTypeDef *const (&members)[N]) {
    return {0, selectors, members};
}

// The flag of every coded text but the precondition's. Only the stack reads it.
constexpr uint32_t kFlag = 1;

} // namespace

// ---- Numbers and strings

constinit const SipDsmTypeDef g_gstSDPProtoVersionDef = {sizeof(SdpLine::ulProtoVersion),
                                                         SIP_DSM_VERSION, nullptr};
constinit const SipDsmTypeDef g_gstSdpUnConstrainedUInt8Def = {1, SIP_DSM_UNSIGNED, nullptr};
constinit const SipDsmTypeDef g_gstSdpUnConstrainedUInt16Def = {2, SIP_DSM_UNSIGNED, nullptr};
constinit const SipDsmTypeDef g_gstSdpUnConstrainedUInt32Def = {4, SIP_DSM_UNSIGNED, nullptr};
constinit const SipDsmTypeDef g_gstSdpStringDef = {sizeof(SipString), SIP_DSM_STRING, nullptr};

constinit const SipDsmRangeDef g_gstSdpPortConstrainedInt16Def = {0, 65535};
constinit const SipDsmTypeDef g_gstSdpPortiPortDef = {4, SIP_DSM_RANGED_U32,
                                                      &g_gstSdpPortConstrainedInt16Def};
constinit const SipDsmRangeDef g_gstSdpIPFieldConstrainedInt8Def = {0, 255};
constinit const SipDsmTypeDef g_gstSdpUInt8Def = {1, SIP_DSM_RANGED_U8,
                                                  &g_gstSdpIPFieldConstrainedInt8Def};
constinit const SipDsmTypeDef g_gstdpUnConstrainedUInt32PointerDef = {
    kPointerSize, SIP_DSM_POINTER, &g_gstSdpUnConstrainedUInt32Def};

// ---- o= and c=

constinit const SipDsmCPointerDef g_gstSDPNetTypeCPointerDef = {kFlag, SDP_NETTYPE_OTHER,
                                                                SDP_NETTYPE_OTHER, &g_gstStringDef};
constinit const SipDsmTypeDef g_gstSDPNetTypeDef = {sizeof(SDPNetType), SIP_DSM_CODED_TEXT,
                                                    &g_gstSDPNetTypeCPointerDef};
constinit const SipDsmCPointerDef g_gstSDPAddrTypeCPointerDef = {
    kFlag, SDP_ADDRTYPE_OTHER, SDP_ADDRTYPE_OTHER, &g_gstStringDef};
constinit const SipDsmTypeDef g_gstSDPAddrTypeDef = {sizeof(SDPAddrType), SIP_DSM_CODED_TEXT,
                                                     &g_gstSDPAddrTypeCPointerDef};

constinit const SipDsmTypeDef *const g_gpstSDPOriginSeqElmntDef[] = {
    &g_gstSdpStringDef,  &g_gstSdpStringDef,   &g_gstSdpStringDef,
    &g_gstSDPNetTypeDef, &g_gstSDPAddrTypeDef, &g_gstSdpStringDef};
constinit const SipDsmSequenceDef g_gstSDPOriginSeqDef = sequence(g_gpstSDPOriginSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPOriginDef = {sizeof(SDPOrigin), SIP_DSM_SEQUENCE,
                                                   &g_gstSDPOriginSeqDef};

// The host addresses are described by the stack; these two are for callers.
constinit const SipDsmSetDef g_gstSdpIPV4SetDef = {kIpv4Size, &g_gstSdpUInt8Def};
constinit const SipDsmTypeDef g_gstSDPTptAddrIPV4Def = {kIpv4Size, SIP_DSM_SET,
                                                        &g_gstSdpIPV4SetDef};
constinit const SipDsmSetDef g_gstSdpIPV6SetDef = {kIpv6Size, &g_gstSdpUInt8Def};
constinit const SipDsmTypeDef g_gstSDPTptAddrIPV6Def = {kIpv6Size, SIP_DSM_SET,
                                                        &g_gstSdpIPV6SetDef};

constinit const SipDsmTypeDef *const g_gpstSDPTptAddrUnionDef[] = {&g_gstHostIPV4Def,
                                                                   &g_gstHostIPV6Def};
constinit const SipDsmChoiceDef g_gstSDPTptAddrChoiceDef =
    choice(SDP_TPTADDR_IPV6 + 1, g_gpstSDPTptAddrUnionDef);
constinit const SipDsmTypeDef g_gstSDPTptAddrDef = {sizeof(SDPTptAddr), SIP_DSM_CHOICE,
                                                    &g_gstSDPTptAddrChoiceDef};

constinit const SipDsmTypeDef *const g_gpstSDPConnectionSeqElmntDef[] = {
    &g_gstSDPNetTypeDef, &g_gstSDPAddrTypeDef, &g_gstSDPTptAddrDef, &g_gstSdpUnConstrainedUInt32Def,
    &g_gstSdpUnConstrainedUInt32Def};
constinit const SipDsmSequenceDef g_gstSDPConnectionSeqDef =
    sequence(g_gpstSDPConnectionSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPConnectionDef = {sizeof(SDPConnection), SIP_DSM_SEQUENCE,
                                                       &g_gstSDPConnectionSeqDef};

// ---- k=, t= and r=

constinit const SipDsmTypeDef *const g_gpstSDPKeySeqElmntDef[] = {&g_gstSdpStringDef};
constinit const SipDsmSequenceDef g_gstSDPKeySeqDef = sequence(g_gpstSDPKeySeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPKeyDef = {sizeof(SDPKey), SIP_DSM_SEQUENCE,
                                                &g_gstSDPKeySeqDef};

constinit const SipDsmTypeDef *const g_gpstSDPTimeUnitSeqElmntDef[] = {
    &g_gstSdpUnConstrainedUInt32Def, &g_gstSdpUnConstrainedUInt32Def};
constinit const SipDsmSequenceDef g_gstSDPTimeUnitSeqDef = sequence(g_gpstSDPTimeUnitSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPTimeUnitDef = {sizeof(SDPTimeUnit), SIP_DSM_SEQUENCE,
                                                     &g_gstSDPTimeUnitSeqDef};

constinit const SipDsmTypeDef g_gstSDPRepeatFieldDef = {sizeof(SDPRepeatField), SIP_DSM_LIST,
                                                        &g_gstSDPTimeUnitDef};
constinit const SipDsmTypeDef g_gstSDPRepeatFieldSetDef = {sizeof(SDPRepeatFieldSet), SIP_DSM_LIST,
                                                           &g_gstSDPRepeatFieldDef};
constinit const SipDsmTypeDef g_gstSDPRepeatFieldSetPointerDef = {kPointerSize, SIP_DSM_POINTER,
                                                                  &g_gstSDPRepeatFieldSetDef};

constinit const SipDsmTypeDef *const g_gpstSDPTimeFieldSeqElmntDef[] = {
    &g_gstSdpUnConstrainedUInt32Def, &g_gstSdpUnConstrainedUInt32Def,
    &g_gstSDPRepeatFieldSetPointerDef};
constinit const SipDsmSequenceDef g_gstSDPTimeFieldSeqDef = sequence(g_gpstSDPTimeFieldSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPTimeFieldDef = {sizeof(SDPTimeField), SIP_DSM_SEQUENCE,
                                                      &g_gstSDPTimeFieldSeqDef};

// ---- m=

constinit const SipDsmCPointerDef g_gstSDPMediaCPointerDef = {kFlag, SDP_MEDIA_OTHER,
                                                              SDP_MEDIA_OTHER, &g_gstSdpStringDef};
constinit const SipDsmTypeDef g_gstSDPMediaDef = {sizeof(SDPMedia), SIP_DSM_CODED_TEXT,
                                                  &g_gstSDPMediaCPointerDef};
constinit const SipDsmCPointerDef g_gstSDPMediaProtoCPointerDef = {
    kFlag, SDP_PROTO_OTHER, SDP_PROTO_OTHER, &g_gstSdpStringDef};
constinit const SipDsmTypeDef g_gstSDPMediaProtoDef = {sizeof(SDPMediaProto), SIP_DSM_CODED_TEXT,
                                                       &g_gstSDPMediaProtoCPointerDef};

constinit const SipDsmTypeDef *const g_gpstSDPRtpPayLoadsSeqElmntDef[] = {
    &g_gstSdpUnConstrainedUInt32Def, &g_gstdpUnConstrainedUInt32PointerDef};
constinit const SipDsmSequenceDef g_gstSDPRtpPayLoadsSeqDef =
    sequence(g_gpstSDPRtpPayLoadsSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPRtpPayLoadsDef = {sizeof(SDPRtpPayLoads), SIP_DSM_SEQUENCE,
                                                        &g_gstSDPRtpPayLoadsSeqDef};

constinit const SipDsmTypeDef *const g_gpstSDPMediaUnionDef[] = {
    &g_gstSDPRtpPayLoadsDef, &g_gstSdpStringDef, &g_gstSdpStringDef, &g_gstSdpStringDef};
constinit const SipDsmChoiceDef g_gstSDPMediaChoiceDef =
    choice(SDP_FMT_OTHER + 1, g_gpstSDPMediaUnionDef);
constinit const SipDsmTypeDef g_gstSDPMediaFmtDef = {sizeof(SDPMediaFmt), SIP_DSM_CHOICE,
                                                     &g_gstSDPMediaChoiceDef};

constinit const SipDsmTypeDef *const g_gpstSDPMediaFieldSeqElmntDef[] = {
    &g_gstSDPMediaDef, &g_gstSdpPortiPortDef, &g_gstSdpUnConstrainedUInt32Def,
    &g_gstSDPMediaProtoDef, &g_gstSDPMediaFmtDef};
constinit const SipDsmSequenceDef g_gstSDPMediaFieldSeqDef =
    sequence(g_gpstSDPMediaFieldSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPMediaFieldDef = {sizeof(SDPMediaField), SIP_DSM_SEQUENCE,
                                                       &g_gstSDPMediaFieldSeqDef};

// ---- a=

constinit const SipDsmTypeDef *const g_gpstSDPRtpMapAttrSeqElmntDef[] = {
    &g_gstSdpUnConstrainedUInt32Def, &g_gstSdpUnConstrainedUInt32Def, &g_gstSdpStringDef,
    &g_gstSdpUnConstrainedUInt32Def, &g_gstSdpUnConstrainedUInt32Def};
constinit const SipDsmSequenceDef g_gstSDPRtpMapAttrSeqDef =
    sequence(g_gpstSDPRtpMapAttrSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPRtpMapAttrDef = {sizeof(SDPRtpMapAttr), SIP_DSM_SEQUENCE,
                                                       &g_gstSDPRtpMapAttrSeqDef};

constinit const SipDsmTypeDef *const g_gpstSDPSilenceSuppressionSeqElmntDef[] = {
    &g_gstSdpUnConstrainedUInt32Def};
constinit const SipDsmSequenceDef g_gstSDPSilenceSuppressionSeqDef =
    sequence(g_gpstSDPSilenceSuppressionSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPSilenceSuppressionDef = {
    sizeof(SDPSilenceSuppression), SIP_DSM_SEQUENCE, &g_gstSDPSilenceSuppressionSeqDef};

constinit const SipDsmTypeDef *const g_gpstSDPIpBcpSeqElmntDef[] = {
    &g_gstSdpUnConstrainedUInt8Def, &g_gstSdpUnConstrainedUInt8Def, &g_gstSdpUnConstrainedUInt16Def,
    &g_gstSdpUnConstrainedUInt32Def};
constinit const SipDsmSequenceDef g_gstSDPIpBcpSeqDef = sequence(g_gpstSDPIpBcpSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPIpBcpDef = {sizeof(SDPIpBcp), SIP_DSM_SEQUENCE,
                                                  &g_gstSDPIpBcpSeqDef};

constinit const SipDsmTypeDef *const g_gpstSDPRsrcMgmtStatusSeqElmntDef[] = {
    &g_gstSdpUnConstrainedUInt8Def, &g_gstSdpUnConstrainedUInt32Def,
    &g_gstSdpUnConstrainedUInt32Def, &g_gstSdpUnConstrainedUInt32Def};
constinit const SipDsmSequenceDef g_gstSDPRsrcMgmtStatusSeqDef =
    sequence(g_gpstSDPRsrcMgmtStatusSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPRsrcMgmtStatusDef = {
    sizeof(SDPRsrcMgmtStatus), SIP_DSM_SEQUENCE, &g_gstSDPRsrcMgmtStatusSeqDef};

constinit const SipDsmCPointerDef g_gstSDPPreconditionCPointerDef = {
    0, SDP_PRECONDITION_OTHER, SDP_PRECONDITION_OTHER, &g_gstSdpStringDef};
constinit const SipDsmTypeDef g_gstSDPPreconditionSDef = {
    sizeof(SDPPreconditionS), SIP_DSM_CODED_TEXT, &g_gstSDPPreconditionCPointerDef};

// Ten entries for forty types. Programs are compiled with the table's present size; the library
// itself never passes it to the generic services.
constinit const SipDsmTypeDef *const g_gpstSDPAttrUnionDef[] = {&g_gstSDPRtpMapAttrDef,
                                                                &g_gstSdpUnConstrainedUInt32Def,
                                                                &g_gstSdpUnConstrainedUInt32Def,
                                                                &g_gstSdpUnConstrainedUInt32Def,
                                                                &g_gstSdpUnConstrainedUInt32Def,
                                                                &g_gstSdpUnConstrainedUInt32Def,
                                                                &g_gstSDPSilenceSuppressionDef,
                                                                &g_gstSdpStringDef,
                                                                &g_gstSDPIpBcpDef,
                                                                &g_gstSdpUnConstrainedUInt32Def};
constinit const SipDsmChoiceDef g_gstSDPAttrUnionChoiceDef =
    choice(SDP_ATTR_SETUP + 1, g_gpstSDPAttrUnionDef);
constinit const SipDsmTypeDef g_gstSDPAttrTypeDef = {kAttrTypeSize, SIP_DSM_CHOICE,
                                                     &g_gstSDPAttrUnionChoiceDef};

constinit const SipDsmTypeDef *const g_gpstSDPAttrSeqElmntDef[] = {&g_gstSDPAttrTypeDef,
                                                                   &g_gstStringPointerDef};
constinit const SipDsmSequenceDef g_gstSDPAttrSeqDef = sequence(g_gpstSDPAttrSeqElmntDef);
constinit const SipDsmTypeDef g_gstSDPAttrDef = {sizeof(SDPAttr), SIP_DSM_SEQUENCE,
                                                 &g_gstSDPAttrSeqDef};

// ---- The table of lines

constinit const SipDsmTypeDef *const g_gpstSdpLineDef[] = {
    &g_gstSDPProtoVersionDef, // v=
    &g_gstSDPConnectionDef,   // c=
    &g_gstSDPOriginDef,       // o=
    &g_gstSDPMediaFieldDef,   // m=
    &g_gstSDPAttrDef,         // a=
    &g_gstSDPTimeFieldDef,    // t=
    &g_gstSDPRepeatFieldDef,  // r=
    &g_gstStringDef,          // i=
    &g_gstStringDef,          // s=
    &g_gstStringDef,          // u=
    &g_gstStringDef,          // e=
    &g_gstStringDef,          // p=
    &g_gstStringDef,          // b=
    &g_gstStringDef,          // z=
    &g_gstSDPKeyDef,          // k=
};
