// The productions of the t= and r= lines that have exported names too.
#pragma once

#include "parser/parser.hpp"

namespace sdpline {

bool parseTimeAndRepeats(Parser &parser, SDPTimeField &field);
bool parseTime(Parser &parser, SDPTimeField &time);
bool parseRepeats(Parser &parser, SDPRepeatFieldSet &set);
bool parseRepeat(Parser &parser, SDPRepeatField &field);
bool parseTypedTime(Parser &p, SDPTimeUnit &unit);

} // namespace sdpline
