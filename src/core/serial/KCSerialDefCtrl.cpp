#include "serial/KCSerialDefCtrl.h"

#include "host/KCFormat.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"
#include "serial/cSerialDefFile.h"

#include <algorithm>
#include <cstring>

namespace {
constexpr unsigned char Tab = '\t';
constexpr unsigned char FirstTextByte = 10; // lower bytes other than TAB are control bytes
constexpr uint32_t MaxNumber = 0xFFFFFFFFu;
constexpr uint16_t MaxLengthField = 0xFFFF;
constexpr int Hex = 16;
constexpr int Decimal = 10;
// Decimal digits of a CALC number by its length in bytes.
constexpr unsigned DecimalWidth[KCSerialDefCtrl::MaxCalcLength + 1] = {0, 3, 5, 8, 10};
const char *const LowerHexDigits = "0123456789abcdef";
const char *const NonameBlock = "Noname";

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool isLineEnd(char c)
{
    return c == '\r' || c == '\n';
}

int digitValue(char c, int radix)
{
    int v;
    if (c >= '0' && c <= '9')
        v = c - '0';
    else if (c >= 'a' && c <= 'f')
        v = c - 'a' + 10;
    else if (c >= 'A' && c <= 'F')
        v = c - 'A' + 10;
    else
        return -1;
    return v < radix ? v : -1;
}

// Only a lower-case "0x" makes a number hexadecimal: "0X1F" is decimal and reads 0.
bool hasHexPrefix(const char *text, size_t size)
{
    return size >= 2 && text[0] == '0' && text[1] == 'x';
}

bool equalsNoCase(const std::string &a, const char *b)
{
    const size_t n = std::strlen(b);
    if (a.size() != n)
        return false;
    for (size_t i = 0; i < n; ++i) {
        char c = a[i];
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
        if (c != b[i])
            return false;
    }
    return true;
}

std::string trimmed(const char *begin, const char *end)
{
    while (begin < end && isBlank(*begin))
        ++begin;
    while (end > begin && isBlank(end[-1]))
        --end;
    return std::string(begin, end);
}

// Hexadecimal ("0x") or decimal; stops at the first character that is no digit of the base
// and saturates at the largest 32-bit value, which `overflow` tells.
uint32_t parseNumber(const std::string &value, bool *overflow = nullptr)
{
    if (overflow)
        *overflow = false;
    int radix = Decimal;
    size_t i = 0;
    if (hasHexPrefix(value.data(), value.size())) {
        radix = Hex;
        i = 2;
    }
    uint64_t v = 0;
    for (; i < value.size(); ++i) {
        const int d = digitValue(value[i], radix);
        if (d < 0)
            break;
        v = v * static_cast<uint64_t>(radix) + static_cast<uint64_t>(d);
        if (v > MaxNumber) {
            v = MaxNumber;
            if (overflow)
                *overflow = true;
        }
    }
    return static_cast<uint32_t>(v);
}

std::string toDigits(uint32_t value, int radix, size_t width)
{
    char digits[16];
    size_t n = 0;
    do {
        digits[n++] = LowerHexDigits[value % static_cast<uint32_t>(radix)];
        value /= static_cast<uint32_t>(radix);
    } while (value != 0);
    std::string text(n < width ? width - n : 0, '0');
    while (n > 0)
        text += digits[--n];
    return text;
}

void copyToData(char *const data, const std::string &bytes)
{
    if (!data)
        return;
    const size_t n = std::min(bytes.size(), KCSerialDefCtrl::DataBufferSize - 1);
    std::memcpy(data, bytes.data(), n);
    data[n] = '\0';
}

bool endsWith(const std::string &text, const char *suffix)
{
    const size_t n = std::strlen(suffix);
    return text.size() >= n && text.compare(text.size() - n, n, suffix) == 0;
}

// The brace scan ignores the rest of a line after ';' or '/'.
struct BraceScan
{
    bool ignoring = false;
    // The change of the nesting depth: 1 for a "{" that counts, -1 for a "}", else 0.
    int step(char c)
    {
        if (isLineEnd(c)) {
            ignoring = false;
        } else if (!ignoring) {
            if (c == ';' || c == '/')
                ignoring = true;
            else if (c == '{')
                return 1;
            else if (c == '}')
                return -1;
        }
        return 0;
    }
};
}

