// For the small functions of the way from text to records: inlined always, so that the contexts,
// kinds and checks that their callers pass are constants and the position stays in registers.
#pragma once

// A build that counts branches defines it as plain inline: else a function's branches would be
// counted again at each place where it is inlined.
#ifndef SDPLINE_INLINE
#define SDPLINE_INLINE        [[gnu::always_inline]] inline
#define SDPLINE_INLINE_LAMBDA __attribute__((always_inline))
#endif
#ifndef SDPLINE_INLINE_LAMBDA
#define SDPLINE_INLINE_LAMBDA
#endif
