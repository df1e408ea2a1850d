#include "KCFormatTestTools.h"
#include "KCSvfFile.h"

#include <string>

using namespace KCFormatTest;
using namespace std::string_literals;

TEST(KCSvfFile, ReferenceFileIsStoredUnchangedAndPasses)
{
    const std::string text = dataFile("svf/reference.svf");
    const Loaded l = load("svf", text);
    ASSERT_TRUE(l.result.ok) << l.sink.dump();
    EXPECT_TRUE(l.sink.messages.empty()) << l.sink.dump();
    EXPECT_EQ(std::string(l.bytes.begin(), l.bytes.end()), text);
    EXPECT_TRUE(KCSvfFile::detect(reinterpret_cast<const uint8_t *>(text.data()), text.size()));
}

TEST(KCSvfFile, AcceptsLegalVariants)
{
    const char *const accepted[] = {
        "SIR 6 TDI (3F);",
        "sdr 8 tdi (0f);",
        "SDR 8 TDI (01); SDR 8 TDO (01);",
        "SDR 16 TDI (12\n! a comment line inside the vector\n34) // and one after\n;",
        "SDR 12 TDI (0FFF);",
        "HDR 0; HIR 0 TDI ();",
        "PIOMAP (IN A OUT B INOUT C); PIO (HLZ); PIO (udx);",
        "RUNTEST 1000 TCK; RUNTEST DRPAUSE 10 SCK 1E-3 SEC MAXIMUM 2.5 SEC ENDSTATE IDLE; RUNTEST 0.01 SEC;",
        "STATE DREXIT1 DRPAUSE; FREQUENCY; FREQUENCY 12e6 Hz; TRST ABSENT;",
        "\xEF\xBB\xBFTRST ON;\r\n\x1A",
    };
    for (const char *text : accepted) {
        const Loaded l = load("svf", text);
        EXPECT_TRUE(l.result.ok) << text << "\n" << l.sink.dump();
        EXPECT_EQ(l.sink.count(KCFileMessage::Warning), 0u) << text << "\n" << l.sink.dump();
    }
}

TEST(KCSvfFile, SyntaxErrorsFailWithTheirLine)
{
    struct Case
    {
        std::string text;
        uint64_t line;
        const char *part;
    };
    const Case cases[] = {
        {"TRST OFF;\nSIR 6 TDI (FF);", 2, "sets bit 7, beyond the length of 6 bits"},
        {"SDR 8 TDI (0F;\nTRST OFF;", 1, "unbalanced parenthesis"},
        {"SDR 8 TDI ((0F));", 1, "cannot nest"},
        {"TRST OFF;\n\nSTATE IDLE", 3, "not terminated at end of file"},
        {"FOO 1;", 1, "unknown command 'FOO'"},
        {"SDR 8 TDI (01);\nSDR 16 TDO (0001);", 2, "length changes from 8 to 16"},
        {"SDR 8 TDI (0G);", 1, "'G' in TDI is not a hex digit"},
        {"SDR 8 TDI (01) TDI (02);", 1, "TDI given twice"},
        {"SDR 8 TDI 01;", 1, "needs a hex string"},
        {"SDR x TDI (01);", 1, "needs a bit length"},
        {"ENDDR DRSHIFT;", 1, "stable state"},
        {"STATE IDLE DRSHIFT;", 1, "must end in a stable state"},
        {"STATE NOWHERE;", 1, "not a TAP state"},
        {"TRST MAYBE;", 1, "TRST needs"},
        {"FREQUENCY 1E6;", 1, "HZ"},
        {"RUNTEST 100;", 1, "clock count or a time"},
        {"RUNTEST 100 MS;", 1, "TCK or SCK"},
        {"RUNTEST 10 TCK ENDSTATE DRSHIFT;", 1, "ENDSTATE needs a stable state"},
        {"PIO (HL);", 1, "PIO before any PIOMAP"},
        {"PIOMAP (IN A OUT B);\nPIO (HLZ);", 2, "3 positions, PIOMAP 2"},
        {"PIOMAP (IN A OUT B);\nPIO (HQ);", 2, "not a PIO state"},
        {"TRST OFF;\nSDR 8 TDI (\x01);", 2, "control character 0x01"},
        {"TRST OFF;\0"s, 1, "control character 0x00"},
        {"TRST OFF;)", 1, "')' without '('"},
    };
    for (const Case &c : cases) {
        const Loaded l = load("svf", c.text);
        EXPECT_FALSE(l.result.ok) << c.text;
        const Message *e = l.sink.first(KCFileMessage::Error);
        ASSERT_NE(e, nullptr) << c.text;
        EXPECT_NE(e->text.find(c.part), std::string::npos) << c.text << "\n" << e->text;
        EXPECT_EQ(e->line, c.line) << e->text;
        EXPECT_EQ(e->file, kFileName);
    }
}

TEST(KCSvfFile, DoubtfulInputOnlyWarns)
{
    const Loaded shortVector = load("svf", "SDR 16 TDI (F);");
    EXPECT_TRUE(shortVector.result.ok);
    EXPECT_TRUE(shortVector.sink.contains(KCFileMessage::Warning, "1 hex digits where 16 bits need 4"));

    const Loaded maskOnly = load("svf", "SDR 8 TDI (00) MASK (FF);");
    EXPECT_TRUE(maskOnly.result.ok);
    EXPECT_TRUE(maskOnly.sink.contains(KCFileMessage::Warning, "no TDO"));

    const Loaded longLine = load("svf", "TRST OFF;\n! " + std::string(300, 'x') + "\n! " + std::string(300, 'y') + "\n");
    EXPECT_TRUE(longLine.result.ok);
    ASSERT_EQ(longLine.sink.count(KCFileMessage::Warning), 1u);
    EXPECT_EQ(longLine.sink.first(KCFileMessage::Warning)->line, 2u);
}

TEST(KCSvfFile, ManyErrorsAreCappedAndCounted)
{
    std::string text;
    for (int i = 0; i < 50; ++i)
        text += "BOGUS;\n";
    const Loaded l = load("svf", text);
    EXPECT_FALSE(l.result.ok);
    EXPECT_EQ(l.sink.count(KCFileMessage::Error), KCSvfFile::kMaxMessages);
    EXPECT_TRUE(l.sink.contains(KCFileMessage::Warning, "30 further problems not shown"));
}