KCSerialDefCtrl::KCSerialDefCtrl(KCMainProgDataExChange *host, const std::string &fileName)
    : m_host(host)
{
    FILE_SetSerialFilename(fileName);
}

KCSerialDefCtrl::~KCSerialDefCtrl() = default;

void KCSerialDefCtrl::FILE_SetSerialFilename(const std::string &fileName)
{
    // Cutting a long name would name another file.
    m_fileName = fileName.size() <= MaxPathLength ? fileName : std::string();
}

int KCSerialDefCtrl::FILE_UpdateDefFileInfo()
{
    const std::unique_ptr<cSerialDefFile> file = FILE_OpenDef(ModeReadOnly);
    if (!file)
        return 0;
    const int ok = FILE_ReadDef(file.get()) && BUFR_GetSerialBlocks();
    FILE_CloseDef(file.get());
    return ok;
}

std::unique_ptr<cSerialDefFile> KCSerialDefCtrl::FILE_OpenDef(unsigned mode)
{
    if (!m_host || m_fileName.empty())
        return nullptr;
    auto file = std::make_unique<cSerialDefFile>();
    bool created = false;
    for (;;) {
        const cSerialDefFile::OpenResult result = file->open(m_fileName, mode == ModeConsume, m_cancelWaiting);
        if (result == cSerialDefFile::Opened)
            break;
        if (result == cSerialDefFile::Missing && !created && endsWith(m_fileName, DefaultFileName)
            && cSerialDefFile::createComplete(m_fileName, DefaultFileText)) {
            created = true;
            continue;
        }
        if (result == cSerialDefFile::NotRegular)
            showMessage(KCHostStrings::SerialNotAFile, {m_fileName});
        else if (result == cSerialDefFile::Failed)
            showMessage(KCHostStrings::SerialFileError, {m_fileName, "cannot open it", file->errorText()});
        file.reset();
        break;
    }
    m_cancelWaiting = false;
    return file;
}

int KCSerialDefCtrl::FILE_ReadDef(cSerialDefFile *file)
{
    resetTextCaches();
    if (!file || !file->readAll(&m_text, MaxFileSize)) {
        if (file && file->tooLarge())
            showMessage(KCHostStrings::SerialFileTooLarge, {m_fileName, static_cast<unsigned>(MaxFileSize >> 20)});
        else if (file)
            showMessage(KCHostStrings::SerialFileError, {m_fileName, "cannot read it", file->errorText()});
        m_text.clear();
        return 0;
    }
    return 1;
}

int KCSerialDefCtrl::FILE_WriteDef(cSerialDefFile *file)
{
    if (!file)
        return 0;
    if (file->replaceAll(m_text))
        return 1;
    // The caller hands out nothing: the number is not used, whatever reached the disk.
    showMessage(KCHostStrings::SerialFileError,
                {m_fileName, "cannot write it back; no serial number was taken", file->errorText()});
    return 0;
}

int KCSerialDefCtrl::FILE_CloseDef(cSerialDefFile *file)
{
    return file && file->close() ? 1 : 0;
}

TAG_SERIAL_NUMBER KCSerialDefCtrl::GetSerialBlock(int index) const
{
    if (index < 0 || index >= blockCount())
        return TAG_SERIAL_NUMBER();
    return m_blocks[static_cast<size_t>(index)];
}

int KCSerialDefCtrl::SetSerialBlock(unsigned index, const TAG_SERIAL_NUMBER &block)
{
    if (index >= m_blocks.size())
        return 0;
    m_blocks[index] = block;
    return 1;
}

