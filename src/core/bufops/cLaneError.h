#pragma once

// The integer codes the lane engines (cBufferShuffle, cBufferSplit) throw, and what each
// means in words for a message to the user.
class cLaneError
{
public:
    static constexpr int SourceWidthZero = 379;
    static constexpr int SourceWidthNotBytes = 380;
    static constexpr int DestWidthZero = 381;
    static constexpr int DestWidthNotBytes = 382;
    static constexpr int DestNotMultipleOfSource = 383;
    static constexpr int LaneOutsideUnit = 384;
    static constexpr int ByteRefused = 385;
    static constexpr int SourceNotWider = 386;
    static constexpr int SourceNotMultipleOfDest = 387;
    static constexpr int RangeNotWholeUnits = 388;

    // A sentence for the code; a general one for a code that is none of the above.
    static const char *Text(int code);
};
