// SDPLINE_INLINE forces the inlining of small functions of parsers and copiers, so that the
// contexts, kinds and checks that their callers pass are constants, and positions stay in
// registers. It is used only where measured instruction counts fall.
#pragma once

// A build that counts branches for coverage defines it as plain inline: else the branches of a
// function would be counted again at each place where it is inlined.
#ifndef SDPLINE_INLINE
#define SDPLINE_INLINE        [[gnu::always_inline]] inline
#define SDPLINE_INLINE_LAMBDA __attribute__((always_inline))
#endif
#ifndef SDPLINE_INLINE_LAMBDA
#define SDPLINE_INLINE_LAMBDA
#endif
