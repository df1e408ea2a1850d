#include "KCSvfSyntaxCheck.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace {

constexpr size_t kMessageSize = 256;
constexpr size_t kQuotedWord = 32;                 // longest word quoted back in a message
constexpr uint64_t kIntegerCap = uint64_t(1) << 40; // far beyond any scan chain, far below overflow

const char *const kStateNames[] = {"RESET",    "IDLE",    "DRSELECT", "DRCAPTURE", "DRSHIFT",  "DREXIT1",
                                   "DRPAUSE",  "DREXIT2", "DRUPDATE", "IRSELECT",  "IRCAPTURE", "IRSHIFT",
                                   "IREXIT1",  "IRPAUSE", "IREXIT2",  "IRUPDATE"};
const char *const kStableStates[] = {"RESET", "IDLE", "DRPAUSE", "IRPAUSE"};
const char *const kScanNames[] = {"HDR", "HIR", "TDR", "TIR", "SDR", "SIR"};
enum ScanParameter { TDI, TDO, MASK, SMASK, ScanParameterCount };
const char *const kScanParameters[] = {"TDI", "TDO", "MASK", "SMASK"};

unsigned bitLength(unsigned value)
{
    unsigned bits = 0;
    for (; value; value >>= 1)
        ++bits;
    return bits;
}

} // namespace

KCSvfSyntaxCheck::KCSvfSyntaxCheck(KCFileMessage &sink, const std::string &fileName, const uint8_t *data, size_t size,
                                   size_t maxLineLength, unsigned maxMessages)
    : m_sink(sink), m_fileName(fileName), m_d(data), m_text(data, size), m_end(m_text.contentEnd()),
      m_pos(m_text.bomLength()), m_maxLineLength(maxLineLength), m_maxMessages(maxMessages)
{
}

void KCSvfSyntaxCheck::report(KCFileMessage::Severity severity, size_t pos, const char *format, va_list args)
{
    if (m_shown >= m_maxMessages)
        return;
    ++m_shown;
    char text[kMessageSize];
    vsnprintf(text, sizeof text, format, args);
    m_sink.message(severity, m_fileName, m_text.lineAt(pos), text);
}

void KCSvfSyntaxCheck::error(size_t pos, const char *format, ...)
{
    ++m_errors;
    va_list args;
    va_start(args, format);
    report(KCFileMessage::Error, pos, format, args);
    va_end(args);
}

void KCSvfSyntaxCheck::warning(size_t pos, const char *format, ...)
{
    ++m_warnings;
    va_list args;
    va_start(args, format);
    report(KCFileMessage::Warning, pos, format, args);
    va_end(args);
}

bool KCSvfSyntaxCheck::run()
{
    if (checkCharacters()) {
        while (collectStatement()) {
        }
    }
    if (m_errors + m_warnings > m_shown)
        m_sink.message(KCFileMessage::Warning, m_fileName, 0,
                       std::to_string(m_errors + m_warnings - m_shown) + " further problems not shown");
    return m_errors == 0;
}

bool KCSvfSyntaxCheck::checkCharacters()
{
    size_t lineStart = m_pos;
    size_t longLines = 0;
    size_t firstLong = 0;
    for (size_t p = m_pos; p <= m_end; ++p) {
        const uint8_t c = p < m_end ? m_d[p] : '\n';
        if (c == '\n' || c == '\r') {
            if (p - lineStart > m_maxLineLength && longLines++ == 0)
                firstLong = lineStart;
            lineStart = p + 1;
        } else if (!KCDeviceText::isPrintable(c) && c != '\t') {
            error(p, "control character 0x%02X: not a serial vector text file", c);
            return false;
        }
    }
    if (longLines)
        warning(firstLong, "%zu lines are longer than %zu characters, the first one here", longLines,
                m_maxLineLength);
    return true;
}

bool KCSvfSyntaxCheck::isCommentStart(size_t p, size_t end) const
{
    return m_d[p] == '!' || (m_d[p] == '/' && p + 1 < end && m_d[p + 1] == '/');
}

