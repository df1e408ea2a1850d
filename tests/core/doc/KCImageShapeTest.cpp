// An image keeps its shape: what was loaded is what gets saved, plus what the user changed.
#include "doc/KCDataDoc.h"
#include "KCTempDir.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Ranges = std::vector<KCAddressRange>;

bool anyMessage(const KCTestHost &host, const std::string &part)
{
    for (const auto &m : host.messages)
        if (m.find(part) != std::string::npos)
            return true;
    return false;
}

bool open(KCDataDoc &doc, const std::string &path, LOADSAVE_FILETYPE type)
{
    doc.mainBufferParam()->fileType = type;
    return doc.OnOpenDocument(path.c_str());
}

std::string intelRecord(uint32_t address, const std::vector<uint8_t> &bytes)
{
    std::vector<uint8_t> r = {uint8_t(bytes.size()), uint8_t(address >> 8), uint8_t(address), 0};
    r.insert(r.end(), bytes.begin(), bytes.end());
    uint8_t sum = 0;
    std::string text = ":";
    char hex[3];
    for (uint8_t b : r) {
        sum += b;
        std::snprintf(hex, sizeof hex, "%02X", b);
        text += hex;
    }
    std::snprintf(hex, sizeof hex, "%02X", uint8_t(-sum));
    return text + hex + "\r\n";
}

// Data at 0x0000-0x03FF and 0x4000-0x42FF, nothing between.
std::string sparseIntel()
{
    std::string text;
    for (uint32_t a = 0; a < 0x400; a += 16)
        text += intelRecord(a, std::vector<uint8_t>(16, uint8_t(a >> 4)));
    for (uint32_t a = 0x4000; a < 0x4300; a += 16)
        text += intelRecord(a, std::vector<uint8_t>(16, 0x00));
    return text + ":00000001FF\r\n";
}

} // namespace

TEST(KCDataMap, KeepsDisjointRangesThatMergeAndSplit)
{
    KCDataMap map;
    map.add(10, 19);
    map.add(30, 39);
    map.add(20, 20); // touches the first: merges
    map.add(25, 32); // overlaps the second
    EXPECT_EQ(map.ranges(), (Ranges{{10, 20}, {25, 39}}));
    map.remove(12, 27);
    EXPECT_EQ(map.ranges(), (Ranges{{10, 11}, {28, 39}}));
    EXPECT_EQ(map.rangesIn(11, 30), (Ranges{{11, 11}, {28, 30}}));
    EXPECT_EQ(map.countIn(0, UINT64_MAX), 14u);
    EXPECT_TRUE(map.contains(28));
    EXPECT_FALSE(map.contains(27));
    map.add(0, UINT64_MAX);
    EXPECT_EQ(map.ranges(), (Ranges{{0, UINT64_MAX}}));
    map.truncate(5);
    EXPECT_EQ(map.ranges(), (Ranges{{0, 4}}));
}

// Load, save under the same format, load again: the same ranges and bytes, and a binary
// file of the same size, for every writable format's sample files.
TEST(KCImageShape, EveryWritableFormatRoundTripsItsSamples)
{
    const struct
    {
        const char *file;
        LOADSAVE_FILETYPE type;
    } samples[] = {
        {"bin/krldv.bin", LS_BINARY},          {"intel/krldv-i16.hex", LS_INTELHEX},
        {"intel/krldv-i32.hex", LS_INTELHEX},  {"intel/krldv-start.hex", LS_INTELHEX},
        {"motorola/krldv-s1.srec", LS_MOTOROLA}, {"motorola/krldv-s2.srec", LS_MOTOROLA},
        {"motorola/krldv-s3.srec", LS_MOTOROLA}, {"jedec/tiny-crlf.jed", LS_JEDEC},
        {"jedec/jesd3-example.jed", LS_JEDEC},
    };
    KCTestHost host;
    TempDir dir;
    writeFile(dir.file("sparse.hex"), sparseIntel());
    std::vector<std::pair<std::string, LOADSAVE_FILETYPE>> files = {{dir.file("sparse.hex"), LS_INTELHEX}};
    for (const auto &s : samples)
        files.emplace_back(std::string(KRLDV_TEST_DATA_DIR) + "/" + s.file, s.type);

    for (const auto &[path, type] : files) {
        SCOPED_TRACE(path);
        KCDataDoc first;
        ASSERT_TRUE(open(first, path, type));
        const std::string out = dir.file("out");
        ASSERT_TRUE(first.OnSaveDocument(out.c_str()));
        KCDataDoc second;
        ASSERT_TRUE(open(second, out, type));
        EXPECT_EQ(second.dataMap().ranges(), first.dataMap().ranges());
        ASSERT_EQ(second.GetBufferSize(), first.GetBufferSize());
        const uint8_t *a = first.AlgoParam().buffer(0).data();
        const uint8_t *b = second.AlgoParam().buffer(0).data();
        for (const KCAddressRange &r : first.dataMap().ranges())
            EXPECT_EQ(std::string(a + r.first, a + r.second + 1), std::string(b + r.first, b + r.second + 1));
        if (type == LS_BINARY) {
            EXPECT_EQ(readFile(out).size(), readFile(path).size());
        }
    }
}

