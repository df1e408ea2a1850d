#include "KCFormatTestTools.h"
#include "KCStaplCrc.h"
#include "KCStaplFile.h"

#include <string>

using namespace KCFormatTest;
using namespace std::string_literals;

namespace {

std::string replaced(std::string text, const std::string &from, const std::string &to)
{
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

} // namespace

TEST(KCStaplFile, CrcIsTheX25Variant)
{
    EXPECT_EQ(KCStaplCrc::compute(reinterpret_cast<const uint8_t *>("123456789"), 9), 0x906E);
}

TEST(KCStaplFile, ReferenceFilePassesWithEitherLineEnd)
{
    for (const char *name : {"stapl/reference.stp", "stapl/reference-crlf.stp"}) {
        const std::string text = dataFile(name);
        const Loaded l = load("stapl", text);
        ASSERT_TRUE(l.result.ok) << name << l.sink.dump();
        EXPECT_EQ(l.sink.count(KCFileMessage::Warning) + l.sink.count(KCFileMessage::Error), 0u) << l.sink.dump();
        EXPECT_EQ(std::string(l.bytes.begin(), l.bytes.end()), text);
        EXPECT_TRUE(l.sink.contains(KCFileMessage::Info, "NOTE CREATOR: krldv reference example"));
        EXPECT_TRUE(l.sink.contains(KCFileMessage::Info, "ACTION READ_IDCODE"));
        EXPECT_TRUE(KCStaplFile::detect(reinterpret_cast<const uint8_t *>(text.data()), text.size()));
    }
}

TEST(KCStaplFile, CrcCoversTheRightBytes)
{
    const std::string reference = dataFile("stapl/reference.stp");

    const Loaded changed = load("stapl", replaced(reference, "IDCODE read", "IDCODE reaD"));
    EXPECT_FALSE(changed.result.ok);
    const Message *e = changed.sink.first(KCFileMessage::Error);
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->text, "CRC is 1332, expected 9C52");
    EXPECT_EQ(e->line, 14u);

    const Loaded blank = load("stapl", replaced(reference, "CRC 9C52;", "\nCRC 9C52;"));
    EXPECT_FALSE(blank.result.ok);
    EXPECT_TRUE(blank.sink.contains(KCFileMessage::Error, "CRC is 2E29"));

    KCLoadOptions anyway;
    anyway.ignoreChecksums = true;
    const Loaded forced = load("stapl", replaced(reference, "CRC 9C52;", "\nCRC 9C52;"), anyway);
    EXPECT_TRUE(forced.result.ok);
    EXPECT_TRUE(forced.sink.contains(KCFileMessage::Warning, "CRC is 2E29"));

    // A CRC inside a comment or a string is not the statement.
    const Loaded commented = load("stapl", replaced(reference, "CRC 9C52;", "' CRC 1234;\nCRC 3161;"));
    EXPECT_TRUE(commented.result.ok) << commented.sink.dump();
    const Loaded lower = load("stapl", replaced(reference, "CRC 9C52;", "CRC 9c52 ;\n' trailing comment\n"));
    EXPECT_TRUE(lower.result.ok) << lower.sink.dump();
    EXPECT_EQ(lower.sink.count(KCFileMessage::Warning), 0u) << lower.sink.dump();
}

TEST(KCStaplFile, MissingCrcAndTrailingTextWarn)
{
    const std::string reference = dataFile("stapl/reference.stp");
    const Loaded none = load("stapl", replaced(reference, "CRC 9C52;\n", "PRINT \"no CRC ; here ' either\";\n"));
    EXPECT_TRUE(none.result.ok);
    EXPECT_TRUE(none.sink.contains(KCFileMessage::Warning, "no CRC statement"));

    const Loaded trailing = load("stapl", reference + "EXIT 1;\n");
    EXPECT_TRUE(trailing.result.ok);
    EXPECT_TRUE(trailing.sink.contains(KCFileMessage::Warning, "text after the CRC statement"));
}

TEST(KCStaplFile, RejectsDamagedText)
{
    const Loaded quote = load("stapl", "NOTE \"CREATOR\" \"open;\nEXIT 0;\n");
    EXPECT_FALSE(quote.result.ok);
    ASSERT_NE(quote.sink.first(KCFileMessage::Error), nullptr);
    EXPECT_EQ(quote.sink.first(KCFileMessage::Error)->line, 1u);
    EXPECT_TRUE(quote.sink.contains(KCFileMessage::Error, "unbalanced quotes"));

    for (const std::string &text : {"NOTE \"A\" \"B\";\n\0"s, "\xF1\x02\x10\x80 byte code"s}) {
        const Loaded l = load("stapl", text);
        EXPECT_FALSE(l.result.ok);
        EXPECT_TRUE(l.sink.contains(KCFileMessage::Error, "not a STAPL text file"));
    }
    const Loaded malformed = load("stapl", "EXIT 0;\nCRC 12;\n");
    EXPECT_FALSE(malformed.result.ok);
    EXPECT_TRUE(malformed.sink.contains(KCFileMessage::Error, "malformed CRC statement"));
}