size_t KCSvfSyntaxCheck::skipComment(size_t p) const
{
    while (p < m_end && m_d[p] != '\n' && m_d[p] != '\r')
        ++p;
    return p;
}

// False after a lexical error, which has been reported; the caller drops the statement.
bool KCSvfSyntaxCheck::nextToken(Token &token)
{
    for (;;) {
        while (m_pos < m_end && KCDeviceText::isSpace(m_d[m_pos]))
            ++m_pos;
        if (m_pos < m_end && isCommentStart(m_pos, m_end))
            m_pos = skipComment(m_pos);
        else
            break;
    }
    token.begin = token.end = m_pos;
    if (m_pos >= m_end) {
        token.type = TokenType::Eof;
        return true;
    }
    const uint8_t c = m_d[m_pos];
    if (c == ';') {
        token.type = TokenType::End;
        ++m_pos;
        return true;
    }
    if (c == ')') {
        error(m_pos++, "')' without '('");
        return false;
    }
    if (c == '(') {
        const size_t open = m_pos;
        size_t p = open + 1;
        while (p < m_end && m_d[p] != ')' && m_d[p] != ';' && m_d[p] != '(') {
            if (isCommentStart(p, m_end))
                p = skipComment(p);
            else
                ++p;
        }
        if (p < m_end && m_d[p] == ')') {
            token.type = TokenType::Vector;
            token.begin = open + 1;
            token.end = p;
            m_pos = p + 1;
            return true;
        }
        if (p < m_end && m_d[p] == '(') {
            error(p, "parentheses cannot nest");
            m_pos = p + 1;
        } else {
            error(open, "unbalanced parenthesis: '(' not closed before ';'");
            m_pos = p; // the ';' still ends the statement
        }
        return false;
    }
    size_t p = m_pos;
    while (p < m_end && !KCDeviceText::isSpace(m_d[p]) && m_d[p] != ';' && m_d[p] != '(' && m_d[p] != ')' &&
           !isCommentStart(p, m_end))
        ++p;
    token.type = TokenType::Word;
    token.end = m_pos = p;
    return true;
}

// Reads and checks one statement; false at the end of the file.
bool KCSvfSyntaxCheck::collectStatement()
{
    m_statement.clear();
    bool bad = false;
    Token token;
    for (;;) {
        if (!nextToken(token)) {
            bad = true;
            continue;
        }
        if (token.type == TokenType::End)
            break;
        if (token.type == TokenType::Eof) {
            if (!m_statement.empty() && !bad)
                error(m_statement.front().begin, "statement not terminated at end of file");
            return false;
        }
        // After a lexical error only the ';' matters; keep nothing but the first token.
        if (!bad || m_statement.empty())
            m_statement.push_back(token);
    }
    if (!bad && !m_statement.empty())
        checkStatement();
    return true;
}

bool KCSvfSyntaxCheck::is(const Token &token, const char *upperWord) const
{
    const size_t n = strlen(upperWord);
    if (token.type != TokenType::Word || token.end - token.begin != n)
        return false;
    for (size_t i = 0; i < n; ++i) {
        uint8_t c = m_d[token.begin + i];
        if (c >= 'a' && c <= 'z')
            c -= 'a' - 'A';
        if (c != uint8_t(upperWord[i]))
            return false;
    }
    return true;
}

bool KCSvfSyntaxCheck::isInteger(const Token &token, uint64_t &value) const
{
    if (token.type != TokenType::Word || token.begin == token.end)
        return false;
    value = 0;
    for (size_t p = token.begin; p < token.end; ++p) {
        if (m_d[p] < '0' || m_d[p] > '9')
            return false;
        value = value * 10 + (m_d[p] - '0');
        if (value > kIntegerCap)
            value = kIntegerCap;
    }
    return true;
}