int KCSerialDefCtrl::SERIAL_GetNextSerialNumber(int block, unsigned *flags, unsigned *length,
                                                unsigned *value, char *const data, std::string *text,
                                                int advance, int readFile)
{
    if (!flags || !length || !value || !text)
        return 0;
    std::unique_ptr<cSerialDefFile> file;
    if (readFile) {
        file = FILE_OpenDef(advance ? ModeConsume : ModeReadOnly);
        if (!file)
            return 0;
        if (!FILE_ReadDef(file.get()) || !BUFR_GetSerialBlocks()) {
            FILE_CloseDef(file.get());
            return 0;
        }
    }
    int ok = 0;
    if (block >= 0 && block < blockCount()) {
        TAG_SERIAL_NUMBER &b = m_blocks[static_cast<size_t>(block)];
        const int numberLine = b.type == TAG_SERIAL_NUMBER::TypeList ? b.nextIndexLine : b.nextLine;
        if (readFile && advance && b.type != TAG_SERIAL_NUMBER::TypeNone && numberLine == TAG_SERIAL_NUMBER::NoLine) {
            // Handing out a number the file cannot remember would repeat it at every station.
            showMessage(KCHostStrings::SerialNoNumberLine, {m_fileName, lineNumberAt(b.braceOpen) + 1, b.name});
        } else if (b.type == TAG_SERIAL_NUMBER::TypeCalc) {
            ok = SERIAL_GetNextSerialCalcNumber(&b, flags, length, value, data, text, advance);
        } else if (b.type == TAG_SERIAL_NUMBER::TypeList) {
            ok = SERIAL_GetNextSerialListNumber(&b, flags, length, data, text, advance);
        } else {
            showMessage(KCHostStrings::SerialUnknownType, {m_fileName, lineNumberAt(b.braceOpen) + 1, b.name});
        }
    }
    if (ok && readFile && advance)
        ok = BUFW_ModifySerialBlocks() && FILE_WriteDef(file.get());
    if (file && !FILE_CloseDef(file.get()))
        ok = 0;
    return ok;
}

int KCSerialDefCtrl::SERIAL_GetNextSerialCalcNumber(TAG_SERIAL_NUMBER *block, unsigned *flags,
                                                    unsigned *length, unsigned *value,
                                                    char *const data, std::string *text, int advance)
{
    *length = block->length;
    *value = block->next;
    *flags = (*flags & ~(FlagList | FlagConsumed)) | FlagCalc | (advance ? FlagConsumed : 0);
    if (block->length < MinCalcLength || block->length > MaxCalcLength) {
        showMessage(KCHostStrings::SerialBadLength, {m_fileName, lineNumberAt(block->braceOpen) + 1, block->name,
                                                     block->lengthText.empty() ? std::string("0") : block->lengthText});
        return 0;
    }
    const int line = lineNumberAt(block->braceOpen) + 1;
    if (block->hasLast && block->next > block->last) {
        showMessage(KCHostStrings::SerialPastLast, {m_fileName, line, block->name, block->next, block->last});
        return 0;
    }
    if (!SERIAL_FORMAT_SerialCalcNumber(*flags, block->length, block->next, text))
        return 0;
    copyToData(data, *text);
    if (advance) {
        const uint64_t mask = (uint64_t(1) << (8 * block->length)) - 1;
        const uint64_t following = uint64_t(block->next) + block->step;
        if (block->hasLast && following > block->last) {
            // Above LAST the file keeps a number no station takes.
            block->next = static_cast<uint32_t>(std::min<uint64_t>(following, MaxNumber));
        } else {
            // A silent wrap would hand out numbers again: it is told while the number
            // before it goes out.
            if (following > mask)
                showMessage(KCHostStrings::SerialWraps,
                            {m_fileName, line, block->name, block->next, static_cast<unsigned>(block->length)});
            block->next = static_cast<uint32_t>(following & mask);
        }
    }
    return 1;
}

int KCSerialDefCtrl::SERIAL_GetNextSerialListNumber(TAG_SERIAL_NUMBER *block, unsigned *flags,
                                                    unsigned *length, char *const data,
                                                    std::string *text, int advance)
{
    const size_t count = block->elements.size();
    if (count == 0)
        return 0;
    // An index beyond the list (edited by hand) still picks an element.
    const uint32_t index = static_cast<uint32_t>(block->nextIndex % count);
    const std::string &element = block->elements[index].value;
    if (element.size() > MaxElementLength)
        return 0;
    copyToData(data, element);
    *length = static_cast<unsigned>(element.size());
    *flags = (*flags & ~(FlagCalc | FlagConsumed)) | FlagList | (advance ? FlagConsumed : 0);
    if (!SERIAL_FORMAT_SerialListNumber(*flags, *length, element.data(), text))
        return 0;
    if (advance)
        block->nextIndex = static_cast<uint32_t>((index + 1) % count);
    return 1;
}

