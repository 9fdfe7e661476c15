// What the entry points share: the hooks that point the parser's memory at a body's block.
#pragma once

#include "sdpline/sdpline.h"

namespace sdpline {

// Every allocation of the parser comes from the block from here on.
void beginDecode(SDPMemCp *pstMemCp);

// Takes the block away again. The two hooks go with it only when the parse failed: after one that
// succeeded they stay and answer null until the next decode.
void endDecode(bool bParsed);

} // namespace sdpline
