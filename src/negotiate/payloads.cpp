// The static payload numbers, a row for each number.
#include "negotiate/payloads.hpp"

#include <cstddef>
#include <iterator>

namespace sdpline::negotiate {

namespace {

constexpr StaticCodec kNoCodec = {{}, 0, 0};

constexpr StaticCodec kCodecs[] = {
    /*  0 */ {"PCMU", 8000, 1},
    /*  1 */ kNoCodec,
    /*  2 */ kNoCodec,
    /*  3 */ {"GSM", 8000, 1},
    /*  4 */ {"G723", 8000, 1},
    /*  5 */ {"DVI4", 8000, 1},
    /*  6 */ {"DVI4", 16000, 1},
    /*  7 */ {"LPC", 8000, 1},
    /*  8 */ {"PCMA", 8000, 1},
    /*  9 */ {"G722", 8000, 1},
    /* 10 */ {"L16", 44100, 2},
    /* 11 */ {"L16", 44100, 1},
    /* 12 */ {"QCELP", 8000, 1},
    /* 13 */ {"CN", 8000, 1},
    /* 14 */ {"MPA", 90000, 1},
    /* 15 */ {"G728", 8000, 1},
    /* 16 */ {"DVI4", 11025, 1},
    /* 17 */ {"DVI4", 22050, 1},
    /* 18 */ {"G729", 8000, 1},
    /* 19 */ kNoCodec,
    /* 20 */ kNoCodec,
    /* 21 */ kNoCodec,
    /* 22 */ kNoCodec,
    /* 23 */ kNoCodec,
    /* 24 */ kNoCodec,
    /* 25 */ {"CelB", 90000, 1},
    /* 26 */ {"JPEG", 90000, 1},
    /* 27 */ kNoCodec,
    /* 28 */ {"nv", 90000, 1},
    /* 29 */ kNoCodec,
    /* 30 */ kNoCodec,
    /* 31 */ {"H261", 90000, 1},
    /* 32 */ {"MPV", 90000, 1},
    /* 33 */ {"MP2T", 90000, 1},
    /* 34 */ {"H263", 90000, 1},
};

} // namespace

const StaticCodec &staticCodec(uint32_t number) {
    return number < std::size(kCodecs) ? kCodecs[number] : kNoCodec;
}

} // namespace sdpline::negotiate
