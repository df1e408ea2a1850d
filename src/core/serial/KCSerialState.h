#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

class KCMainProgDataExChange;
class KCSerialDefCtrl;
class KCSerialTarget;

// The serial numbers of a document's production run: the definition file, the number's
// representation, where in the buffer it goes and the number last formatted. The number is
// cut to the byte count as it always was; stampProblem() lets a host refuse a setting that
// would cut it, before anything is taken from the file.
class KCSerialState
{
public:
    KCSerialState(KCMainProgDataExChange *host, KCSerialTarget &target);
    ~KCSerialState();

    void InitSerialNumberDefault();
    int EnableSerialNumberUsability(int enable);
    int GetNextSerialNumberFromFile(int advance, int readFile);
    int GetSerialNumber();
    int WriteSerialNumberToBuffer();
    int UpdateSerialDataFromFile();

    // Why the next number cannot be written as set up, or empty when it can: a formatted
    // number longer than the bytes set aside for it (it would be cut, and devices would get
    // the same number), or a place outside the buffer. Looks at the number without taking it.
    std::string stampProblem();
    // The same rule for a number of `numberBytes` bytes, set up as given.
    static std::string placementProblem(size_t numberBytes, unsigned byteCount, unsigned address,
                                        uint64_t targetSize);
    // Takes the next number and writes it, as before each device of a production run, after
    // the checks above. `report` says what was written, or why nothing was taken.
    bool takeNext(std::string &report);
    // "Serial number 00001006 written at 0x000042F0 (8 bytes)".
    std::string writtenText() const;

    KCSerialDefCtrl *serialDefCtrl() const { return m_ctrl.get(); }
    KCMainProgDataExChange *host() const { return m_host; }
    KCSerialTarget &target() const { return m_target; }
    void invalidate() { m_valid = false; }
    bool isValid() const { return m_valid; }
    int mode() const { return m_mode; }
    void setMode(int mode) { m_mode = mode; }
    const std::string &numberText() const { return m_number; }
    unsigned length() const { return m_length; }
    unsigned value() const { return m_value; }
    unsigned flags() const { return m_flags; }
    void setFlags(unsigned flags) { m_flags = flags; }
    unsigned byteCount() const { return m_byteCount; }
    void setByteCount(unsigned count) { m_byteCount = count; }
    unsigned address() const { return m_address; }
    void setAddress(unsigned address) { m_address = address; }
    const std::string &defPath() const { return m_defPath; }
    void setDefPath(const std::string &path) { m_defPath = path; }

private:
    bool peek(std::string &number);

    KCMainProgDataExChange *m_host;
    KCSerialTarget &m_target;
    std::unique_ptr<KCSerialDefCtrl> m_ctrl;
    int m_mode = 0;
    std::string m_number;
    unsigned m_length = 0;
    unsigned m_value = 0;
    unsigned m_flags = 0;
    unsigned m_byteCount = 0;
    unsigned m_address = 0;
    std::string m_defPath;
    bool m_valid = false;
};
