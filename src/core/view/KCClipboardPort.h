#pragma once

#include <cstdint>
#include <vector>

// The system clipboard as the edit commands need it. The application's KCClipboardClass
// implements it over the toolkit's clipboard; tests and the command line use their own.
class KCClipboardPort
{
public:
    virtual ~KCClipboardPort() = default;
    // Puts the bytes as "KrlBinary", or as text with asText 1; 0 when the clipboard cannot be had.
    virtual int put(const uint8_t *bytes, uint64_t count, int asText) = 0;
    // The bytes of the first format there ("KrlBinary", then text); 0 when neither is.
    virtual uint64_t get(std::vector<uint8_t> &bytes) = 0;
    // 1 when the clipboard cannot be had or holds neither format.
    virtual int isEmpty() = 0;
};
