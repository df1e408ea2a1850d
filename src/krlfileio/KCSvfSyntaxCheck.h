#pragma once

#include "KCDeviceText.h"
#include "KCFileMessage.h"

#include <string>
#include <vector>

// Checks the statements of a serial vector file without executing them: comments, balanced
// parentheses, known commands, state names and keywords, scan vector lengths and the rule
// that TDI must be given again when a scan length changes.
class KCSvfSyntaxCheck
{
public:
    KCSvfSyntaxCheck(KCFileMessage &sink, const std::string &fileName, const uint8_t *data, size_t size,
                     size_t maxLineLength, unsigned maxMessages);

    // True when no error was found (warnings allowed).
    bool run();
    unsigned errors() const { return m_errors; }
    unsigned warnings() const { return m_warnings; }

private:
    enum class TokenType { Word, Vector, End, Eof };
    struct Token
    {
        TokenType type;
        size_t begin; // words: the text; vectors: inside the parentheses
        size_t end;
    };
    enum ScanKind { HDR, HIR, TDR, TIR, SDR, SIR, ScanKindCount };
    struct ScanState
    {
        uint64_t length = 0;
    };

    bool checkCharacters();
    bool nextToken(Token &token);
    size_t skipComment(size_t p) const;
    bool isCommentStart(size_t p, size_t end) const;
    bool collectStatement();
    void checkStatement();
    void checkScan(ScanKind kind);
    void checkVector(const Token &vector, uint64_t length, const char *name);
    void checkRuntest();
    void checkState();
    void checkPioMap();
    void checkPio();

    bool is(const Token &token, const char *upperWord) const;
    bool isInteger(const Token &token, uint64_t &value) const;
    bool isNumber(const Token &token) const;
    int stateIndex(const Token &token) const;
    bool isStableState(const Token &token) const;
    std::string text(const Token &token) const;

    void error(size_t pos, const char *format, ...) __attribute__((format(printf, 3, 4)));
    void warning(size_t pos, const char *format, ...) __attribute__((format(printf, 3, 4)));
    void report(KCFileMessage::Severity severity, size_t pos, const char *format, va_list args);

    KCFileMessage &m_sink;
    const std::string &m_fileName;
    const uint8_t *m_d;
    KCDeviceText m_text;
    size_t m_end;
    size_t m_pos;
    size_t m_maxLineLength;
    unsigned m_maxMessages;
    unsigned m_errors = 0;
    unsigned m_warnings = 0;
    unsigned m_shown = 0;

    std::vector<Token> m_statement;
    ScanState m_scans[ScanKindCount];
    int m_pioMapEntries = -1; // no PIOMAP seen yet
};
