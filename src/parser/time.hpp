// The productions of the t= and r= lines that also have exported names.
#pragma once

#include "parser/parser.hpp"

namespace sdpline {

bool parseTimeAndRepeats(Parser auto &parser, SDPTimeField &field);
bool parseTime(Parser auto &parser, SDPTimeField &time);
bool parseRepeats(Parser auto &parser, SDPRepeatFieldSet &set);
bool parseRepeat(Parser auto &parser, SDPRepeatField &field);
bool parseTypedTime(Parser auto &p, SDPTimeUnit &unit);

} // namespace sdpline
