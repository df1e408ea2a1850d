// Damaged projects and handler jobs, opened over a document that holds a project: each is
// refused with the file and the line of the fault, and the document keeps all it had.
#include "doc/cKpf2Manager.h"
#include "KCTestHost.h"
#include "KCTestProject.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

enum Edit { Replace, CutBefore };

struct Sample
{
    const char *what;
    bool job;
    Edit edit;
    std::string from, to;
    std::string needle;
    int below;
};

void PrintTo(const Sample &s, std::ostream *os)
{
    *os << s.what;
}

const std::vector<Sample> &samples()
{
    static const std::vector<Sample> list = {
#include "KCMalformedProjectSamples.inc"
    };
    return list;
}

struct KCMalformedProject : testing::TestWithParam<Sample>
{
    KCTestHost host;
    TempDir dir;
};

long lineOf(const std::string &text, size_t at)
{
    return 1 + long(std::count(text.begin(), text.begin() + long(at), '\n'));
}

} // namespace

TEST_P(KCMalformedProject, IsRefusedNamingFileAndLineAndTheDocumentKeepsItsProject)
{
    const Sample &s = GetParam();
    KCDataDoc doc;
    makeTestProject(doc, host, dir.file("rows.csv"));
    doc.AlgoParam().setAction("Verify");
    std::string text = cKpf2Manager(doc, "x").text(1, s.job ? cKpf2Manager::WRITE_HANDLERJOB : cKpf2Manager::WRITE_PROJECT);
    const size_t needle = text.find(s.needle);
    const size_t at = text.find(s.from);
    ASSERT_NE(needle, std::string::npos) << s.needle;
    ASSERT_NE(at, std::string::npos) << s.from;
    const long line = lineOf(text, needle) + s.below;
    if (s.edit == Replace)
        text.replace(at, s.from.size(), s.to);
    else
        text.erase(at);
    const std::string path = dir.file(std::string(s.what) + (s.job ? ".handlerjob" : ".kpf2"));
    writeFile(path, text);

    const std::vector<uint8_t> bytes(doc.AlgoParam().buffer(0).data(),
                                     doc.AlgoParam().buffer(0).data() + doc.GetBufferSize());
    const auto ranges = doc.dataMap().ranges();
    const auto items = savedViewItems(doc);
    const auto placement = doc.windowPlacement();
    const cCSVSerialDataContent csv = doc.csvSerialData();
    doc.mainBufferParam()->fileType = s.job ? LS_HANDLERJOB : LS_KPF2;
    host.messages.clear();
    EXPECT_FALSE(doc.OnOpenDocument(path.c_str()));
    doc.PostOpenLoadFile();

    ASSERT_EQ(host.messages.size(), 2u);
    EXPECT_EQ(host.messages[0], "\xA7" "EWFailed to read file: " + path);
    const std::string &error = host.messages[1];
    const std::string where = path + ":" + std::to_string(line) + ": ";
    EXPECT_NE(error.find(where), std::string::npos) << error << " (expected line " << line << ")";
    EXPECT_EQ(doc.GetKPFFileFlag(), 0);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), doc.AlgoParam().buffer(0).data()));
    EXPECT_EQ(doc.dataMap().ranges(), ranges);
    EXPECT_EQ(doc.GetDeviceItemX(), testProjectDevice());
    EXPECT_EQ(savedViewItems(doc), items);
    EXPECT_EQ(doc.windowPlacement(), placement);
    EXPECT_EQ(doc.csvSerialData(), csv);
    EXPECT_EQ(host.GetPassCount(), 5);
    EXPECT_EQ(host.GetFailCount(), 2);
}

INSTANTIATE_TEST_SUITE_P(ProjectsAndJobs, KCMalformedProject, testing::ValuesIn(samples()),
                         [](const testing::TestParamInfo<Sample> &info) { return std::string(info.param.what); });
