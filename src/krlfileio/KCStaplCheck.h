#pragma once

#include "KCDeviceText.h"
#include "KCFileMessage.h"

#include <string>

// Walks a STAPL text file once: feeds the CRC, tracks comments and strings to find the CRC
// statement, and lists NOTE fields and ACTION names as it passes them.
class KCStaplCheck
{
public:
    // Listing more than this many NOTE and ACTION lines helps nobody.
    static constexpr unsigned kMaxListed = 32;

    // With ignoreCrc a CRC mismatch only warns ("load anyway").
    KCStaplCheck(KCFileMessage &sink, const std::string &fileName, const uint8_t *data, size_t size, bool ignoreCrc);

    // True when the file passes (warnings allowed).
    bool run();

    bool hasCrcStatement() const { return m_hasCrc; }
    uint16_t statedCrc() const { return m_stated; }
    uint16_t computedCrc() const { return m_computed; }

private:
    bool checkCharacters();
    bool scan();
    bool checkCrcStatement(size_t p);
    void checkTail(size_t p);
    bool isCrcKeyword(size_t p) const;
    size_t labelEnd(size_t p) const;
    size_t identifierEnd(size_t p) const;
    size_t skipBlanks(size_t p) const;
    bool quoted(size_t &p, std::string &text) const;
    void listStatement(size_t p);
    void message(KCFileMessage::Severity severity, size_t pos, const std::string &text);

    KCFileMessage &m_sink;
    const std::string &m_fileName;
    const uint8_t *m_d;
    KCDeviceText m_text;
    size_t m_begin;
    size_t m_end;
    bool m_ignoreCrc;
    unsigned m_listed = 0;
    bool m_hasCrc = false;
    uint16_t m_stated = 0;
    uint16_t m_computed = 0;
};
