#include "serial/KCSerialDefCtrl.h"
#include "KCTestHost.h"
#include "serial/cSerialDefFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace {
using Ctrl = KCSerialDefCtrl;

class SerialDefTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = ::testing::TempDir() + "serialdefXXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir = pattern + "/";
    }
    void TearDown() override { std::system(("rm -rf '" + dir + "'").c_str()); }

    std::string write(const std::string &text, const std::string &name = "a.ser")
    {
        std::ofstream(dir + name, std::ios::binary) << text;
        return dir + name;
    }
    static std::string read(const std::string &path)
    {
        std::ostringstream s;
        s << std::ifstream(path, std::ios::binary).rdbuf();
        return s.str();
    }
    // Consumes one number of `block`; the formatted bytes, or "FAIL".
    std::string take(Ctrl &ctrl, unsigned flags, int block = 0, int advance = 1)
    {
        unsigned length = 0, value = 0;
        std::string text;
        char data[Ctrl::DataBufferSize];
        return ctrl.SERIAL_GetNextSerialNumber(block, &flags, &length, &value, data, &text, advance, 1)
            ? text
            : "FAIL";
    }

    KCTestHost host;
    std::string dir;
};

std::string withLineEnds(std::string text, const std::string &eol)
{
    std::string out;
    for (char c : text)
        out += c == '\n' ? eol : std::string(1, c);
    return out;
}

const unsigned HexAsc = Ctrl::FlagHex | Ctrl::FlagAsc;
const unsigned HexBin = Ctrl::FlagHex | Ctrl::FlagBin;
}

TEST_F(SerialDefTest, ParsesCommentsNestingAndEveryLineEnd)
{
    const std::string text = "// two blocks\n"
                             "First /* the name */\n"
                             "{\n"
                             "  type = calc   // value and key in any case\n"
                             "  Length=2;\n"
                             "  NEXT = 0x1F ,\n"
                             "  step=10 /* decimal */\n"
                             "  /* a comment over lines\n"
                             "  STEP=7\n"
                             "  is read as data */ LENGTH=3\n"
                             "  inner {\n"
                             "    NEXT=0x20\n"
                             "  } x=1 ; } hidden by the semicolon\n"
                             "  NEXT=0x 21\n"
                             "  TYPE=WORD\n"
                             "  NONSENSE=1\n"
                             "}\n"
                             "// {not a block}\n"
                             "{\n"
                             "TYPE=List\n"
                             "LIST_NUMBER=\"a//b\"\n"
                             "NEXTINDEX=2\n"
                             "}";
    for (const char *eol : {"\r\n", "\n", "\r"}) {
        SCOPED_TRACE(::testing::PrintToString(eol));
        Ctrl ctrl(&host, write(withLineEnds(text, eol)));
        ASSERT_EQ(ctrl.FILE_UpdateDefFileInfo(), 1);
        ASSERT_EQ(ctrl.blockCount(), 2);
        const TAG_SERIAL_NUMBER calc = ctrl.GetSerialBlock(0);
        EXPECT_EQ(calc.name, "First");
        EXPECT_EQ(calc.type, TAG_SERIAL_NUMBER::TypeCalc);
        EXPECT_EQ(calc.length, 3);
        EXPECT_EQ(calc.step, 7u);
        // the nested line counts; the line with a blank in its value keeps the old value
        EXPECT_EQ(calc.next, 0x20u);
        EXPECT_EQ(calc.nextLine, 11);
        const TAG_SERIAL_NUMBER list = ctrl.GetSerialBlock(1);
        EXPECT_EQ(list.name, "Noname");
        EXPECT_EQ(list.type, TAG_SERIAL_NUMBER::TypeList);
        ASSERT_EQ(list.elementCount, 1u);
        EXPECT_EQ(list.elements[0].value, "\"a//b\"");
        EXPECT_EQ(list.nextIndex, 2u);
        EXPECT_EQ(list.nextIndexLine, 21);
    }
    EXPECT_TRUE(host.messages.empty());
}

TEST_F(SerialDefTest, ReportsControlBytesAndRejectsAnOpenBlock)
{
    Ctrl ctrl(&host, write("A\r\n{\r\nTYPE=CALC\r\nLENGTH=1 // \x02\r\n\x01}"));
    ASSERT_EQ(ctrl.FILE_UpdateDefFileInfo(), 1);
    EXPECT_EQ(ctrl.GetSerialBlock(0).length, 1);
    ASSERT_EQ(host.messages.size(), 2u);
    EXPECT_EQ(host.messages[0], dir + "a.ser(4): control character 0x02 in the serial number definition");
    EXPECT_EQ(host.messages[1], dir + "a.ser(5): control character 0x01 in the serial number definition");

    Ctrl open(&host, write("A\n{\nTYPE=CALC\n{\n}\n", "b.ser"));
    EXPECT_EQ(open.FILE_UpdateDefFileInfo(), 0);
    EXPECT_EQ(open.blockCount(), 0);
    EXPECT_EQ(Ctrl(&host, dir + "missing.ser").FILE_UpdateDefFileInfo(), 0);
    EXPECT_NE(access((dir + "missing.ser").c_str(), F_OK), 0);
}