int KCSerialDefCtrl::SERIAL_GetSerialNumber(unsigned flags, unsigned length, unsigned value,
                                            char *const data, std::string *text)
{
    if (!text || !SERIAL_FORMAT_SerialCalcNumber(flags, length, value, text))
        return 0;
    copyToData(data, *text);
    return 1;
}

int KCSerialDefCtrl::FILE_ConsumeLocked(const std::function<int(bool *writeBack)> &locked)
{
    const std::unique_ptr<cSerialDefFile> file = FILE_OpenDef(ModeConsume);
    if (!file)
        return 0;
    bool writeBack = false;
    int ok = FILE_ReadDef(file.get()) && BUFR_GetSerialBlocks() && locked(&writeBack);
    if (ok && writeBack)
        ok = BUFW_ModifySerialBlocks() && FILE_WriteDef(file.get());
    if (!FILE_CloseDef(file.get()))
        ok = 0;
    return ok;
}

int KCSerialDefCtrl::FILE_WriteSerialFile()
{
    // Fixed lines of the default file's layout.
    constexpr int LengthLine = 3;
    constexpr int NextLine = 4;
    constexpr int StepLine = 5;
    if (m_blocks.empty())
        return 0;
    const std::unique_ptr<cSerialDefFile> file = FILE_OpenDef(ModeConsume);
    if (!file)
        return 0;
    const TAG_SERIAL_NUMBER first = m_blocks.front();
    int ok = FILE_ReadDef(file.get()) && BUFW_ModifySerialBlock(LengthLine, first.length, "LENGTH=")
        && BUFW_ModifySerialBlock(NextLine, first.next, "NEXT=0x")
        && BUFW_ModifySerialBlock(StepLine, first.step, "STEP=0x") && FILE_WriteDef(file.get());
    if (!FILE_CloseDef(file.get()))
        ok = 0;
    if (ok)
        BUFR_GetSerialBlocks();
    return ok;
}

int KCSerialDefCtrl::SERIAL_FORMAT_SerialCalcNumber(unsigned flags, unsigned length, unsigned value,
                                                    std::string *out)
{
    if (!out || length < MinCalcLength || length > MaxCalcLength)
        return 0;
    const bool hex = flags & FlagHex;
    const bool dec = flags & FlagDec;
    const bool asc = flags & FlagAsc;
    const bool bin = flags & FlagBin;
    if (!(hex || dec) || !(asc || bin))
        return 0;
    std::string result;
    if (hex && bin) {
        for (unsigned i = length; i-- > 0;)
            result += static_cast<char>((value >> (8 * i)) & 0xFF);
    } else if (hex) {
        result = toDigits(value, Hex, 2 * length);
    } else {
        result = toDigits(value, Decimal, DecimalWidth[length]);
        if (bin)
            SERIAL_FORMAT_ASCIIString_2_BYTEVector(result, Decimal, &result);
    }
    *out = flags & FlagLittleEndian ? SERIAL_FORMAT_ReverseString(result) : result;
    return 1;
}

int KCSerialDefCtrl::SERIAL_FORMAT_SerialListNumber(unsigned flags, unsigned length,
                                                    const char *const element, std::string *out)
{
    if (!element || !out || length > MaxElementLength)
        return 0;
    std::string bytes;
    if (length >= 2 && element[0] == '"' && element[length - 1] == '"')
        bytes.assign(element + 1, length - 2);
    else if (!hasHexPrefix(element, length)
             || !SERIAL_FORMAT_ASCIIString_2_BYTEVector(std::string(element + 2, length - 2), Hex, &bytes))
        return 0;
    *out = flags & FlagLittleEndian ? SERIAL_FORMAT_ReverseString(bytes) : bytes;
    return 1;
}