// Integer or real: digits [. digits] [E [+|-] digits], at least one mantissa digit.
bool KCSvfSyntaxCheck::isNumber(const Token &token) const
{
    if (token.type != TokenType::Word)
        return false;
    size_t p = token.begin;
    const size_t end = token.end;
    auto digits = [&]() {
        const size_t start = p;
        while (p < end && m_d[p] >= '0' && m_d[p] <= '9')
            ++p;
        return p - start;
    };
    size_t mantissa = digits();
    if (p < end && m_d[p] == '.') {
        ++p;
        mantissa += digits();
    }
    if (!mantissa)
        return false;
    if (p < end && (m_d[p] == 'E' || m_d[p] == 'e')) {
        ++p;
        if (p < end && (m_d[p] == '+' || m_d[p] == '-'))
            ++p;
        if (!digits())
            return false;
    }
    return p == end;
}

int KCSvfSyntaxCheck::stateIndex(const Token &token) const
{
    for (size_t i = 0; i < sizeof kStateNames / sizeof *kStateNames; ++i)
        if (is(token, kStateNames[i]))
            return int(i);
    return -1;
}

bool KCSvfSyntaxCheck::isStableState(const Token &token) const
{
    for (const char *name : kStableStates)
        if (is(token, name))
            return true;
    return false;
}

std::string KCSvfSyntaxCheck::text(const Token &token) const
{
    const size_t n = std::min(token.end - token.begin, kQuotedWord);
    return std::string(reinterpret_cast<const char *>(m_d + token.begin), n);
}

void KCSvfSyntaxCheck::checkStatement()
{
    const Token &command = m_statement.front();
    const size_t n = m_statement.size();
    if (command.type != TokenType::Word) {
        error(command.begin, "a statement must start with a command");
        return;
    }
    for (int kind = 0; kind < ScanKindCount; ++kind) {
        if (is(command, kScanNames[kind])) {
            checkScan(ScanKind(kind));
            return;
        }
    }
    if (is(command, "ENDDR") || is(command, "ENDIR")) {
        if (n != 2 || !isStableState(m_statement[1]))
            error(command.begin, "%s needs one stable state: IRPAUSE, DRPAUSE, RESET or IDLE", text(command).c_str());
    } else if (is(command, "FREQUENCY")) {
        if (n != 1 && (n != 3 || !isNumber(m_statement[1]) || !is(m_statement[2], "HZ")))
            error(command.begin, "FREQUENCY needs nothing, or a number followed by HZ");
    } else if (is(command, "TRST")) {
        if (n != 2 || !(is(m_statement[1], "ON") || is(m_statement[1], "OFF") || is(m_statement[1], "Z") ||
                        is(m_statement[1], "ABSENT")))
            error(command.begin, "TRST needs ON, OFF, Z or ABSENT");
    } else if (is(command, "STATE")) {
        checkState();
    } else if (is(command, "RUNTEST")) {
        checkRuntest();
    } else if (is(command, "PIOMAP")) {
        checkPioMap();
    } else if (is(command, "PIO")) {
        checkPio();
    } else {
        error(command.begin, "unknown command '%s'", text(command).c_str());
    }
}

