// Cuts runs into lines again, for texts whose lines have to be arranged.
#pragma once

#include <span>

#include "tidy/workspace.hpp"

namespace sdpline::tidy {

// The entry of a run becomes that of its first line; the entries of its other lines are returned.
// Consecutive attributes stay one entry, for nothing is put between them. Without memory the entry
// stays as it is.
std::span<Line> unfold(Workspace &work, Line &entry);

// Splits the entry of the lines that the decoder accepted, using the two entries after it: one for
// the session, one for the media descriptions but for the last, and one for the last, which may go
// on after them.
void splitTaken(Workspace &work);

} // namespace sdpline::tidy
