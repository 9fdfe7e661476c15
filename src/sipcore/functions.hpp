// The services as libsipcore defines them, for libsdpline to compare with what their dynamic
// symbols and function pointers lead to. Where they are these functions, it may do in place what
// they do; where a program has put a service of its own in the place of one, that one is called.
//
// The number in the record's name is that of the records and rules that both libraries then share:
// those of stringbuffer.hpp and block.hpp. Who changes one of them raises it, and libraries of
// different builds make every call.
#pragma once

#include "sdpline/sipcore.h"
#include "sipcore/asan.hpp"

struct SipCoreBuiltin {
    decltype(&SipSbCopyChar) copyChar;
    decltype(&SipSbCopyConstString) copyConstString;
    decltype(&SipSbCopyString) copyString;
    decltype(&SipSbCopyLong) copyLong;
    // Grows a string buffer before an append would.
    uint32_t (*makeRoom)(SipStringBuffer *buffer, uint32_t size);
    decltype(&memcpy_s) copy;
    decltype(&memset_s) fill;
    decltype(SDPMemCp::pfnAlloc) blockAlloc;
    // The same, but that memory holds anything.
    decltype(SDPMemCp::pfnAlloc) blockTake;
    decltype(SDPMemCp::pfnFree) blockFree;
    decltype(SDPMemCp::pfnAlloc) systemAlloc;
    decltype(SDPMemCp::pfnFree) systemFree;
    bool fillsFreed; // blockFree fills the memory, which takes the call
    decltype(&SipDsmCopyGeneralField) copyField;
    decltype(&SipSmCopyString) copyText;
    decltype(&SipSmCloneString) cloneText;
};

#if defined(SIPCORE_ASAN) // whose blocks tell the sanitizer what is in use
#define SIPCORE_BUILTIN g_stSipCoreBuiltin5Asan
#else
#define SIPCORE_BUILTIN g_stSipCoreBuiltin5
#endif

// A service under a name that no program can take over.
#define SIPCORE_ALIAS(service, alias_)                                                             \
    __attribute__((alias(#service), visibility("hidden"))) decltype(service) alias_;

extern "C" {
decltype(memcpy_s) sipcoreCopy;
decltype(memset_s) sipcoreFill;
decltype(SipDsmCopyGeneralField) sipcoreCopyField;
decltype(SipSmCopyString) sipcoreCopyText;
decltype(SipSmCloneString) sipcoreCloneText;
}
