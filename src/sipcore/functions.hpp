// The functions that libsipcore defines as services. libsdpline compares them with the functions
// that the dynamic symbols and the function pointers of a memory control lead to. If they are the
// same, it may do their work in place; a service that a program replaced is called.
//
// The record's name ends in the version of the layouts and rules that both libraries share:
// stringbuffer.hpp and block.hpp. A change of these must raise the number: then a libsdpline and a
// libsipcore of different versions call every service.
#pragma once

#include "sdpline/sipcore.h"
#include "sipcore/asan.hpp"

struct SipCoreBuiltin {
    decltype(&SipSbCopyChar) copyChar;
    decltype(&SipSbCopyConstString) copyConstString;
    decltype(&SipSbCopyString) copyString;
    decltype(&SipSbCopyLong) copyLong;
    // Grows a string buffer in advance, as an append would.
    uint32_t (*reserve)(SipStringBuffer *buffer, uint32_t size);
    decltype(&memcpy_s) copy;
    decltype(&memset_s) fill;
    decltype(SDPMemCp::pfnAlloc) blockAlloc;
    // The same without zeroing.
    decltype(SDPMemCp::pfnAlloc) blockTake;
    decltype(SDPMemCp::pfnFree) blockFree;
    decltype(SDPMemCp::pfnAlloc) systemAlloc;
    decltype(SDPMemCp::pfnFree) systemFree;
    bool fillsFreed; // blockFree fills what is freed, so it must be called
    decltype(&SipDsmCopyGeneralField) copyField;
    decltype(&SipSmCopyString) copyText;
    decltype(&SipSmCloneString) cloneText;
};

#if defined(SIPCORE_ASAN) // a library that poisons memory works only with one that does so too
#define SIPCORE_BUILTIN g_stSipCoreBuiltin5Asan
#else
#define SIPCORE_BUILTIN g_stSipCoreBuiltin5
#endif

// A hidden second name of a service, which no program can replace.
#define SIPCORE_ALIAS(service, alias_)                                                             \
    __attribute__((alias(#service), visibility("hidden"))) decltype(service) alias_;

extern "C" {
decltype(memcpy_s) sipcoreCopy;
decltype(memset_s) sipcoreFill;
decltype(SipDsmCopyGeneralField) sipcoreCopyField;
decltype(SipSmCopyString) sipcoreCopyText;
decltype(SipSmCloneString) sipcoreCloneText;
}
