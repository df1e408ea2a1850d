#include "doc/KCDataDoc.h"
#include "serial/KCSerialDefCtrl.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

struct SerialFile
{
    explicit SerialFile(const std::string &text)
    {
        char tmpl[] = "/tmp/krldv-docserial-XXXXXX";
        dir = ::mkdtemp(tmpl);
        path = dir + "/line.ser";
        std::ofstream(path, std::ios::binary) << text;
    }
    ~SerialFile() { std::system(("rm -rf '" + dir + "'").c_str()); }
    std::string read() const
    {
        std::ifstream in(path, std::ios::binary);
        std::stringstream ss;
        ss << in.rdbuf();
        return ss.str();
    }
    std::string dir, path;
};

std::string bytesAt(const KCDataDoc &doc, uint32_t at, uint32_t n)
{
    std::string s;
    for (uint32_t i = 0; i < n; ++i)
        s += static_cast<char>(doc.GetData(at + i));
    return s;
}

const char *const Calc12 = "Run\r\n{\r\nTYPE=CALC\r\nLENGTH=4\r\nNEXT=0x12\r\nSTEP=0x1\r\n}";

} // namespace

TEST(KCDataDocSerial, DefaultsWriteHexTextAtTheDefaultAddressWithoutConsuming)
{
    KCTestHost host;
    SerialFile file(Calc12);
    KCDataDoc doc;
    EXPECT_EQ(doc.GetNextSerialNumberFromFile(0, 1), 0); // no definition file yet
    doc.setSerialDefPath(file.path);
    ASSERT_EQ(doc.EnableSerialNumberUsability(1), 1);

    ASSERT_EQ(doc.GetNextSerialNumberFromFile(0, 1), 1); // a preview: nothing consumed
    EXPECT_EQ(bytesAt(doc, 0x100, 8), "00000012");
    EXPECT_EQ(doc.GetData(0x108), 0xFF);
    EXPECT_TRUE(doc.IsModified());
    EXPECT_EQ(file.read(), Calc12);

    // The same number again changes nothing.
    doc.SetModifiedFlag(0);
    EXPECT_EQ(doc.GetSerialNumber(), 1);
    EXPECT_FALSE(doc.IsModified());

    // A production device consumes it: the file moves on.
    ASSERT_EQ(doc.GetNextSerialNumberFromFile(1, 1), 1);
    EXPECT_EQ(bytesAt(doc, 0x100, 8), "00000012");
    EXPECT_NE(file.read().find("NEXT=0x13"), std::string::npos);
    ASSERT_EQ(doc.GetNextSerialNumberFromFile(1, 1), 1);
    EXPECT_EQ(bytesAt(doc, 0x100, 8), "00000013");
}

TEST(KCDataDocSerial, ANumberRunningPastTheBufferEndWritesWhatFits)
{
    KCTestHost host;
    host.defaultBufferSize = 0x104;
    SerialFile file(Calc12);
    KCDataDoc doc;
    doc.setSerialDefPath(file.path);
    ASSERT_EQ(doc.EnableSerialNumberUsability(1), 1);
    EXPECT_EQ(doc.GetNextSerialNumberFromFile(0, 1), 0);
    EXPECT_EQ(bytesAt(doc, 0x100, 4), "0000");

    // Fewer bytes than the number: cut to the byte count.
    doc.setSerialAddress(0);
    doc.setSerialByteCount(3);
    EXPECT_EQ(doc.GetSerialNumber(), 1);
    EXPECT_EQ(bytesAt(doc, 0, 4), std::string("000\xFF", 4));

    EXPECT_EQ(doc.EnableSerialNumberUsability(0), 1);
    EXPECT_EQ(doc.serialDefCtrl(), nullptr);
    EXPECT_EQ(doc.GetSerialNumber(), 0);
}

TEST(KCDataDocSerial, EnablingFailsForAMissingFile)
{
    KCTestHost host;
    KCDataDoc doc;
    doc.setSerialDefPath("/nonexistent/dir/line.ser");
    EXPECT_EQ(doc.EnableSerialNumberUsability(1), 0);
    EXPECT_EQ(doc.serialDefCtrl(), nullptr);
}
