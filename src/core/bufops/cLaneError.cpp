#include "bufops/cLaneError.h"

const char *cLaneError::Text(int code)
{
    switch (code) {
    case SourceWidthZero:
        return "the source width is 0";
    case SourceWidthNotBytes:
        return "the source width is not a whole number of bytes";
    case DestWidthZero:
        return "the destination width is 0";
    case DestWidthNotBytes:
        return "the destination width is not a whole number of bytes";
    case DestNotMultipleOfSource:
        return "the wide width is not a multiple of the narrow width";
    case LaneOutsideUnit:
        return "the lane lies outside the wide unit";
    case ByteRefused:
        return "the destination buffer is too small for the range";
    case SourceNotWider:
        return "the source width is not wider than the destination width";
    case SourceNotMultipleOfDest:
        return "the wide width is not a multiple of the narrow width";
    case RangeNotWholeUnits:
        return "the range length is not a whole number of wide units";
    default:
        return "the lane operation failed";
    }
}
