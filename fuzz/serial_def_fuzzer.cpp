// Parses the fuzz input as a serial-number definition file and takes a number from every
// block, in each representation, as a production station would: no crash, no hang, and a
// file that still parses after its write-back.
#include "host/KCHostStringTable.h"
#include "host/KCMainProgDataExChange.h"
#include "serial/KCSerialDefCtrl.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

class QuietHost : public KCMainProgDataExChange
{
public:
    void ShowMessage(const std::string &text, uint32_t, uint32_t, int) override
    {
        if (text.empty())
            std::abort();
    }
    std::string GetHostString(unsigned id) const override { return m_strings.text(id); }
    void SetStatusBarText(unsigned, const std::string &) override {}
    int MessageBox(const std::string &, unsigned) override { return KCPrompt::IDCANCEL; }
    int GetOpenDataDocumentCount() const override { return 1; }
    std::string GetNoDeviceName() const override { return "No Device"; }
    uint64_t GetDefaultBufferSize() const override { return 0x10000; }
    uint8_t GetFillByte() const override { return 0xFF; }
    std::string GetLastDirectory() const override { return std::string(); }
    void SetLastDirectory(const std::string &) override {}

private:
    KCHostStringTable m_strings;
};

std::string definitionPath()
{
    // A file in memory where there is such a folder: the write-back is part of every run.
    const char *dir = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    return std::string(dir) + "/krldv-fuzz-" + std::to_string(::getpid()) + ".ser";
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static QuietHost host;
    static const std::string path = definitionPath();
    std::FILE *f = std::fopen(path.c_str(), "wb");
    if (!f)
        return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);

    KCSerialDefCtrl ctrl(&host, path);
    const unsigned representations[] = {
        KCSerialDefCtrl::FlagHex | KCSerialDefCtrl::FlagAsc,
        KCSerialDefCtrl::FlagDec | KCSerialDefCtrl::FlagAsc | KCSerialDefCtrl::FlagLittleEndian,
        KCSerialDefCtrl::FlagHex | KCSerialDefCtrl::FlagBin,
        KCSerialDefCtrl::FlagDec | KCSerialDefCtrl::FlagBin,
    };
    char buffer[KCSerialDefCtrl::DataBufferSize];
    for (int block = 0; block < 4; ++block) {
        unsigned flags = representations[block], length = 0, value = 0;
        std::string number;
        ctrl.SERIAL_GetNextSerialNumber(block, &flags, &length, &value, buffer, &number, 1, 1);
        if (number.size() >= KCSerialDefCtrl::DataBufferSize * 3)
            std::abort();
    }
    return 0;
}
