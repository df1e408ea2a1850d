#pragma once

#include "fileio/KCFileTypes.h"

#include <cstdint>

// Number of file-information words kept per buffer.
constexpr int BUFFER_FILEINFO_WORDS = 7;

// Option flag bit: the save prompt does not offer the project file.
constexpr uint32_t BUFFER_OPTION_NO_PROJECT_HINT = 0x1;
// Save flag bit: always ask for a file name when saving.
constexpr uint32_t BUFFER_SAVE_ASK_NAME = 0x4;

// Checksum kinds of a buffer.
enum : int { CHECKSUM_KIND_BYTESUM = 0, CHECKSUM_KIND_FUSEMAP = 1 };

// The state of one buffer as the document shows it.
struct TAG_BUFFER_PARAM
{
    uint32_t LBSA = 0xFFFFFFFF; // load range, first byte; negative (as signed) = whole buffer
    uint32_t LBEA = 0xFFFFFFFF; // load range, last byte, inclusive
    uint32_t SBSA = 0xFFFFFFFF; // save range, first byte
    uint32_t SBEA = 0xFFFFFFFF; // save range, last byte, inclusive
    int loadRangeFromDevice = 0;
    int saveRangeFromDevice = 0;

    FILTERTYPE filterType = FILTER_BIN;
    LOADSAVE_FILETYPE fileType = LS_BINARY;
    uint32_t optionFlags = 0;
    uint32_t saveFlags = 0;
    uint32_t fileInfo[BUFFER_FILEINFO_WORDS] = {};

    int checksumKind = CHECKSUM_KIND_BYTESUM;
    uint32_t checksumStart = 0;
    uint32_t checksumEnd = 0;
    uint32_t checksum = 0;
};
