// Projects and handler jobs: what is written comes back the same, and a damaged file is
// refused with its line while the open document keeps everything.
#include "doc/KCDataDoc.h"
#include "doc/KCLayoutNames.h"
#include "doc/cKpf2Manager.h"
#include "doc/cKpf2ReadShadowData.h"
#include "fileio/cKrlCrc16.h"
#include "KCTempDir.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <fstream>
#include <cstring>
#include <sstream>

namespace {

DEVICE_KRLXDEF_ITEM testDevice()
{
    DEVICE_KRLXDEF_ITEM d;
    d.name = "TEST27C020";
    d.vendor = "Test";
    d.bufferSize = 0x200;
    d.BEA = d.DEA = d.DMA = 0x1FF;
    d.layout = LAYOUT_BYTEVIEW;
    d.defaultFileType = "intel";
    d.numericKeys = {{"PGMFW", 7}};
    d.textKeys = {{"ALGO", "fast"}};
    return d;
}

std::string readAll(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

bool anyMessage(const KCTestHost &host, const std::string &part)
{
    for (const auto &m : host.messages)
        if (m.find(part) != std::string::npos)
            return true;
    return false;
}

struct ProjectFiles : testing::Test
{
    KCTestHost host;
    TempDir dir;

    // A document as a production project has it: device, edited record, data, serial settings.
    void makeProject(KCDataDoc &doc)
    {
        ASSERT_TRUE(doc.selectDevice(testDevice()));
        doc.AlgoParam().algoUiData().optionFields[3] = 0x5A;
        const uint8_t bytes[] = {1, 2, 3, 4};
        doc.defineNothing();
        doc.WriteRange(0x10, bytes, 4);
        doc.SetData(0xAB, 0x1FF);
        doc.setSerialAddress(0x40);
        doc.setSerialByteCount(4);
        doc.setSerialFlags(0x21);
        doc.setSerialDefPath("/tmp/line1.ser");
        doc.setSaveRange(KCAddressRange{0x10, 0x7F});
        host.SetCounts(5, 2);
        host.SetTargetCount(500);
    }

    std::unique_ptr<KCDataDoc> open(const std::string &path, LOADSAVE_FILETYPE type = LS_KPF2)
    {
        auto doc = std::make_unique<KCDataDoc>();
        doc->mainBufferParam()->fileType = type;
        if (doc->OnOpenDocument(path.c_str()))
            doc->PostOpenLoadFile();
        return doc;
    }
};

} // namespace

TEST_F(ProjectFiles, AProjectComesBackAsItWasSaved)
{
    KCDataDoc doc;
    makeProject(doc);
    doc.SetKPFFileFlag(LS_KPF2);
    const std::string path = dir.file("line.kpf2");
    ASSERT_TRUE(doc.OnSaveDocument(path.c_str()));
    EXPECT_TRUE(anyMessage(host, "Writing " + path + " OK."));

    host.SetCounts(-1, -1);
    host.SetTargetCount(0);
    auto back = open(path);
    EXPECT_TRUE(anyMessage(host, "Reading " + path + " OK"));
    EXPECT_TRUE(anyMessage(host, "Project Data setting up successful."));
    EXPECT_EQ(back->GetDeviceItemX(), testDevice());
    EXPECT_EQ(std::memcmp(&back->AlgoParam().algoUiData(), &doc.AlgoParam().algoUiData(),
                          sizeof(TAG_UI_ALGODATA_KRL3)),
              0);
    ASSERT_EQ(back->GetBufferSize(), doc.GetBufferSize());
    EXPECT_EQ(std::memcmp(back->AlgoParam().buffer(0).data(), doc.AlgoParam().buffer(0).data(), doc.GetBufferSize()),
              0);
    EXPECT_EQ(back->dataMap().ranges(), doc.dataMap().ranges());
    EXPECT_EQ(back->mainBufferParam()->checksum, doc.mainBufferParam()->checksum);
    EXPECT_EQ(back->serialAddress(), 0x40u);
    EXPECT_EQ(back->serialByteCount(), 4u);
    EXPECT_EQ(back->serialFlags(), 0x21u);
    EXPECT_EQ(back->serialDefPath(), "/tmp/line1.ser");
    EXPECT_EQ(back->explicitSaveRange(), (std::optional<KCAddressRange>{{0x10, 0x7F}}));
    EXPECT_EQ(host.GetPassCount(), 5);
    EXPECT_EQ(host.GetFailCount(), 2);
    EXPECT_EQ(host.GetTargetCount(), 500);
    EXPECT_EQ(back->GetKPFFileFlag(), LS_KPF2);
    EXPECT_FALSE(back->IsModified());

    // Saving the opened project again gives the same file, byte for byte.
    const std::string again = dir.file("again.kpf2");
    ASSERT_TRUE(back->OnSaveDocument(again.c_str()));
    EXPECT_EQ(readAll(again), readAll(path));
}

TEST_F(ProjectFiles, AHandlerJobKeepsItsActionAndBoxAndItsChecksumIsTheFiles)
{
    KCDataDoc doc;
    makeProject(doc);
    doc.AlgoParam().setAction("Verify");
    const std::string path = dir.file("line.handlerjob");
    ASSERT_EQ(cKpf2Manager(doc, path).write(1, cKpf2Manager::WRITE_HANDLERJOB), 1);
    const std::string text = readAll(path);
    EXPECT_EQ(cKrlCrc16().computeFile(path), cKrlCrc16().compute(reinterpret_cast<const uint8_t *>(text.data()), text.size()));

    auto back = open(path, LS_HANDLERJOB);
    EXPECT_EQ(back->GetKPFFileFlag(), LS_HANDLERJOB);
    EXPECT_EQ(back->AlgoParam().action(), "Verify");
    EXPECT_EQ(back->kpfShadowData().optionBox, 1);
    EXPECT_EQ(back->GetData(0x1FF), 0xAB);
}

TEST_F(ProjectFiles, ClosingAProjectKeepsItsCountsButNeverRewritesAJob)
{
    KCDataDoc doc;
    makeProject(doc);
    const std::string project = dir.file("run.kpf2");
    const std::string job = dir.file("run.handlerjob");
    doc.SetKPFFileFlag(LS_KPF2);
    ASSERT_TRUE(doc.OnSaveDocument(project.c_str()));
    doc.SetKPFFileFlag(LS_HANDLERJOB);
    ASSERT_TRUE(doc.OnSaveDocument(job.c_str()));
    const std::string jobText = readAll(job);

    for (const auto &[path, type] : {std::make_pair(project, LS_KPF2), std::make_pair(job, LS_HANDLERJOB)}) {
        auto run = open(path, type);
        ASSERT_EQ(run->GetKPFFileFlag(), type);
        run->SuccessCountIncrement();
        run->FailCountIncrement();
        run->OnCloseDocument();
    }
    EXPECT_EQ(readAll(job), jobText);
    host.SetCounts(-1, -1);
    auto again = open(project);
    EXPECT_EQ(host.GetPassCount(), 6);
    EXPECT_EQ(host.GetFailCount(), 3);
}

TEST_F(ProjectFiles, AProjectNamingADataFileLoadsItWhenOpened)
{
    KCDataDoc doc;
    makeProject(doc);
    const std::string data = dir.file("fw.hex");
    writeFile(data, ":040010001122334442\r\n:00000001FF\r\n");
    doc.setProjectDataFile(data, LS_INTELHEX);
    const std::string path = dir.file("fw.kpf2");
    doc.SetKPFFileFlag(LS_KPF2);
    ASSERT_TRUE(doc.OnSaveDocument(path.c_str()));

    auto back = open(path);
    EXPECT_EQ(back->projectDataFile(), data);
    EXPECT_EQ(back->GetData(0x10), 0x01); // the project's own bytes first
    back->InitialFileReload();
    EXPECT_EQ(back->GetData(0x10), 0x11);
    EXPECT_EQ(back->GetData(0x13), 0x44);
}

TEST_F(ProjectFiles, NoDeviceNoProjectAndTheOldFileStays)
{
    KCDataDoc doc;
    const std::string path = dir.file("old.kpf2");
    writeFile(path, "old contents");
    doc.SetKPFFileFlag(LS_KPF2);
    EXPECT_FALSE(doc.OnSaveDocument(path.c_str()));
    EXPECT_TRUE(anyMessage(host, "\xA7WWNo Device Selected."));
    EXPECT_EQ(readAll(path), "old contents");
}

TEST_F(ProjectFiles, DamagedProjectsAreRefusedWithTheirLine)
{
    KCDataDoc source;
    makeProject(source);
    const std::string good = cKpf2Manager(source, "x").text(0, 0);
    const auto lineOf = [&](const std::string &needle) {
        const size_t at = good.find(needle);
        return 1 + std::count(good.begin(), good.begin() + at, '\n');
    };
    struct Case
    {
        const char *what;
        std::string from, to;
        std::string lineNeedle;
        const char *expected;
    };
    const std::vector<Case> cases = {
        {"unknown version", "\"version\": 1", "\"version\": 2", "\"version\"", "version 2 is not known"},
        {"missing field", "\"byteCount\"", "\"byteCnt\"", "\"serial\"", "\"byteCount\" is missing"},
        {"bad hex", "\"01020304\"", "\"010203G4\"", "\"01020304\"", "not a hexadecimal byte"},
        {"checksum", "\"01020304\"", "\"01020305\"", "\"byteSum\"", "do not match its checksum"},
        {"range past the buffer", "\"first\": 16", "\"first\": 510", "\"first\": 16", "beyond the buffer"},
        {"number overflow", "\"byteCount\": 4", "\"byteCount\": 1e999", "\"byteCount\"", "number overflow"},
        {"syntax", "\"kind\": \"project\",", "\"kind\": \"project\"", "\"kind\": \"project\"", "not a project file"},
    };
    for (const Case &c : cases) {
        std::string text = good;
        const size_t at = text.find(c.from);
        ASSERT_NE(at, std::string::npos) << c.what;
        text.replace(at, c.from.size(), c.to);
        cKpf2ReadShadowData shadow;
        std::string error;
        EXPECT_EQ(cKpf2Manager::parse(text, "p.kpf2", shadow, error), 0) << c.what;
        const long line = lineOf(c.lineNeedle);
        EXPECT_NE(error.find(c.expected), std::string::npos) << c.what << ": " << error;
        // A syntax error is found where the parser stops: the line after the missing comma.
        const long reported = std::stol(error.substr(error.find(':') + 1));
        EXPECT_TRUE(reported == line || (std::string(c.what) == "syntax" && reported == line + 1))
            << c.what << ": " << error << " (expected line " << line << ")";
    }

    // Opened over a document with data, a damaged project leaves the data where it was.
    KCDataDoc doc;
    doc.mainBufferParam()->fileType = LS_KPF2;
    doc.SetData(0x77, 3);
    const std::string path = dir.file("bad.kpf2");
    std::string text = good;
    text.replace(text.find("\"version\": 1"), 12, "\"version\": 9");
    writeFile(path, text);
    EXPECT_FALSE(doc.OnOpenDocument(path.c_str()));
    doc.PostOpenLoadFile();
    EXPECT_EQ(doc.GetData(3), 0x77);
    EXPECT_EQ(doc.GetKPFFileFlag(), 0);
    EXPECT_TRUE(anyMessage(host, "\xA7" "EWFailed to read file: " + path));
    EXPECT_TRUE(anyMessage(host, path + ":"));
}