bool KCSerialDefCtrl::SERIAL_FORMAT_ASCIIString_2_BYTEVector(const std::string &digits, int radix,
                                                            std::string *bytes)
{
    if (!bytes)
        return false;
    std::string result;
    result.reserve(digits.size() / 2 + 1);
    // An odd count reads as if it had a leading "0".
    size_t i = 0;
    if (digits.size() % 2 != 0) {
        const int low = digitValue(digits[0], radix);
        if (low < 0)
            return false;
        result += static_cast<char>(low);
        i = 1;
    }
    for (; i < digits.size(); i += 2) {
        const int high = digitValue(digits[i], radix);
        const int low = digitValue(digits[i + 1], radix);
        if (high < 0 || low < 0)
            return false;
        result += static_cast<char>(high << 4 | low);
    }
    *bytes = std::move(result);
    return true;
}

std::string KCSerialDefCtrl::SERIAL_FORMAT_ReverseString(const std::string &text)
{
    return std::string(text.rbegin(), text.rend());
}

int KCSerialDefCtrl::BUFR_GetSerialBlocks()
{
    m_blocks.clear();
    resetTextCaches();
    reportControlCharacters();
    uint32_t cursor = 0;
    for (;;) {
        TAG_SERIAL_NUMBER block;
        if (!BUFR_GetNextBlock(cursor, &block))
            return 1;
        if (!BUFR_ParseBlock(&block)) {
            m_blocks.clear();
            return 0;
        }
        cursor = block.readPos;
        m_blocks.push_back(std::move(block));
    }
}

int KCSerialDefCtrl::BUFR_GetNextBlock(uint32_t from, TAG_SERIAL_NUMBER *block) const
{
    const uint32_t end = static_cast<uint32_t>(m_text.size());
    BraceScan scan;
    for (uint32_t p = from; p < end; ++p) {
        if (scan.step(m_text[p]) > 0) {
            block->blockStart = from;
            block->braceOpen = p;
            block->textEnd = end;
            block->readPos = p + 1;
            return 1;
        }
    }
    return 0;
}

int KCSerialDefCtrl::BUFR_ParseBlock(TAG_SERIAL_NUMBER *block)
{
    // The name: what lies before the "{", line by line without comments and line ends.
    std::string name;
    uint32_t pos = block->blockStart;
    while (pos < block->braceOpen) {
        uint32_t lineEnd, dataStart, dataEnd;
        const uint32_t next = BUFR_GetNextLine(pos, block->braceOpen, &lineEnd);
        BUFR_ExtractDataLine(pos, lineEnd, &dataStart, &dataEnd);
        name.append(m_text, dataStart, dataEnd - dataStart);
        pos = next;
    }
    block->name = trimmed(name.data(), name.data() + name.size());
    if (block->name.empty())
        block->name = NonameBlock;
    return BUFR_ParseBlockBody(block);
}

int KCSerialDefCtrl::BUFR_ParseBlockBody(TAG_SERIAL_NUMBER *block)
{
    // The block ends at the "}" that brings the depth back to zero.
    BraceScan scan;
    int depth = 1;
    uint32_t close = block->readPos;
    for (; close < block->textEnd; ++close) {
        depth += scan.step(m_text[close]);
        if (depth == 0)
            break;
    }
    if (depth != 0) {
        showMessage(KCHostStrings::SerialUnclosedBlock, {m_fileName, lineNumberAt(block->braceOpen) + 1, block->name});
        return 0;
    }

    uint32_t pos = block->readPos;
    int line = lineNumberAt(pos);
    std::string key, value;
    while (pos < close) {
        uint32_t lineEnd, dataStart, dataEnd;
        const uint32_t next = BUFR_GetNextLine(pos, close, &lineEnd);
        BUFR_ExtractDataLine(pos, lineEnd, &dataStart, &dataEnd);
        if (BUFR_GetParameter(dataStart, dataEnd, &key, &value) > 0)
            BUFR_SetParameter(block, key, value, line);
        if (next > lineEnd)
            ++line;
        pos = next;
    }
    block->readPos = close + 1;
    return 1;
}

uint32_t KCSerialDefCtrl::BUFR_GetNextLine(uint32_t pos, uint32_t end, uint32_t *lineEnd) const
{
    const char *const text = m_text.data();
    uint32_t p = pos;
    while (p < end && !isLineEnd(text[p]))
        ++p;
    *lineEnd = p;
    if (p < end)
        p += (text[p] == '\r' && p + 1 < end && text[p + 1] == '\n') ? 2 : 1;
    return p;
}