TEST(SerialDefFormat, RepresentationTable)
{
    const struct
    {
        unsigned flags, length, value;
        std::string bytes;
    } cases[] = {
        {Ctrl::FlagDec | Ctrl::FlagAsc, 2, 7, "00007"},
        {Ctrl::FlagDec | Ctrl::FlagAsc, 3, 7, "00000007"},
        {Ctrl::FlagDec | Ctrl::FlagBin, 1, 7, std::string("\x00\x07", 2)},
        {Ctrl::FlagDec | Ctrl::FlagBin, 4, 4294967295u, "\x42\x94\x96\x72\x95"},
        {Ctrl::FlagDec | Ctrl::FlagBin | Ctrl::FlagLittleEndian, 2, 12345, std::string("\x45\x23\x01", 3)},
        {HexAsc, 2, 0xAB, "00ab"},
        {HexAsc | Ctrl::FlagLittleEndian, 2, 0xAB, "ba00"},
        {HexBin, 2, 0x12345678, "\x56\x78"},
        {HexBin | Ctrl::FlagLittleEndian, 3, 0x123456, "\x56\x34\x12"},
    };
    for (const auto &c : cases) {
        std::string out;
        ASSERT_EQ(Ctrl::SERIAL_FORMAT_SerialCalcNumber(c.flags, c.length, c.value, &out), 1) << c.flags;
        EXPECT_EQ(out, c.bytes) << std::hex << c.flags << " " << c.value;
    }
    std::string out;
    EXPECT_EQ(Ctrl::SERIAL_FORMAT_SerialCalcNumber(Ctrl::FlagHex, 2, 1, &out), 0);
    EXPECT_EQ(Ctrl::SERIAL_FORMAT_SerialCalcNumber(Ctrl::FlagAsc, 2, 1, &out), 0);
    EXPECT_EQ(Ctrl::SERIAL_FORMAT_SerialCalcNumber(HexAsc, 5, 1, &out), 0);
    EXPECT_EQ(Ctrl::SERIAL_FORMAT_SerialListNumber(0, 5, "0xABC", &out), 1);
    EXPECT_EQ(out, "\x0A\xBC");
    EXPECT_EQ(Ctrl::SERIAL_FORMAT_SerialListNumber(0, 5, "0xABG", &out), 0);
    EXPECT_EQ(Ctrl::SERIAL_FORMAT_SerialListNumber(0, 3, "abc", &out), 0);
}

TEST_F(SerialDefTest, DefaultFileIsCreatedOnFirstUse)
{
    Ctrl ctrl(&host, dir + Ctrl::DefaultFileName);
    EXPECT_EQ(take(ctrl, HexBin), std::string("\0\0\0\0", 4));
    EXPECT_EQ(read(dir + Ctrl::DefaultFileName), withLineEnds("Calc1\n{\nTYPE=CALC\nLENGTH=4\nNEXT=0x1\nSTEP=0x1\n}", "\r\n"));
    EXPECT_EQ(take(ctrl, HexBin), std::string("\0\0\0\1", 4));
    EXPECT_EQ(take(ctrl, HexAsc), "00000002");
    EXPECT_EQ(take(ctrl, HexAsc, 0, 0), "00000003");
    EXPECT_EQ(take(ctrl, HexAsc, 0, 0), "00000003");
}

