#pragma once
// Edit decision lists of the CMX 3600 form: what an editing program took from which tape.

#include <string>
#include <string_view>

#include "host/batch_list.h"

namespace zq::host {

/// Whether the first line of the text, which has no blanks before it, is one of an edit decision list.
bool looksLikeEdl(std::string_view text);

/// Each event is a row: its reel is the tape, or what a comment `* REEL X IS NAME` says that this is; its name what a
/// comment `* FROM CLIP NAME: NAME` says, or its number.
BatchList parseEdl(std::string_view text);

}  // namespace zq::host