TEST(KCImageShape, SavesKeepGapsAndSizeAndSayWhatWasWritten)
{
    KCTestHost host;
    host.defaultBufferSize = 0x10000;
    TempDir dir;
    writeFile(dir.file("sparse.hex"), sparseIntel());
    KCDataDoc doc;
    ASSERT_TRUE(open(doc, dir.file("sparse.hex"), LS_INTELHEX));
    EXPECT_EQ(doc.GetBufferSize(), 0x4300u);
    EXPECT_EQ(doc.mainBufferParam()->checksumEnd, 0x42FFu);

    // A byte typed into the gap becomes data of its own; the rest of the gap stays a gap.
    doc.SetData(0x77, 0x1000);
    doc.mainBufferParam()->fileType = LS_INTELHEX;
    ASSERT_TRUE(doc.OnSaveDocument(dir.file("out.hex").c_str()));
    EXPECT_TRUE(anyMessage(host, "out.hex : written as Intel Hex: 0x00000000-0x000003FF, 0x00001000-0x00001000, "
                                 "0x00004000-0x000042FF (1793 bytes)"));
    KCDataDoc back;
    ASSERT_TRUE(open(back, dir.file("out.hex"), LS_INTELHEX));
    EXPECT_EQ(back.dataMap().ranges(), (Ranges{{0, 0x3FF}, {0x1000, 0x1000}, {0x4000, 0x42FF}}));

    // Binary writes the extent, gaps as fill; a name outside the format's family is told.
    doc.mainBufferParam()->fileType = LS_BINARY;
    ASSERT_TRUE(doc.OnSaveDocument(dir.file("x.s19").c_str()));
    EXPECT_EQ(readFile(dir.file("x.s19")).size(), 0x4300u);
    EXPECT_EQ(uint8_t(readFile(dir.file("x.s19"))[0x2000]), 0xFF);
    EXPECT_TRUE(anyMessage(host, "x.s19 written as Binary"));

    // An explicit save range: record formats write only the defined part inside it.
    doc.setSaveRange(KCAddressRange{0x3F0, 0x4003});
    doc.mainBufferParam()->fileType = LS_INTELHEX;
    ASSERT_TRUE(doc.OnSaveDocument(dir.file("part.hex").c_str()));
    KCDataDoc part;
    ASSERT_TRUE(open(part, dir.file("part.hex"), LS_INTELHEX));
    EXPECT_EQ(part.dataMap().ranges(), (Ranges{{0x3F0, 0x3FF}, {0x1000, 0x1000}, {0x4000, 0x4003}}));
}

TEST(KCImageShape, BinaryOutputAfterMuchLeadingFillWarns)
{
    KCTestHost host;
    TempDir dir;
    writeFile(dir.file("high.hex"), ":020000040020DA\r\n" + intelRecord(0, {1, 2, 3, 4}) + ":00000001FF\r\n");
    KCDataDoc doc;
    ASSERT_TRUE(open(doc, dir.file("high.hex"), LS_INTELHEX));
    doc.mainBufferParam()->fileType = LS_BINARY;
    ASSERT_TRUE(doc.OnSaveDocument(dir.file("high.bin").c_str()));
    EXPECT_TRUE(anyMessage(host, "fill come before the first data at 0x00200000"));
}