TEST_F(SerialDefTest, WriteBackKeepsEveryOtherByte)
{
    const std::string before = "/* stations 1-4 */\r\n"
                               "Board\t// main series\r\n"
                               "{\r\n"
                               "\tTYPE=CALC\r\n"
                               "\tLENGTH=1\r\n"
                               "\tnext = 0xff ,  // wraps\r\n"
                               "\tSTEP=1\r\n"
                               "}\r\n"
                               "Tags\r\n"
                               "{ TYPE=LIST\r\n"
                               "  LIST_NUMBER=\"AB\"\r\n"
                               "  LIST_NUMBER=0xABC\r\n"
                               "  LIST_NUMBER=\"x\"\r\n"
                               "   NEXTINDEX=0}\r\n"
                               "// end\r\n";
    const std::string path = write(before);
    Ctrl ctrl(&host, path);
    EXPECT_EQ(take(ctrl, HexBin), "\xff");
    std::string after = before;
    after.replace(after.find("\tnext = 0xff ,  "), 16, "NEXT=0x0        ");
    after.replace(after.find("   NEXTINDEX=0}"), 15, " NEXTINDEX=0x0}");
    EXPECT_EQ(read(path), after);
    EXPECT_EQ(take(ctrl, HexBin), std::string(1, '\0'));

    // LIST: 0, 1, 2, 0 and the index wraps in the file
    const std::string list[] = {"AB", "\x0A\xBC", "x", "AB"};
    for (const std::string &element : list)
        EXPECT_EQ(take(ctrl, 0, 1), element);
    EXPECT_EQ(take(ctrl, Ctrl::FlagLittleEndian, 1), "\xBC\x0A");
    const std::string now = read(path);
    EXPECT_NE(now.find("\r\n NEXTINDEX=0x2}\r\n// end\r\n"), std::string::npos) << now;
    EXPECT_EQ(now.substr(0, now.find("NEXT=")), before.substr(0, before.find("\tnext")));
    EXPECT_EQ(ctrl.FILE_UpdateDefFileInfo(), 1);
    EXPECT_EQ(ctrl.GetSerialBlock(1).nextIndex, 2u);
}

TEST_F(SerialDefTest, RefusesWhatItCannotHandOutSafely)
{
    const std::string path = write("A\n{\nTYPE=CALC\nLENGTH=5\nNEXT=3\n}\nB\n{\nTYPE=CALC\nLENGTH=1\n}\nC\n{\n}\n");
    Ctrl ctrl(&host, path);
    unsigned flags = HexAsc | Ctrl::FlagList, length = 0, value = 0;
    std::string text;
    EXPECT_EQ(ctrl.SERIAL_GetNextSerialNumber(0, &flags, &length, &value, nullptr, &text, 1, 1), 0);
    EXPECT_EQ(flags, HexAsc | Ctrl::FlagCalc | Ctrl::FlagConsumed);
    EXPECT_EQ(length, 5u);
    EXPECT_EQ(value, 3u);
    EXPECT_EQ(take(ctrl, HexAsc, 1), "FAIL"); // no NEXT line to remember the number in
    EXPECT_EQ(take(ctrl, HexAsc, 1, 0), "00");
    EXPECT_EQ(take(ctrl, HexAsc, 2), "FAIL");
    EXPECT_EQ(take(ctrl, HexAsc, 3), "FAIL");
    ASSERT_EQ(host.messages.size(), 3u);
    EXPECT_EQ(host.messages[0], path + "(2): serial number block \"A\": LENGTH 5 is not 1 to 4 bytes");
    EXPECT_NE(host.messages[1].find("(8): serial number block \"B\" has no NEXT"), std::string::npos);
    EXPECT_NE(host.messages[2].find("(13): serial number block \"C\" has no known TYPE"), std::string::npos);
    EXPECT_EQ(read(path).find("0x"), std::string::npos);
}

TEST_F(SerialDefTest, SavesTheFirstBlockIntoTheDefaultLayout)
{
    Ctrl ctrl(&host, dir + Ctrl::DefaultFileName);
    ASSERT_EQ(ctrl.FILE_UpdateDefFileInfo(), 1);
    TAG_SERIAL_NUMBER first = ctrl.GetSerialBlock(0);
    first.length = 2;
    first.next = 0x1234;
    first.step = 0x10;
    ASSERT_EQ(ctrl.SetSerialBlock(0, first), 1);
    EXPECT_EQ(ctrl.SetSerialBlock(1, first), 0);
    ASSERT_EQ(ctrl.FILE_WriteSerialFile(), 1);
    EXPECT_EQ(read(dir + Ctrl::DefaultFileName),
              withLineEnds("Calc1\n{\nTYPE=CALC\nLENGTH=2\nNEXT=0x1234\nSTEP=0x10\n}", "\r\n"));
}

TEST_F(SerialDefTest, CancelEndsTheWaitForAHeldFile)
{
    const std::string path = write(Ctrl::DefaultFileText);
    std::atomic<bool> never{false};
    cSerialDefFile otherStation;
    ASSERT_EQ(otherStation.open(path, true, never), cSerialDefFile::Opened);

    Ctrl ctrl(&host, path);
    EXPECT_EQ(take(ctrl, HexAsc, 0, 0), "00000000"); // readers take no lock
    std::string result;
    std::thread station([&] { result = take(ctrl, HexAsc); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ctrl.FILE_CancelWaiting();
    station.join();
    EXPECT_EQ(result, "FAIL");
    otherStation.close();
    EXPECT_EQ(take(ctrl, HexAsc), "00000000");
}
