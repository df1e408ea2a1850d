#pragma once

// Numbers of the host strings the library cites. Every number used anywhere in the code is
// listed here and must have a text in data/host-strings.txt with the stated arguments.
namespace KCHostStrings {

constexpr unsigned Untitled = 120;              // no arguments
constexpr unsigned ChecksumBytes = 324;         // start, end, checksum bytes 3, 2, 1, 0
constexpr unsigned OneBufferDocumentOnly = 337; // no arguments
constexpr unsigned ChecksumInvalid = 341;       // no arguments
constexpr unsigned ChecksumFuse = 342;          // start, end, checksum bytes 1, 0
constexpr unsigned LaneNoDocument = 367;        // no arguments
constexpr unsigned LaneNotBufferDocument = 368; // no arguments
constexpr unsigned LaneNoData = 370;            // no arguments
constexpr unsigned LaneDeviceWidth = 371;       // the device's data width in bits
constexpr unsigned LaneNoDestination = 375;     // no arguments
constexpr unsigned SwapBytesPrompt = 2152;      // no arguments
constexpr unsigned FillErrorCaption = 2730;     // no arguments; also the fill dialog's title
constexpr unsigned FillStartAfterEnd = 2731;    // no arguments
constexpr unsigned SaveProjectHint = 2208;      // project extension
constexpr unsigned ReadingFile = 2164;          // no arguments
constexpr unsigned ReadFailed = 2443;           // no arguments
constexpr unsigned ReadOk = 2464;               // no arguments
constexpr unsigned FileTypeBinary = 2480;
constexpr unsigned FileTypeIntel = 2481;
constexpr unsigned FileTypeMotorola = 2482;
constexpr unsigned FileTypeJedec = 2483;
constexpr unsigned FileDialogLoadAs = 2484;
constexpr unsigned FileDialogSaveAs = 2485;
constexpr unsigned FileDialogFormatLabel = 2490;
constexpr unsigned ReloadTitle = 2491;
constexpr unsigned ReloadButton = 2492;
constexpr unsigned SearchNotFound = 2496;     // no arguments
constexpr unsigned SearchFound = 2497;        // hit counter, address
constexpr unsigned SearchFoundAll = 2498;     // hit count
constexpr unsigned SearchProgress = 2499;     // address being searched
constexpr unsigned FileTypeSvf = 2667;
constexpr unsigned FileTypeTi = 2682;
constexpr unsigned FailedToSave = 0xF102;       // no arguments
constexpr unsigned AskToSave = 0xF103;          // document file name
constexpr unsigned ViewHeaderRow = 2466;        // no arguments
constexpr unsigned ViewClosingRow = 2472;       // no arguments
constexpr unsigned SerialUnknownType = 0xEF32;  // file, line, block name
constexpr unsigned SerialBadLength = 0xEF33;    // file, line, block name, length
constexpr unsigned SerialControlChar = 0xEF39;  // file, line, byte
constexpr unsigned SerialNoNumberLine = 0xEF3A; // file, line, block name
constexpr unsigned SerialNumberTooLarge = 0xEF3B; // file, line, key, value
constexpr unsigned SerialElementTooLong = 0xEF3C; // file, line, length, most
constexpr unsigned SerialUnclosedBlock = 0xEF3D;  // file, line, block name
constexpr unsigned SerialNotAFile = 0xEF3E;       // file
constexpr unsigned SerialFileTooLarge = 0xEF3F;   // file, most MiB
constexpr unsigned SerialFileError = 0xEF40;      // file, what failed, the system's reason
constexpr unsigned SerialPastLast = 0xEF41;       // file, line, block name, next, last
constexpr unsigned SerialWraps = 0xEF42;          // file, line, block name, number, bytes
constexpr unsigned DeviceBufferCaption = 2128;    // device name
constexpr unsigned NoDeviceBufferCaption = 2575;  // no arguments
// Captions of the device option pages, cited by the option types' page table; no arguments.
constexpr unsigned OptionPageDevice = 0x9AD;
constexpr unsigned OptionPageAction = 0x9AE;
constexpr unsigned OptionPageIsp = 0xE101;
constexpr unsigned OptionPageJtag = 0xE102;
constexpr unsigned OptionPageIdCode = 0xE103;
constexpr unsigned OptionPagePassword = 0xE104;
constexpr unsigned OptionPageSyncLink = 0xE105;
constexpr unsigned OptionPageAlgorithm = 0xE106;
constexpr unsigned OptionPageIspAdapter = 0xE107;
constexpr unsigned OptionValueInvalid = 0xE108; // the value
constexpr unsigned CountPassLabel = 2068;       // no arguments
constexpr unsigned CountFailLabel = 2069;       // no arguments
constexpr unsigned CountTotalLabel = 2070;      // no arguments
constexpr unsigned CountYieldLabel = 2071;      // no arguments
constexpr unsigned CountTarget = 2072;          // target, devices left
constexpr unsigned CountRate = 2073;            // devices per hour
constexpr unsigned CountResetLog = 2074;        // time, pass count, fail count
constexpr unsigned CountResetPrompt = 2075;     // no arguments

struct Entry
{
    unsigned id;
    int arguments;
};

// Every number with its argument count, for the table's self-check.
constexpr Entry All[] = {
    {Untitled, 0},
    {DeviceBufferCaption, 1},
    {NoDeviceBufferCaption, 0},
    {ChecksumBytes, 6},
    {OneBufferDocumentOnly, 0},
    {ChecksumInvalid, 0},
    {ChecksumFuse, 4},
    {LaneNoDocument, 0},
    {LaneNotBufferDocument, 0},
    {LaneNoData, 0},
    {LaneDeviceWidth, 1},
    {LaneNoDestination, 0},
    {SwapBytesPrompt, 0},
    {FillErrorCaption, 0},
    {FillStartAfterEnd, 0},
    {SaveProjectHint, 1},
    {ReadingFile, 0},
    {ReadFailed, 0},
    {ReadOk, 0},
    {FileTypeBinary, 0},
    {FileTypeIntel, 0},
    {FileTypeMotorola, 0},
    {FileTypeJedec, 0},
    {FileDialogLoadAs, 0},
    {FileDialogSaveAs, 0},
    {FileDialogFormatLabel, 0},
    {ReloadTitle, 0},
    {ReloadButton, 0},
    {SearchNotFound, 0},
    {SearchFound, 2},
    {SearchFoundAll, 1},
    {SearchProgress, 1},
    {FileTypeSvf, 0},
    {FileTypeTi, 0},
    {FailedToSave, 0},
    {AskToSave, 1},
    {ViewHeaderRow, 0},
    {ViewClosingRow, 0},
    {SerialUnknownType, 3},
    {SerialBadLength, 4},
    {SerialControlChar, 3},
    {SerialNoNumberLine, 3},
    {SerialNumberTooLarge, 4},
    {SerialElementTooLong, 4},
    {SerialUnclosedBlock, 3},
    {SerialNotAFile, 1},
    {SerialFileTooLarge, 2},
    {SerialFileError, 3},
    {SerialPastLast, 5},
    {SerialWraps, 5},
    {OptionPageDevice, 0},
    {OptionPageAction, 0},
    {OptionPageIsp, 0},
    {OptionPageJtag, 0},
    {OptionPageIdCode, 0},
    {OptionPagePassword, 0},
    {OptionPageSyncLink, 0},
    {OptionPageAlgorithm, 0},
    {OptionPageIspAdapter, 0},
    {OptionValueInvalid, 1},
    {CountPassLabel, 0},
    {CountFailLabel, 0},
    {CountTotalLabel, 0},
    {CountYieldLabel, 0},
    {CountTarget, 2},
    {CountRate, 1},
    {CountResetLog, 3},
    {CountResetPrompt, 0},
};

} // namespace KCHostStrings

// Status-bar pane of the checksum.
constexpr unsigned STATUSPANE_CHECKSUM = 0x8025;
