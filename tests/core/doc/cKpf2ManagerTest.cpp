// Projects and handler jobs: what is written comes back the same. Damaged files are the
// malformed-project suite's.
#include "doc/cKpf2Manager.h"
#include "doc/cKpf2ReadShadowData.h"
#include "fileio/cKrlCrc16.h"
#include "serial/cKrlSerialNumberHandler.h"
#include "KCTestHost.h"
#include "KCTestProject.h"

#include <gtest/gtest.h>

#include <fstream>
#include <cstring>
#include <sstream>

namespace {

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

    void makeProject(KCDataDoc &doc) { makeTestProject(doc, host, dir.file("rows.csv")); }

    // The workspace and the counts came back as `doc` had them.
    void expectSameWorkspace(KCDataDoc &back, const KCDataDoc &doc)
    {
        ASSERT_EQ(savedViewItems(back), savedViewItems(doc));
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
    EXPECT_EQ(back->GetDeviceItemX(), testProjectDevice());
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
    EXPECT_EQ(back->displayName(), "line.kpf2"); // not "Untitled": a project has no data file

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

// A path from an older project or the command line need not be UTF-8; the save says where
// and leaves the old file rather than altering the path or failing inside the JSON writer.
TEST_F(ProjectFiles, ATextThatIsNotUtf8StopsTheSaveNamingWhere)
{
    KCDataDoc doc;
    makeProject(doc);
    doc.setSerialDefPath("/tmp/Gr\xF6\xDF" "e.ser"); // Latin-1
    doc.SetKPFFileFlag(LS_KPF2);
    const std::string path = dir.file("old.kpf2");
    writeFile(path, "old contents");
    EXPECT_FALSE(doc.OnSaveDocument(path.c_str()));
    EXPECT_TRUE(anyMessage(host, "the text at /serial/definitionFile is not UTF-8")) << host.messages.back();
    EXPECT_EQ(readAll(path), "old contents");

    cKpf2Manager job(doc, path);
    EXPECT_EQ(job.write(0, cKpf2Manager::WRITE_HANDLERJOB), 0);
    EXPECT_NE(job.error().find(path + ": cannot be written"), std::string::npos) << job.error();
    EXPECT_EQ(readAll(path), "old contents");
}
