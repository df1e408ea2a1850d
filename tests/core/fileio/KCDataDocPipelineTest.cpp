#include "doc/KCDataDoc.h"
#include "fileio/KCFileDialogRequest.h"
#include "fileio/KCFileDialogCore.h"
#include "KCTempDir.h"
#include "KCTestHost.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace {

bool anyMessage(const KCTestHost &host, const std::string &part)
{
    for (const auto &m : host.messages)
        if (m.find(part) != std::string::npos)
            return true;
    return false;
}

const char *const IntelImage = ":0400100001020304E2\r\n:00000001FF\r\n";

} // namespace

TEST(KCDataDocPipeline, OpensThroughTheReaderOfTheBufferType)
{
    KCTestHost host;
    TempDir dir;
    writeFile(dir.file("a.hex"), IntelImage);
    KCDataDoc doc;
    doc.mainBufferParam()->fileType = LS_INTELHEX;
    ASSERT_TRUE(doc.OnOpenDocument(dir.file("a.hex").c_str()));
    EXPECT_EQ(doc.GetData(0x10), 1);
    EXPECT_EQ(doc.GetData(0x13), 4);
    EXPECT_EQ(doc.GetData(0x0F), 0xFF);
    // Without a device the buffer is the image's extent, whatever a new buffer's size is.
    EXPECT_EQ(doc.GetBufferSize(), 0x14u);
    EXPECT_EQ(doc.dataMap().ranges(), (std::vector<KCAddressRange>{{0x10, 0x13}}));
    EXPECT_FALSE(doc.IsModified());
    EXPECT_EQ(doc.GetFileName(), "a.hex");
    EXPECT_TRUE(anyMessage(host, "File read OK"));
    EXPECT_EQ(doc.mainBufferParam()->fileInfo[0], 34u); // file size, duplicated into words 2 and 3
    EXPECT_EQ(doc.mainBufferParam()->fileInfo[2], 34u);
    EXPECT_EQ(doc.mainBufferParam()->checksum, 0x10u * 0xFF + 10);
}

TEST(KCDataDocPipeline, AFuseMapWithoutADeviceIsTheWholeBuffer)
{
    KCTestHost host;
    KCDataDoc doc;
    doc.mainBufferParam()->fileType = LS_JEDEC;
    ASSERT_TRUE(doc.OnOpenDocument(KRLDV_TEST_DATA_DIR "/jedec/tiny-crlf.jed"));
    EXPECT_EQ(doc.GetBufferSize(), 24u);
    EXPECT_EQ(doc.mainBufferParam()->checksumEnd, 23u);
}

TEST(KCDataDocPipeline, ABadFileIsReportedWithLineAndKeepsWhatWasRead)
{
    KCTestHost host;
    TempDir dir;
    writeFile(dir.file("bad.hex"), ":0400100001020304E2\r\n:0400200001020304E3\r\n:00000001FF\r\n");
    KCDataDoc doc;
    doc.mainBufferParam()->fileType = LS_INTELHEX;
    EXPECT_FALSE(doc.OnOpenDocument(dir.file("bad.hex").c_str()));
    EXPECT_EQ(doc.GetLoadOkFlag(), 0);
    EXPECT_EQ(doc.GetData(0x10), 1); // the first record stays
    EXPECT_TRUE(doc.IsModified());
    EXPECT_TRUE(anyMessage(host, dir.file("bad.hex") + " : line 2"));
    EXPECT_TRUE(anyMessage(host, "\xA7" "E Error reading file"));

    EXPECT_FALSE(doc.OnOpenDocument(dir.file("missing.hex").c_str()));
    EXPECT_TRUE(anyMessage(host, dir.file("missing.hex")));
}

TEST(KCDataDocPipeline, SavesSafelyAndNeverDamagesTheOldFile)
{
    KCTestHost host;
    host.defaultBufferSize = 32;
    TempDir dir;
    KCDataDoc doc;
    doc.SetData(0x5A, 3);

    // A writable type: written, read back the same.
    doc.mainBufferParam()->fileType = LS_INTELHEX;
    ASSERT_TRUE(doc.OnSaveDocument(dir.file("out.hex").c_str()));
    EXPECT_FALSE(doc.IsModified());
    KCDataDoc back;
    back.mainBufferParam()->fileType = LS_INTELHEX;
    ASSERT_TRUE(back.OnOpenDocument(dir.file("out.hex").c_str()));
    EXPECT_EQ(back.GetData(3), 0x5A);

    // A read-only type writes nothing, keeps the flag set and leaves the file as it was.
    writeFile(dir.file("keep.ti"), "old content");
    doc.mainBufferParam()->fileType = LS_TIHEX;
    EXPECT_FALSE(doc.OnSaveDocument(dir.file("keep.ti").c_str()));
    EXPECT_EQ(doc.GetLoadOkFlag(), 1);
    EXPECT_EQ(readFile(dir.file("keep.ti")), "old content");

    // A project save without a device: the exact warning, old file untouched.
    doc.SetKPFFileFlag(LS_KPF2);
    doc.mainBufferParam()->fileType = LS_BINARY;
    EXPECT_FALSE(doc.OnSaveDocument(dir.file("keep.ti").c_str()));
    EXPECT_EQ(host.messages.back().substr(0, 22), "\xA7WWNo Device Selected.");
    EXPECT_EQ(readFile(dir.file("keep.ti")), "old content");

    // Loading ignores the project flag.
    writeFile(dir.file("raw.bin"), "AB");
    ASSERT_TRUE(doc.OnOpenDocument(dir.file("raw.bin").c_str()));
    EXPECT_EQ(doc.GetData(0), 'A');

    // No temporary files are left behind.
    EXPECT_EQ(std::system(("test $(ls '" + dir.path + "' | wc -l) -eq 3").c_str()), 0);

    // Saving through a link writes the file it points to and keeps the link.
    ASSERT_EQ(::symlink(dir.file("out.hex").c_str(), dir.file("link.hex").c_str()), 0);
    doc.SetKPFFileFlag(0);
    doc.mainBufferParam()->fileType = LS_BINARY;
    ASSERT_TRUE(doc.OnSaveDocument(dir.file("link.hex").c_str()));
    // The two bytes loaded are the two bytes saved: the new-buffer size plays no part.
    EXPECT_EQ(readFile(dir.file("out.hex")), "AB");
    char target[256] = {};
    EXPECT_GT(::readlink(dir.file("link.hex").c_str(), target, sizeof target - 1), 0);
}

