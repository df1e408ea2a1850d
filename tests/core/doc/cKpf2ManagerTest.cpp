// Projects and handler jobs: what is written comes back the same, and a damaged file is
// refused with its line while the open document keeps everything.
#include "doc/KCDataDoc.h"
#include "doc/KCLayoutNames.h"
#include "doc/cKpf2Manager.h"
#include "doc/cKpf2ReadShadowData.h"
#include "fileio/cKrlCrc16.h"
#include "serial/cKrlSerialNumberHandler.h"
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

// What a view item keeps in a file: everything but its run-time links.
std::vector<std::string> savedItems(const KCDataDoc &doc)
{
    std::vector<std::string> items;
    for (const TAG_DATADOC_VIEWITEM &i : doc.viewItems())
        items.push_back(std::to_string(i.kind) + "|" + std::to_string(i.number) + "|" + std::to_string(i.flags) + "|"
                        + i.text1 + "|" + i.text2 + "|" + i.text3 + "|" + std::to_string(i.extra1) + "|"
                        + std::to_string(i.extra2));
    return items;
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
        doc.viewItems()[0].text2 = "Läuft \"A\"";
        doc.viewItems()[0].extra1 = -7;
        TAG_DATADOC_VIEWITEM counter;
        counter.kind = VIEWITEM_KIND_COUNTER;
        counter.text1 = "Counter";
        counter.flags = 0x40000000;
        doc.viewItems().push_back(counter);
        doc.setWindowPlacement({-20, 15, 640, 480, PLACEMENT_MAXIMIZED});
        // Bytes that are not UTF-8 and CR LF line ends travel as they are.
        writeFile(dir.file("rows.csv"), "#var,SERIAL,0x100,8,asc\r\nUSED,SERIAL\r\n,SN\xE9" "00001\r\n");
        std::string error;
        ASSERT_TRUE(doc.setCSVSerialProjectFile(dir.file("rows.csv"), error)) << error;
    }

    // The workspace and the counts came back as `doc` had them.
    void expectSameWorkspace(KCDataDoc &back, const KCDataDoc &doc)
    {
        ASSERT_EQ(savedItems(back), savedItems(doc));
        // The items are linked to the opening document's own buffer.
        EXPECT_EQ(back.viewItems()[0].bufferParam, back.mainBufferParam());
        EXPECT_EQ(static_cast<unsigned long>(back.viewItems()[0].bufferId), back.AlgoParam().bufferId());
        EXPECT_EQ(back.viewItems()[1].bufferParam, nullptr);
        EXPECT_EQ(back.windowPlacement(), doc.windowPlacement());
        EXPECT_EQ(back.csvSerialData(), doc.csvSerialData());
        EXPECT_EQ(host.GetPassCount(), 5);
        EXPECT_EQ(host.GetFailCount(), 2);
        EXPECT_EQ(host.GetTargetCount(), 500);
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
    expectSameWorkspace(*back, doc);
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

    host.SetCounts(-1, -1);
    host.SetTargetCount(0);
    auto back = open(path, LS_HANDLERJOB);
    expectSameWorkspace(*back, doc);
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

TEST_F(ProjectFiles, AVersion1ProjectStillOpensWithTheDevicesOwnTreeAndWindow)
{
    KCDataDoc doc;
    makeProject(doc);
    // Version 1 had no tree items, no window placement and no CSV serial project.
    std::string text = cKpf2Manager(doc, "x").text(0, 0);
    text = text.substr(0, text.find(",\n \"viewItems\"")) + "\n}\n";
    const size_t csv = text.find("\n \"csvSerial\"");
    text.erase(csv, text.find("\n \"dataFile\"") - csv);
    text.replace(text.find("\"version\": 2"), 12, "\"version\": 1");
    const std::string path = dir.file("v1.kpf2");
    writeFile(path, text);

    auto back = open(path);
    ASSERT_EQ(back->GetKPFFileFlag(), LS_KPF2) << host.messages.back();
    EXPECT_EQ(back->GetData(0x1FF), 0xAB);
    ASSERT_EQ(back->viewItems().size(), 1u);
    EXPECT_EQ(back->viewItems()[0].text2, "");
    EXPECT_FALSE(back->windowPlacement());
    EXPECT_TRUE(back->csvSerialData().empty());
    // Saved again, it is a current project.
    const std::string again = dir.file("v2.kpf2");
    ASSERT_TRUE(back->OnSaveDocument(again.c_str()));
    EXPECT_NE(readAll(again).find("\"version\": 2"), std::string::npos);
}

TEST_F(ProjectFiles, ASerialProjectPathTooLongForTheHostIsNotTakenOver)
{
    KCDataDoc doc;
    makeProject(doc);
    for (const size_t length : {cKpf2Manager::MaxSerialProjectPath, cKpf2Manager::MaxSerialProjectPath + 1}) {
        cCSVSerialDataContent csv("/" + std::string(length - 1, 'c'), "USED,SERIAL\n");
        ASSERT_TRUE(doc.prepareCSVSerialDataProject(csv));
        const std::string path = dir.file("long" + std::to_string(length) + ".kpf2");
        doc.SetKPFFileFlag(LS_KPF2);
        ASSERT_TRUE(doc.OnSaveDocument(path.c_str()));

        host.messages.clear();
        auto back = open(path);
        const bool tooLong = length > cKpf2Manager::MaxSerialProjectPath;
        EXPECT_EQ(anyMessage(host, "Path of serial project file is too long."), tooLong) << length;
        EXPECT_EQ(back->csvSerialData(), tooLong ? cCSVSerialDataContent() : csv) << length;
        // The rest of the project is there either way.
        EXPECT_TRUE(anyMessage(host, "Project Data setting up successful."));
        EXPECT_EQ(back->GetData(0x1FF), 0xAB);
    }
}

TEST_F(ProjectFiles, TheDocumentsCSVHandlerIsTheProjectsAndARunningOneStays)
{
    KCDataDoc doc;
    makeProject(doc);
    cKrlSerialNumberHandler &handler = doc.getKrlSerialNumberHandler();
    EXPECT_TRUE(handler.readCSVSerialNumberFile()) << handler.getErrors();
    EXPECT_EQ(handler.freeRows(), 1u);

    // While a run takes rows, another file does not replace the handler.
    handler.setInUse(true);
    writeFile(dir.file("other.csv"), "USED,SERIAL\n");
    std::string error;
    EXPECT_FALSE(doc.setCSVSerialProjectFile(dir.file("other.csv"), error));
    EXPECT_EQ(&doc.getKrlSerialNumberHandler(), &handler);
    EXPECT_EQ(doc.csvSerialData().path(), dir.file("rows.csv"));
    handler.setInUse(false);
    EXPECT_FALSE(doc.setCSVSerialProjectFile(dir.file("missing.csv"), error));
    EXPECT_NE(error.find(dir.file("missing.csv")), std::string::npos) << error;
    EXPECT_EQ(doc.csvSerialData().path(), dir.file("rows.csv"));
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
        {"unknown version", "\"version\": 2", "\"version\": 3", "\"version\"", "version 3 is not known"},
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
    text.replace(text.find("\"version\": 2"), 12, "\"version\": 9");
    writeFile(path, text);
    EXPECT_FALSE(doc.OnOpenDocument(path.c_str()));
    doc.PostOpenLoadFile();
    EXPECT_EQ(doc.GetData(3), 0x77);
    EXPECT_EQ(doc.GetKPFFileFlag(), 0);
    EXPECT_TRUE(anyMessage(host, "\xA7" "EWFailed to read file: " + path));
    EXPECT_TRUE(anyMessage(host, path + ":"));
}
