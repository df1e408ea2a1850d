#include "host/KCFormat.h"
#include "host/KCHostStringTable.h"
#include "host/KCHostStrings.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <fstream>
#include <regex>
#include <sstream>

namespace {

void collectSources(const std::string &dir, std::vector<std::string> &out)
{
    DIR *d = ::opendir(dir.c_str());
    if (!d)
        return;
    while (dirent *e = ::readdir(d)) {
        const std::string name = e->d_name;
        if (name == "." || name == "..")
            continue;
        const std::string path = dir + "/" + name;
        if (e->d_type == DT_DIR)
            collectSources(path, out);
        else if (name.size() > 4 && (name.substr(name.size() - 4) == ".cpp" || name.substr(name.size() - 2) == ".h"))
            out.push_back(path);
    }
    ::closedir(d);
}

} // namespace

// Every host string the code cites has a text taking exactly the arguments the code passes.
TEST(KCHostStringTable, EveryCitedNumberHasATextWithItsArguments)
{
    KCHostStringTable table;
    std::string error;
    ASSERT_TRUE(table.load(KRLDV_SOURCE_DATA_DIR "/host-strings.txt", &error)) << error;
    for (const auto &entry : KCHostStrings::All) {
        ASSERT_TRUE(table.contains(entry.id)) << "host string " << entry.id << " has no text";
        EXPECT_EQ(KCFormat::argumentCount(table.text(entry.id)), entry.arguments) << "host string " << entry.id;
    }
    EXPECT_EQ(table.text(999999), "<string 999999>");
}

// Numbers are cited only through the named constants, so the list above is complete.
TEST(KCHostStringTable, CodeCitesNoBareNumbers)
{
    std::vector<std::string> files;
    collectSources(KRLDV_SOURCE_DATA_DIR "/../src", files);
    ASSERT_FALSE(files.empty());
    const std::regex bare(R"((GetHostString|hostString|\.text|\.format)\(\s*(0x[0-9A-Fa-f]+|[0-9]+))");
    for (const auto &f : files) {
        std::ifstream in(f);
        std::stringstream ss;
        ss << in.rdbuf();
        const std::string text = ss.str();
        EXPECT_FALSE(std::regex_search(text, bare)) << f << " cites a host string by a bare number";
    }
}

TEST(KCHostStringTable, ParsesNumbersEscapesAndRejectsBadLines)
{
    KCHostStringTable table;
    ASSERT_TRUE(table.loadFromText("# c\n\n0x10 a\\tb\\n\r\n20\tx y\n", "t"));
    EXPECT_EQ(table.text(16), "a\tb\n");
    EXPECT_EQ(table.text(20), "x y");
    std::string error;
    EXPECT_FALSE(KCHostStringTable().loadFromText("1 ok\nbad line\n", "t.txt", &error));
    EXPECT_EQ(error, "t.txt:2: expected a number, a blank and a text");
    EXPECT_FALSE(KCHostStringTable().loadFromText("2480 Binary\n0x9B0 JTAG\n", "t.txt", &error));
    EXPECT_EQ(error, "t.txt:2: string 2480 is given twice");
}