// A sparse document counts its gaps instead of holding them: every sum and every save must
// equal those of the flat document of the same file.
TEST(KCImageShape, SparseAndFlatDocumentsAgree)
{
    KCTestHost host;
    TempDir dir;
    writeFile(dir.file("sparse.hex"), sparseIntel());
    KCDataDoc flat, sparse;
    sparse.setSparse(true);
    ASSERT_TRUE(open(flat, dir.file("sparse.hex"), LS_INTELHEX));
    ASSERT_TRUE(open(sparse, dir.file("sparse.hex"), LS_INTELHEX));
    EXPECT_EQ(sparse.ComputeCheckSum(-1), flat.ComputeCheckSum(-1));

    // Writes into a gap and over data keep both running checksums equal to a recount.
    for (KCDataDoc *doc : {&flat, &sparse}) {
        doc->SetData(0x12, 0x2000);
        const uint8_t block[4] = {9, 8, 7, 6};
        ASSERT_TRUE(doc->WriteRange(0x3FE, block, sizeof block));
        ASSERT_TRUE(doc->FillRange(0x42F0, 0x42FF, 0x00));
        EXPECT_FALSE(doc->WriteRange(0x42FE, block, sizeof block)); // past the end: refused
    }
    EXPECT_EQ(sparse.mainBufferParam()->checksum, flat.mainBufferParam()->checksum);
    EXPECT_EQ(flat.mainBufferParam()->checksum, flat.ComputeCheckSum(-1));
    EXPECT_EQ(sparse.mainBufferParam()->checksum, sparse.ComputeCheckSum(-1));

    std::mt19937 rng(7);
    for (int kind : {CHECKSUM_KIND_BYTESUM, CHECKSUM_KIND_FUSEMAP}) {
        flat.mainBufferParam()->checksumKind = sparse.mainBufferParam()->checksumKind = kind;
        for (int i = 0; i < 200; ++i) {
            uint64_t a = rng() % 0x4300, b = rng() % 0x4300;
            if (a > b)
                std::swap(a, b);
            ASSERT_EQ(sparse.checksumOf(a, b), flat.checksumOf(a, b)) << kind << " " << a << ".." << b;
        }
    }
    for (LOADSAVE_FILETYPE type : {LS_BINARY, LS_INTELHEX}) {
        flat.mainBufferParam()->fileType = sparse.mainBufferParam()->fileType = type;
        ASSERT_TRUE(flat.OnSaveDocument(dir.file("flat").c_str()));
        ASSERT_TRUE(sparse.OnSaveDocument(dir.file("sparse").c_str()));
        EXPECT_EQ(readFile(dir.file("sparse")), readFile(dir.file("flat")));
    }
}

// Data at the top of the 32-bit space: the application asks before taking 4 GiB, and a load
// from the lowest address saves back to the addresses the data came from.
TEST(KCImageShape, SparseDataFarUpIsLoadedOnlyAsTheUserChooses)
{
    KCTestHost host;
    TempDir dir;
    const std::string top = ":02000004FFFFFC\r\n" + intelRecord(0xFF00, {1, 2, 3, 4}) + ":00000001FF\r\n";
    writeFile(dir.file("top.hex"), top);

    KCDataDoc doc;
    host.scriptAnswers({KCPrompt::IDCANCEL});
    EXPECT_FALSE(open(doc, dir.file("top.hex"), LS_INTELHEX));
    ASSERT_EQ(host.prompts.size(), 1u);
    EXPECT_NE(host.prompts[0].text.find("0xFFFFFF00-0xFFFFFF03"), std::string::npos);
    EXPECT_EQ(doc.GetBufferSize(), 0u);

    host.scriptAnswers({KCPrompt::IDNO});
    ASSERT_TRUE(open(doc, dir.file("top.hex"), LS_INTELHEX));
    EXPECT_EQ(doc.GetBufferSize(), 4u);
    EXPECT_EQ(doc.GetData(3), 4);
    doc.SetData(9, 0);
    ASSERT_TRUE(doc.OnSaveDocument(dir.file("out.hex").c_str()));
    EXPECT_EQ(readFile(dir.file("out.hex")),
              ":02000004FFFFFC\r\n" + intelRecord(0xFF00, {9, 2, 3, 4}) + ":00000001FF\r\n");
}