TEST(KCDataDocPipeline, SaveModifiedAsksAndFollowsTheAnswer)
{
    KCTestHost host;
    host.defaultBufferSize = 16;
    TempDir dir;
    KCDataDoc doc;
    EXPECT_TRUE(doc.SaveModified()); // nothing to save, no question
    EXPECT_TRUE(host.prompts.empty());

    doc.SetData(1, 0);
    host.scriptAnswers({KCPrompt::IDCANCEL, KCPrompt::IDNO});
    EXPECT_FALSE(doc.SaveModified());
    EXPECT_TRUE(doc.SaveModified());
    EXPECT_NE(host.prompts[0].text.find("Save changes to Untitled?"), std::string::npos);
    EXPECT_NE(host.prompts[0].text.find("*.kpf2"), std::string::npos);

    // Yes without a path: the save dialog; cancelling it keeps the document open.
    host.scriptAnswers({KCPrompt::IDYES, KCPrompt::IDYES});
    host.dialogAnswers.push_back({});
    EXPECT_FALSE(doc.SaveModified());
    KCFileDialogRequest chosen;
    chosen.path = dir.file("saved.bin");
    chosen.chosenFilterType = FILTER_BIN;
    chosen.chosenLoadSaveType = LS_BINARY;
    host.dialogAnswers.push_back(chosen);
    EXPECT_TRUE(doc.SaveModified());
    EXPECT_EQ(host.dialogRequests.back().origin, CALLFROM_SAVE);
    EXPECT_EQ(readFile(dir.file("saved.bin")).size(), 16u);
    EXPECT_EQ(doc.getPathName(), dir.file("saved.bin"));
    EXPECT_EQ(host.lastDirectory, dir.path + "/");

    // Yes with a path saves there without a dialog.
    doc.SetData(2, 0);
    host.scriptAnswers({KCPrompt::IDYES});
    EXPECT_TRUE(doc.SaveModified());
    EXPECT_EQ(readFile(dir.file("saved.bin"))[0], 2);
    EXPECT_EQ(host.dialogRequests.size(), 2u);
}

TEST(KCDataDocPipeline, OpenCommandsSetThePresets)
{
    KCTestHost host;
    KCDataDoc::nOpenInitLoadFileType = LS_BINARY;
    KCDataDoc::nOpenInitLoadFilterType = FILTER_ALL;
    KCDataDoc::OnOpenDocumentFile("/x/fuses.JED");
    EXPECT_EQ(KCDataDoc::nOpenInitLoadFileType, LS_JEDEC);
    EXPECT_EQ(KCDataDoc::nOpenInitLoadFilterType, FILTER_JED);
    KCDataDoc::OnOpenDocumentFile("/x/notes.xyz"); // no type claims it: unchanged
    EXPECT_EQ(KCDataDoc::nOpenInitLoadFileType, LS_JEDEC);
    EXPECT_EQ(host.openedPaths.size(), 2u);

    KCFileDialogRequest chosen;
    chosen.path = "/data/img/prog.s19";
    chosen.chosenFilterType = FILTER_MOTOROLA;
    chosen.chosenLoadSaveType = LS_MOTOROLA;
    host.dialogAnswers.push_back(chosen);
    KCDataDoc::OnFileOpen(&host);
    EXPECT_EQ(host.dialogRequests.back().filterType, FILTER_JED);
    EXPECT_EQ(host.dialogRequests.back().loadSaveType, LS_JEDEC);
    EXPECT_EQ(KCDataDoc::nOpenInitLoadFileType, LS_MOTOROLA);
    EXPECT_EQ(host.lastDirectory, "/data/img/");
    EXPECT_EQ(host.openedPaths.back(), "/data/img/prog.s19");
    EXPECT_EQ(KCFileDialogCore::m_CallFromMenue, CALLFROM_OPEN);

    KCDataDoc doc; // a document made now reads with the presets
    EXPECT_EQ(doc.mainBufferParam()->fileType, LS_MOTOROLA);
    doc.OnCloseDocument();
}
