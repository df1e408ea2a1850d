#pragma once

#include "view/KCClipboardPort.h"

// The system clipboard: the program's "KrlBinary" format and plain text, read in that order.
// The only code that touches the toolkit's clipboard; the rules are KCClipboardController's.
class KCClipboardClass : public KCClipboardPort
{
public:
    KCClipboardClass();

    int put(const uint8_t *bytes, uint64_t count, int asText) override;
    uint64_t get(std::vector<uint8_t> &bytes) override;
    int isEmpty() override;

    // The registered format's MIME name.
    static const char *mimeType();
};
