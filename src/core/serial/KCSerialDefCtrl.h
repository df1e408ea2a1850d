#pragma once

#include "serial/TAG_SERIAL_NUMBER.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

class KCFormatArg;
class KCMainProgDataExChange;
class cSerialDefFile;

// Owns one serial definition file: reads its blocks, formats the next number of a block
// as the bytes that go into the buffer, and advances the block in the file in place, so
// that several programming stations can share one file.
class KCSerialDefCtrl
{
public:
    // The flag word exchanged with the callers.
    static constexpr unsigned FlagCalc = 0x0001;
    static constexpr unsigned FlagList = 0x0002;
    static constexpr unsigned FlagDec = 0x0004;
    static constexpr unsigned FlagHex = 0x0008;
    static constexpr unsigned FlagBin = 0x0010;
    static constexpr unsigned FlagAsc = 0x0020;
    static constexpr unsigned FlagLittleEndian = 0x0040;
    static constexpr unsigned FlagBigEndian = 0x0080;
    // Not the number's form but the production run's: a failed device's number is given back
    // ("reuse") instead of used up. In the flag word it is kept wherever the representation is.
    static constexpr unsigned FlagReuseFailed = 0x0100;
    static constexpr unsigned FlagConsumed = 0x8000;

    // Modes of FILE_OpenDef.
    static constexpr unsigned ModeReadOnly = 0; // shared reading, no lock
    static constexpr unsigned ModeConsume = 1;  // read-write, exclusive until closed

    static constexpr const char *DefaultFileName = "krdefser.ser";
    static constexpr const char *DefaultFileText =
        "Calc1\r\n{\r\nTYPE=CALC\r\nLENGTH=4\r\nNEXT=0x0\r\nSTEP=0x1\r\n}";
    static constexpr size_t MaxPathLength = 260;
    static constexpr size_t MaxElementLength = 4096;
    // Bytes the `data` argument of the number functions must provide.
    static constexpr size_t DataBufferSize = MaxElementLength + 1;
    // Larger files are refused; a definition file holds a few blocks.
    static constexpr size_t MaxFileSize = size_t(16) << 20;
    static constexpr unsigned MinCalcLength = 1;
    static constexpr unsigned MaxCalcLength = 4;

    KCSerialDefCtrl(KCMainProgDataExChange *host, const std::string &fileName);
    ~KCSerialDefCtrl();
    KCSerialDefCtrl(const KCSerialDefCtrl &) = delete;
    KCSerialDefCtrl &operator=(const KCSerialDefCtrl &) = delete;

    // A name longer than MaxPathLength leaves the control without a file.
    void FILE_SetSerialFilename(const std::string &fileName);
    const std::string *FILE_GetSerialFileName() const { return &m_fileName; }
    // Re-reads the file and its blocks without consuming anything.
    int FILE_UpdateDefFileInfo();

    // Null when there is no host, no file name, the file is missing (a missing default
    // file is created first) or the wait for a held file was cancelled.
    std::unique_ptr<cSerialDefFile> FILE_OpenDef(unsigned mode);
    int FILE_ReadDef(cSerialDefFile *file);
    int FILE_WriteDef(cSerialDefFile *file);
    int FILE_CloseDef(cSerialDefFile *file);
    // Ends a wait for a file another station holds; callable from any thread. A cancel
    // given before the wait starts ends that wait.
    void FILE_CancelWaiting() { m_cancelWaiting = true; }

    // A copy; an index out of range gives an empty block.
    TAG_SERIAL_NUMBER GetSerialBlock(int index) const;
    int SetSerialBlock(unsigned index, const TAG_SERIAL_NUMBER &block);
    int blockCount() const { return static_cast<int>(m_blocks.size()); }
    const std::string &fileText() const { return m_text; }

