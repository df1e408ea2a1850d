#pragma once

#include <cstdint>
#include <string>

class KCDataDoc;

// What the lane commands (split, shuffle, join) share: their width pairs, growing an image to
// a range and how an engine's refusal reads.
class KCCliLaneArgs
{
public:
    // "A:B" in bits, each 8, 16, 32 or 64; false otherwise.
    static bool parseWidths(const std::string &text, uint32_t &first, uint32_t &second);
    // Grows the buffer with fill bytes to hold address `last`; false (message) without memory.
    static bool reach(KCDataDoc &doc, uint64_t last, const std::string &file);
    // "krldv: FILE: VERB refused (code N): why" on stderr; returns the exit status.
    static int refused(const std::string &file, const char *verb, int code);
};