void KCSerialDefCtrl::BUFR_ExtractDataLine(uint32_t lineStart, uint32_t lineEnd, uint32_t *dataStart,
                                           uint32_t *dataEnd) const
{
    const char *const text = m_text.data();
    *dataStart = lineStart;
    *dataEnd = lineEnd;
    bool quoted = false;
    bool headDropped = false;
    for (uint32_t p = lineStart; p < lineEnd; ++p) {
        const char c = text[p];
        if (c == '"') {
            quoted = !quoted;
            continue;
        }
        if (quoted || p + 1 >= lineEnd)
            continue;
        const char n = text[p + 1];
        if (c == '/' && (n == '/' || n == '*')) {
            *dataEnd = p;
            return;
        }
        if (c == '*' && n == '/' && !headDropped) {
            // A comment closed here began on an earlier line: drop up to its end.
            headDropped = true;
            *dataStart = p + 2;
            ++p;
        }
    }
}

int KCSerialDefCtrl::BUFR_GetParameter(uint32_t dataStart, uint32_t dataEnd, std::string *key,
                                       std::string *value) const
{
    const char *const begin = m_text.data() + dataStart;
    const char *const end = m_text.data() + dataEnd;
    const char *const equals = std::find(begin, end, '=');
    if (equals == end)
        return 0;
    *key = trimmed(begin, equals);
    *value = trimmed(equals + 1, end);
    if (!value->empty() && (value->back() == ',' || value->back() == ';')) {
        value->pop_back();
        *value = trimmed(value->data(), value->data() + value->size());
    }
    return std::any_of(value->begin(), value->end(), isBlank) ? -1 : 1;
}

uint32_t KCSerialDefCtrl::number(const std::string &key, const std::string &value, int line) const
{
    bool overflow = false;
    const uint32_t v = parseNumber(value, &overflow);
    if (overflow)
        showMessage(KCHostStrings::SerialNumberTooLarge, {m_fileName, line + 1, key, value});
    return v;
}

int KCSerialDefCtrl::BUFR_SetParameter(TAG_SERIAL_NUMBER *block, const std::string &key,
                                       const std::string &value, int line) const
{
    if (equalsNoCase(key, "TYPE")) {
        if (equalsNoCase(value, "CALC"))
            block->type = TAG_SERIAL_NUMBER::TypeCalc;
        else if (equalsNoCase(value, "LIST"))
            block->type = TAG_SERIAL_NUMBER::TypeList;
        else
            return 0;
    } else if (equalsNoCase(key, "LENGTH")) {
        block->length = static_cast<uint16_t>(std::min<uint32_t>(number(key, value, line), MaxLengthField));
        block->lengthText = value;
    } else if (equalsNoCase(key, "NEXT")) {
        block->next = number(key, value, line);
        block->nextText = value;
        block->nextLine = line;
    } else if (equalsNoCase(key, "STEP")) {
        block->step = number(key, value, line);
    } else if (equalsNoCase(key, "LAST")) {
        block->last = number(key, value, line);
        block->hasLast = true;
    } else if (equalsNoCase(key, "NEXTINDEX")) {
        block->nextIndex = number(key, value, line);
        block->nextIndexLine = line;
    } else if (equalsNoCase(key, "LIST_NUMBER")) {
        if (value.size() > MaxElementLength) {
            showMessage(KCHostStrings::SerialElementTooLong,
                        {m_fileName, line + 1, static_cast<unsigned>(std::min<size_t>(value.size(), UINT32_MAX)),
                         static_cast<unsigned>(MaxElementLength)});
            return 0;
        }
        block->elements.push_back({value});
        block->elementCount = static_cast<uint32_t>(block->elements.size());
    } else {
        return 0;
    }
    return 1;
}

int KCSerialDefCtrl::BUFW_ModifySerialBlocks()
{
    int ok = 1;
    for (const TAG_SERIAL_NUMBER &block : m_blocks) {
        if (block.type == TAG_SERIAL_NUMBER::TypeCalc && block.nextLine != TAG_SERIAL_NUMBER::NoLine)
            ok = BUFW_ModifySerialBlock(block.nextLine, block.next, "NEXT=0x") && ok;
        else if (block.type == TAG_SERIAL_NUMBER::TypeList && block.nextIndexLine != TAG_SERIAL_NUMBER::NoLine)
            ok = BUFW_ModifySerialBlock(block.nextIndexLine, block.nextIndex, "NEXTINDEX=0x") && ok;
    }
    return ok;
}