    // The number of `block` as bytes in `text` (and in `data`, which needs DataBufferSize
    // bytes or may be null). `readFile` reads the file first; with `advance` as well the
    // block is advanced in the file within one exclusive open.
    int SERIAL_GetNextSerialNumber(int block, unsigned *flags, unsigned *length, unsigned *value,
                                   char *const data, std::string *text, int advance, int readFile);
    // Formats `value` as a CALC number without touching the file.
    int SERIAL_GetSerialNumber(unsigned flags, unsigned length, unsigned value, char *const data,
                               std::string *text);
    // Runs `locked` while the file is held exclusively and its blocks are freshly read, so a
    // caller can take numbers (SERIAL_GetNextSerialNumber without readFile) and note them
    // elsewhere before any other station sees the file; the blocks are written back when
    // `locked` sets *writeBack. 0 when the file cannot be had or `locked` returns 0.
    int FILE_ConsumeLocked(const std::function<int(bool *writeBack)> &locked);
    // Writes the first block's length, next and step into lines 3, 4 and 5 of the file,
    // which must have the default file's layout.
    int FILE_WriteSerialFile();

    static int SERIAL_FORMAT_SerialCalcNumber(unsigned flags, unsigned length, unsigned value,
                                              std::string *out);
    static int SERIAL_FORMAT_SerialListNumber(unsigned flags, unsigned length,
                                              const char *const element, std::string *out);
    // Digits of `radix` (16, or 10 for packed BCD) to bytes, two digits a byte, counted
    // from the right; false on a character that is not such a digit.
    static bool SERIAL_FORMAT_ASCIIString_2_BYTEVector(const std::string &digits, int radix,
                                                       std::string *bytes);
    static std::string SERIAL_FORMAT_ReverseString(const std::string &text);

protected:
    int SERIAL_GetNextSerialCalcNumber(TAG_SERIAL_NUMBER *block, unsigned *flags, unsigned *length,
                                       unsigned *value, char *const data, std::string *text,
                                       int advance);
    int SERIAL_GetNextSerialListNumber(TAG_SERIAL_NUMBER *block, unsigned *flags, unsigned *length,
                                       char *const data, std::string *text, int advance);

    int BUFR_GetSerialBlocks();
    int BUFR_GetNextBlock(uint32_t from, TAG_SERIAL_NUMBER *block) const;
    int BUFR_ParseBlock(TAG_SERIAL_NUMBER *block);
    int BUFR_ParseBlockBody(TAG_SERIAL_NUMBER *block);
    // The line at `pos` ends at *lineEnd (before its CR LF, LF or CR, or at `end`);
    // returns where the next line starts.
    uint32_t BUFR_GetNextLine(uint32_t pos, uint32_t end, uint32_t *lineEnd) const;
    // The data part of the line [lineStart, lineEnd) once comments are removed.
    void BUFR_ExtractDataLine(uint32_t lineStart, uint32_t lineEnd, uint32_t *dataStart,
                              uint32_t *dataEnd) const;
    // 1 with key and value, 0 for a line that is no parameter line, -1 for a rejected value.
    int BUFR_GetParameter(uint32_t dataStart, uint32_t dataEnd, std::string *key,
                          std::string *value) const;
    // A number of a parameter line; one above 32 bits is saturated and told.
    uint32_t number(const std::string &key, const std::string &value, int line) const;
    int BUFR_SetParameter(TAG_SERIAL_NUMBER *block, const std::string &key,
                          const std::string &value, int line) const;
    int BUFW_ModifySerialBlocks();
    int BUFW_ModifySerialBlock(int line, unsigned value, const std::string &prefix);

private:
    void showMessage(unsigned id, std::initializer_list<KCFormatArg> args) const;
    void reportControlCharacters() const;
    int lineNumberAt(uint32_t pos);
    bool findLineStart(int line, uint32_t *start);
    void resetTextCaches();

    KCMainProgDataExChange *m_host;
    std::string m_fileName;
    std::string m_text; // the whole file
    std::atomic<bool> m_cancelWaiting{false};
    std::vector<TAG_SERIAL_NUMBER> m_blocks;

    // Lines are found by counting from the last place looked at, so a pass through the
    // file in order stays linear.
    uint32_t m_countedPos = 0;
    int m_countedLine = 0;
    uint32_t m_foundLineStart = 0;
    int m_foundLine = 0;
};