void KCSvfSyntaxCheck::checkScan(ScanKind kind)
{
    const char *name = kScanNames[kind];
    const size_t n = m_statement.size();
    const size_t at = m_statement.front().begin;
    uint64_t length = 0;
    if (n < 2 || !isInteger(m_statement[1], length)) {
        error(at, "%s needs a bit length (a non-negative integer)", name);
        return;
    }
    const Token *vectors[ScanParameterCount] = {};
    for (size_t i = 2; i < n; i += 2) {
        int parameter = 0;
        while (parameter < ScanParameterCount && !is(m_statement[i], kScanParameters[parameter]))
            ++parameter;
        if (parameter == ScanParameterCount) {
            error(m_statement[i].begin, "'%s' is not a scan parameter (TDI, TDO, MASK, SMASK)",
                  text(m_statement[i]).c_str());
            return;
        }
        if (vectors[parameter]) {
            error(m_statement[i].begin, "%s given twice", kScanParameters[parameter]);
            return;
        }
        if (i + 1 >= n || m_statement[i + 1].type != TokenType::Vector) {
            error(m_statement[i].begin, "%s needs a hex string in parentheses", kScanParameters[parameter]);
            return;
        }
        vectors[parameter] = &m_statement[i + 1];
    }
    for (int parameter = 0; parameter < ScanParameterCount; ++parameter)
        if (vectors[parameter])
            checkVector(*vectors[parameter], length, kScanParameters[parameter]);

    // TDI, MASK and SMASK are reused by the next scan of the same kind only at the same length.
    ScanState &state = m_scans[kind];
    if (!vectors[TDI] && length != state.length)
        error(at, "%s length changes from %llu to %llu: TDI must be given", name, (unsigned long long)state.length,
              (unsigned long long)length);
    if ((kind == SDR || kind == SIR) && !vectors[TDO] && (vectors[MASK] || vectors[SMASK]))
        warning(at, "%s has MASK or SMASK but no TDO: nothing is compared", name);
    state.length = length;
}

void KCSvfSyntaxCheck::checkVector(const Token &vector, uint64_t length, const char *name)
{
    const size_t at = vector.begin - 1;
    uint64_t digits = 0;
    uint64_t firstSetDigit = 0;
    int firstSetValue = 0;
    for (size_t p = vector.begin; p < vector.end; ++p) {
        const uint8_t c = m_d[p];
        const int value = KCDeviceText::hexDigit(c);
        if (value >= 0) {
            if (value && !firstSetValue) {
                firstSetValue = value;
                firstSetDigit = digits;
            }
            ++digits;
        } else if (isCommentStart(p, vector.end)) {
            p = skipComment(p) - 1;
        } else if (!KCDeviceText::isSpace(c)) {
            error(p, "'%c' in %s is not a hex digit", c, name);
            return;
        }
    }
    if (!digits) {
        if (length)
            error(at, "%s holds no digits", name);
        return;
    }
    // The rightmost digit holds bits 3..0.
    if (firstSetValue) {
        const uint64_t bits = 4 * (digits - 1 - firstSetDigit) + bitLength(unsigned(firstSetValue));
        if (bits > length) {
            error(at, "%s sets bit %llu, beyond the length of %llu bits", name, (unsigned long long)(bits - 1),
                  (unsigned long long)length);
            return;
        }
    }
    const uint64_t needed = (length + 3) / 4;
    if (digits < needed)
        warning(at, "%s has %llu hex digits where %llu bits need %llu: the missing high digits read as 0", name,
                (unsigned long long)digits, (unsigned long long)length, (unsigned long long)needed);
}

void KCSvfSyntaxCheck::checkState()
{
    const size_t n = m_statement.size();
    if (n < 2) {
        error(m_statement.front().begin, "STATE needs at least one state");
        return;
    }
    for (size_t i = 1; i < n; ++i) {
        if (stateIndex(m_statement[i]) < 0) {
            error(m_statement[i].begin, "'%s' is not a TAP state", text(m_statement[i]).c_str());
            return;
        }
    }
    if (!isStableState(m_statement[n - 1]))
        error(m_statement[n - 1].begin, "STATE must end in a stable state: IRPAUSE, DRPAUSE, RESET or IDLE");
}

