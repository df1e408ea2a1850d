#pragma once

// Numbers of the host strings the library cites. Every number used anywhere in the code is
// listed here and must have a text in data/host-strings.txt with the stated arguments.
namespace KCHostStrings {

constexpr unsigned Untitled = 120;              // no arguments
constexpr unsigned ChecksumBytes = 324;         // start, end, checksum bytes 3, 2, 1, 0
constexpr unsigned OneBufferDocumentOnly = 337; // no arguments
constexpr unsigned ChecksumInvalid = 341;       // no arguments
constexpr unsigned ChecksumFuse = 342;          // start, end, checksum bytes 1, 0
constexpr unsigned SwapBytesPrompt = 2152;      // no arguments
constexpr unsigned SaveProjectHint = 2208;      // project extension

struct Entry
{
    unsigned id;
    int arguments;
};

// Every number with its argument count, for the table's self-check.
constexpr Entry All[] = {
    {Untitled, 0},
    {ChecksumBytes, 6},
    {OneBufferDocumentOnly, 0},
    {ChecksumInvalid, 0},
    {ChecksumFuse, 4},
    {SwapBytesPrompt, 0},
    {SaveProjectHint, 1},
};

} // namespace KCHostStrings

// Status-bar pane of the checksum.
constexpr unsigned STATUSPANE_CHECKSUM = 0x8025;