// The data part of the line becomes prefix and value, padded with blanks to its old length
// when it would get shorter. So the file never shrinks: the whole-text write that follows
// covers every old byte, and a reader or a crash between that write and the truncation
// never meets a stale tail. Braces on the line that delimit blocks stay where they are.
int KCSerialDefCtrl::BUFW_ModifySerialBlock(int line, unsigned value, const std::string &prefix)
{
    uint32_t lineStart, lineEnd, dataStart, dataEnd;
    if (!findLineStart(line, &lineStart))
        return 0;
    BUFR_GetNextLine(lineStart, static_cast<uint32_t>(m_text.size()), &lineEnd);
    BUFR_ExtractDataLine(lineStart, lineEnd, &dataStart, &dataEnd);

    uint32_t equals = dataStart;
    while (equals < dataEnd && m_text[equals] != '=')
        ++equals;
    BraceScan scan;
    uint32_t start = dataStart;
    uint32_t end = dataEnd;
    for (uint32_t p = lineStart; p < dataEnd; ++p) {
        if (scan.step(m_text[p]) == 0 || p < dataStart)
            continue;
        if (p < equals) {
            start = p + 1;
        } else {
            end = p;
            break;
        }
    }
    if (end < start)
        end = start;

    std::string replacement = prefix + toDigits(value, Hex, 0);
    if (replacement.size() < end - start) {
        // Blanks after the value would join it to a "}" that follows; before the key they
        // are trimmed away.
        const size_t padding = end - start - replacement.size();
        if (end == dataEnd)
            replacement.append(padding, ' ');
        else
            replacement.insert(0, padding, ' ');
    }
    m_text.replace(start, end - start, replacement);
    return 1;
}

void KCSerialDefCtrl::showMessage(unsigned id, std::initializer_list<KCFormatArg> args) const
{
    if (m_host)
        m_host->ShowMessage(KCFormat::format(m_host->GetHostString(id), args));
}

void KCSerialDefCtrl::reportControlCharacters() const
{
    int line = 1;
    const size_t size = m_text.size();
    for (size_t i = 0; i < size; ++i) {
        const unsigned char c = static_cast<unsigned char>(m_text[i]);
        if (c >= FirstTextByte) {
            if (c == '\r' || (c == '\n' && (i == 0 || m_text[i - 1] != '\r')))
                ++line;
        } else if (c != Tab) {
            // Every such byte is told, so a file with several shows each of them.
            showMessage(KCHostStrings::SerialControlChar, {m_fileName, line, static_cast<unsigned>(c)});
        }
    }
}

int KCSerialDefCtrl::lineNumberAt(uint32_t pos)
{
    if (pos < m_countedPos) {
        m_countedPos = 0;
        m_countedLine = 0;
    }
    const char *const text = m_text.data();
    const uint32_t end = std::min<uint32_t>(pos, static_cast<uint32_t>(m_text.size()));
    for (uint32_t p = m_countedPos; p < end; ++p) {
        if (text[p] == '\r' || (text[p] == '\n' && (p == 0 || text[p - 1] != '\r')))
            ++m_countedLine;
    }
    m_countedPos = end;
    return m_countedLine;
}

bool KCSerialDefCtrl::findLineStart(int line, uint32_t *start)
{
    if (line < 0)
        return false;
    if (line < m_foundLine) {
        m_foundLine = 0;
        m_foundLineStart = 0;
    }
    const uint32_t size = static_cast<uint32_t>(m_text.size());
    while (m_foundLine < line) {
        uint32_t lineEnd;
        const uint32_t next = BUFR_GetNextLine(m_foundLineStart, size, &lineEnd);
        if (next == lineEnd)
            return false; // the last line has no line end: there is no line after it
        m_foundLineStart = next;
        ++m_foundLine;
    }
    *start = m_foundLineStart;
    return true;
}

void KCSerialDefCtrl::resetTextCaches()
{
    m_countedPos = 0;
    m_countedLine = 0;
    m_foundLineStart = 0;
    m_foundLine = 0;
}