// RUNTEST [run_state] count TCK|SCK [min SEC] [MAXIMUM max SEC] [ENDSTATE state]
// RUNTEST [run_state] min SEC [MAXIMUM max SEC] [ENDSTATE state]
void KCSvfSyntaxCheck::checkRuntest()
{
    const size_t n = m_statement.size();
    const size_t at = m_statement.front().begin;
    size_t i = 1;
    if (i < n && stateIndex(m_statement[i]) >= 0) {
        if (!isStableState(m_statement[i])) {
            error(m_statement[i].begin, "RUNTEST run state must be stable: IRPAUSE, DRPAUSE, RESET or IDLE");
            return;
        }
        ++i;
    }
    if (i + 1 >= n || !isNumber(m_statement[i])) {
        error(at, "RUNTEST needs a clock count or a time");
        return;
    }
    uint64_t count = 0;
    if (is(m_statement[i + 1], "TCK") || is(m_statement[i + 1], "SCK")) {
        if (!isInteger(m_statement[i], count)) {
            error(m_statement[i].begin, "RUNTEST clock count must be an integer");
            return;
        }
        i += 2;
        if (i < n && isNumber(m_statement[i])) {
            if (i + 1 >= n || !is(m_statement[i + 1], "SEC")) {
                error(m_statement[i].begin, "RUNTEST time needs SEC");
                return;
            }
            i += 2;
        }
    } else if (is(m_statement[i + 1], "SEC")) {
        i += 2;
    } else {
        error(m_statement[i + 1].begin, "RUNTEST count needs TCK or SCK, a time needs SEC");
        return;
    }
    if (i < n && is(m_statement[i], "MAXIMUM")) {
        if (i + 2 >= n || !isNumber(m_statement[i + 1]) || !is(m_statement[i + 2], "SEC")) {
            error(m_statement[i].begin, "MAXIMUM needs a time followed by SEC");
            return;
        }
        i += 3;
    }
    if (i < n && is(m_statement[i], "ENDSTATE")) {
        if (i + 1 >= n || !isStableState(m_statement[i + 1])) {
            error(m_statement[i].begin, "ENDSTATE needs a stable state: IRPAUSE, DRPAUSE, RESET or IDLE");
            return;
        }
        i += 2;
    }
    if (i < n)
        error(m_statement[i].begin, "unexpected '%s' in RUNTEST", text(m_statement[i]).c_str());
}

void KCSvfSyntaxCheck::checkPioMap()
{
    const size_t at = m_statement.front().begin;
    if (m_statement.size() != 2 || m_statement[1].type != TokenType::Vector) {
        error(at, "PIOMAP needs one list in parentheses");
        return;
    }
    const Token &list = m_statement[1];
    int entries = 0;
    bool wantDirection = true;
    for (size_t p = list.begin; p < list.end;) {
        if (KCDeviceText::isSpace(m_d[p])) {
            ++p;
            continue;
        }
        if (isCommentStart(p, list.end)) {
            p = skipComment(p);
            continue;
        }
        Token word{TokenType::Word, p, p};
        while (word.end < list.end && !KCDeviceText::isSpace(m_d[word.end]) && !isCommentStart(word.end, list.end))
            ++word.end;
        if (wantDirection && !is(word, "IN") && !is(word, "OUT") && !is(word, "INOUT")) {
            error(p, "PIOMAP needs IN, OUT or INOUT before each pin name, not '%s'", text(word).c_str());
            return;
        }
        entries += wantDirection ? 1 : 0;
        wantDirection = !wantDirection;
        p = word.end;
    }
    if (!wantDirection) {
        error(at, "PIOMAP ends without a pin name");
        return;
    }
    m_pioMapEntries = entries;
}

void KCSvfSyntaxCheck::checkPio()
{
    const size_t at = m_statement.front().begin;
    if (m_statement.size() != 2 || m_statement[1].type != TokenType::Vector) {
        error(at, "PIO needs one vector in parentheses");
        return;
    }
    const Token &vector = m_statement[1];
    int positions = 0;
    for (size_t p = vector.begin; p < vector.end; ++p) {
        const uint8_t c = m_d[p];
        if (KCDeviceText::isSpace(c))
            continue;
        if (isCommentStart(p, vector.end)) {
            p = skipComment(p) - 1;
            continue;
        }
        if (!c || !strchr("HLUDZXhludzx", c)) {
            error(p, "'%c' is not a PIO state (H, L, U, D, Z, X)", c);
            return;
        }
        ++positions;
    }
    if (m_pioMapEntries < 0)
        error(at, "PIO before any PIOMAP");
    else if (positions != m_pioMapEntries)
        error(at, "PIO vector has %d positions, PIOMAP %d pins", positions, m_pioMapEntries);
}
