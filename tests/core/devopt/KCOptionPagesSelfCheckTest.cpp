#include "devopt/KCOptionPageLibrary.h"
#include "devopt/KCOptionPageModel.h"
#include "devopt/KCOptionTypeRegistry.h"
#include "doc/KCAlgoKeys.h"
#include "host/KCFormat.h"
#include "host/KCHostStringTable.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>

namespace {

const KCOptionPageLibrary &library()
{
    static const KCOptionPageLibrary lib = [] {
        KCOptionPageLibrary l;
        std::string error;
        EXPECT_TRUE(l.loadDirectory(KRLDV_SOURCE_DATA_DIR "/option-pages", &error)) << error;
        return l;
    }();
    return lib;
}

const KCOptionTypeRegistry &registry()
{
    static const KCOptionTypeRegistry reg = [] {
        KCOptionTypeRegistry r;
        std::string error;
        EXPECT_TRUE(r.load(KRLDV_SOURCE_DATA_DIR "/option-pages/types.json", &error)) << error;
        return r;
    }();
    return reg;
}

std::vector<uint32_t> span(uint32_t first, uint32_t last)
{
    std::vector<uint32_t> v;
    for (uint32_t t = first; t <= last; ++t)
        v.push_back(t);
    return v;
}

// The page family by class name: "ID19_" with {2, 7} stands for ID19_2 ... ID19_7.
std::vector<std::string> family()
{
    std::vector<std::string> names = {"KCActOptDlg_ActOptions_UNIV2"};
    const auto act = [&](const std::string &stem, std::initializer_list<const char *> suffixes) {
        for (const char *s : suffixes)
            names.push_back("KCActOptDlg_ID" + stem + s);
    };
    const auto range = [&](const std::string &stem, uint32_t first, uint32_t last) {
        for (uint32_t i : span(first, last))
            names.push_back("KCActOptDlg_ID" + stem + std::to_string(i));
    };
    act("", {"0", "2", "3", "4", "6", "7", "8", "9_1", "9_2", "9_3"});
    range("", 10, 15);
    act("", {"16_1", "16_2", "17", "18", "19", "19_UNIV01"});
    range("19_", 2, 7);
    range("20_", 1, 3);
    range("", 21, 23);
    act("", {"24_1", "24_2", "25", "26", "27", "28", "34", "34_2", "35", "35_2", "36_1", "37", "39_1", "39_2", "40"});
    range("26_", 1, 3);
    range("29_", 1, 3);
    range("", 30, 33);
    range("", 42, 44);
    range("", 46, 50);
    range("50_", 1, 3);
    range("", 54, 56);
    act("", {"58", "66_1", "66_2", "67", "68", "69_ISP", "76_1", "76_2"});
    range("", 60, 65);
    range("69_", 1, 3);
    range("", 71, 75);
    range("", 119, 123);
    act("127_", {"0", "1", "1_UNIV01", "1_UNIV02", "1dF", "1eF", "2", "2_UNIV01", "3", "32CHN_UNIV2"});
    act("", {"130", "133_0", "135", "136", "136_ISP", "137", "137_ISP", "139", "141", "148_2", "160", "160_ISP", "162",
             "162_ISP", "164", "201", "700", "701", "703", "704"});
    range("", 143, 148);
    for (const char *n :
         {"KCDevOptDlg_ID0", "KCDevOptDlg_ID1", "KCDevOptDlg_ID5", "KCDevOptChainJTAG", "KCDevOptIDCode_UNIV02",
          "KCDevOptISP_ID6", "KCDevOptISP_SYNC_UNIV01", "KCDevOptISP_SYNC_UNIV02", "KCDevOptISPadapt",
          "KCDevOptISPadapt_91F", "KCDevOptISPadapt_UNIV01", "KCDevOptISPadapt_UNIV02", "KCDevOptJTAGadapt",
          "KCDevOptPSW_UNIV02", "KCAlgoDlgUTp3", "KCAlgoDlgUTp3_ActOpt", "KCAlgoDlgUTp3_IDCode",
          "KCAlgoDlgUTp3_ISPOpt", "KCAlgoDlgUTp3_SyncOpt"})
        names.push_back(n);
    return names;
}

} // namespace

TEST(OptionPagesSelfCheck, TypesAreRegisteredInOrderWithTheirPages)
{
    std::vector<uint32_t> expected = span(0, 46);
    for (const auto &part : {span(48, 76), span(93, 93), span(119, 146), span(148, 149), span(160, 164),
                             span(201, 219), std::vector<uint32_t>{700, 701, 703, 704, 705}})
        expected.insert(expected.end(), part.begin(), part.end());
    ASSERT_EQ(expected.size(), 136u);
    EXPECT_EQ(registry().types(), expected);

    const std::vector<KCOptionPageEntry> type0 = {{0x89E, 0x9AD, "KCDevOptDlg_ID0"}, {0x89F, 0x9AE, "KCActOptDlg_ID0"}};
    EXPECT_EQ(registry().pages(0), type0);
    EXPECT_FALSE(registry().isRegistered(47));
    EXPECT_TRUE(registry().pages(47).empty());

    KCHostStringTable strings;
    ASSERT_TRUE(strings.load(KRLDV_SOURCE_DATA_DIR "/host-strings.txt"));
    std::map<std::string, uint32_t> templateOf;
    std::set<uint32_t> templates;
    for (uint32_t type : registry().types()) {
        EXPECT_FALSE(registry().pages(type).empty()) << "type " << type;
        for (const KCOptionPageEntry &e : registry().pages(type)) {
            EXPECT_NE(library().find(e.className), nullptr) << "type " << type << ": " << e.className;
            EXPECT_TRUE(strings.contains(e.captionId)) << e.className << " caption " << e.captionId;
            EXPECT_EQ(KCFormat::argumentCount(strings.text(e.captionId)), 0);
            if (templateOf.emplace(e.className, e.templateId).second) {
                EXPECT_TRUE(templates.insert(e.templateId).second) << e.className << " shares a template";
            }
        }
    }
}

TEST(OptionPagesSelfCheck, EveryMemberOfTheFamilyIsDescribed)
{
    const std::vector<std::string> names = family();
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
    for (const std::string &n : names)
        EXPECT_NE(library().find(n), nullptr) << n;
    EXPECT_EQ(library().size(), names.size()) << "a description that belongs to no member";
}

// Bits live in the fixed option fields; keys have names; controls of a page have their own
// ids and never share a bit, except the radio buttons of one field.
TEST(OptionPagesSelfCheck, EveryDescriptionBindsToTheRecordWithoutOverlap)
{
    for (const std::string &name : library().classNames()) {
        const KCOptionPageDesc &page = *library().find(name);
        std::set<uint32_t> ids;
        std::map<std::pair<uint32_t, uint32_t>, std::string> owner; // (byte, bit) -> writer
        page.forEach([&](const cParamStcBase &c) {
            EXPECT_TRUE(ids.insert(c.id).second) << name << ": id " << c.id << " twice";
            const KCOptionBinding &b = c.binding;
            if (c.kind == cParamStcBase::ComboBox) {
                EXPECT_FALSE(c.items.empty()) << name << ": combo " << c.id << " without items";
            }
            if (c.kind == cParamStcBase::ListEdit) {
                EXPECT_TRUE(c.count > 0 && KCFormat::argumentCount(c.keyFormat) == 1) << name << ": " << c.id;
            }
            if (b.kind == KCOptionBinding::NumericKey || b.kind == KCOptionBinding::TextKey) {
                EXPECT_FALSE(b.key.empty()) << name << ": " << c.id;
            }
            if (b.kind != KCOptionBinding::Field)
                return;
            EXPECT_TRUE(b.width == 1 || b.width == 2 || b.width == 4) << name << ": " << c.id;
            EXPECT_GE(b.offset, ALGODATA_OPTION_FIELDS) << name << ": " << c.id;
            EXPECT_LE(b.offset + b.width, ALGODATA_TEXT_FIELDS) << name << ": " << c.id;
            EXPECT_NE(b.mask, 0u) << name << ": " << c.id;
            EXPECT_EQ(b.mask >> (8 * b.width - 1) >> 1, 0u) << name << ": mask wider than the field";
            const std::string writer = c.kind == cParamStcBase::RadioButton
                                           ? "radios " + std::to_string(b.offset) + "/" + std::to_string(b.mask)
                                           : "control " + std::to_string(c.id);
            for (uint32_t bit = 0; bit < 8 * b.width; ++bit) {
                if (!(b.mask >> bit & 1))
                    continue;
                const auto key = std::make_pair(b.offset + bit / 8, bit % 8);
                const auto [it, fresh] = owner.emplace(key, writer);
                EXPECT_TRUE(fresh || it->second == writer)
                    << name << ": " << writer << " and " << it->second << " both write byte " << key.first;
            }
        });
    }
}

TEST(OptionPagesSelfCheck, RefreshingAnyPageNeverChangesTheRecord)
{
    std::mt19937 random(13);
    for (int round = 0; round < 4; ++round) {
        TAG_UI_ALGODATA_KRL3 record{};
        KCAlgoKeys(record).build({{"PGMFW", random() & 1}, {"COM_BDR", 9600}, {"SYNCLK", random()}, {"IDC3", 7}},
                                 {{"MCU_T", "X"}, {"ADP_T", "adapter"}});
        uint8_t *bytes = reinterpret_cast<uint8_t *>(&record);
        for (size_t i = ALGODATA_OPTION_FIELDS; i < ALGODATA_TEXT_FIELDS; ++i)
            bytes[i] = uint8_t(random());
        const TAG_UI_ALGODATA_KRL3 before = record;
        for (const std::string &name : library().classNames()) {
            KCOptionPageModel model(*library().find(name), record);
            model.Refresh();
            ASSERT_EQ(std::memcmp(&before, &record, sizeof record), 0) << name;
        }
    }
}

TEST(OptionPagesSelfCheck, TellingTextsAreShownAsGiven)
{
    const auto caption = [](const char *page, uint32_t id) { return library().find(page)->find(id)->caption; };
    const auto items = [](const char *page, uint32_t id) { return library().find(page)->find(id)->items; };
    EXPECT_EQ(caption("KCActOptDlg_ID119", 0x501), "SA1    010000h - 01FFFFh");
    EXPECT_EQ(caption("KCActOptDlg_ID139", 0x50A), "SA10  0A0000h - 0AFFFFh");
    EXPECT_EQ(caption("KCActOptDlg_ID120", 0x500), "SA0  + SA1    000000h - 01FFFFh");
    EXPECT_EQ(caption("KCActOptDlg_ID127_1", 0x501), "S1   0x08020000  -  0x0803FFFF");
    EXPECT_EQ(caption("KCActOptDlg_ID48", 0x500), "Block 0  :  000000 - 00FFFF");
    EXPECT_EQ(items("KCActOptDlg_ID162", 0x4C1).front(), "000 :  32768 bytes  ( all )");
    EXPECT_EQ(items("KCActOptDlg_ID162", 0x4C1).back(), "111 :          0 bytes");
    EXPECT_EQ(items("KCActOptDlg_ID137_ISP", 0x4C0).size(), 13u);
    EXPECT_EQ(items("KCActOptDlg_ID50_1", 0x4C4).front(), "00 = F000 - FFFF ( 4K )");
    EXPECT_EQ(items("KCAlgoDlgUTp3_SyncOpt", 0x630).front(), "8.0 MHz");
    EXPECT_EQ(items("KCAlgoDlgUTp3_SyncOpt", 0x630).back(), "100 Hz");
    EXPECT_EQ(items("KCActOptDlg_ID127_2", 0x4B0).front(), "4MHz");
    EXPECT_EQ(items("KCActOptDlg_ID127_2", 0x4B0).back(), "24MHz");
}

TEST(OptionPagesSelfCheck, BadDescriptionsAreRejectedWithTheirFile)
{
    KCOptionPageLibrary l;
    std::string error;
    EXPECT_FALSE(l.loadText(R"({"pages":[{"class":"P","controls":[{"id":"0x1z","kind":"check"}]}]})", "p.json",
                            &error));
    EXPECT_EQ(error, "p.json: P: not a number: \"0x1z\"");
    EXPECT_FALSE(l.loadText(R"({"pages":[{"class":"P","controls":[{"id":1,"kind":"slider"}]}]})", "p.json", &error));
    EXPECT_EQ(error, "p.json: P: unknown control kind \"slider\"");
    EXPECT_FALSE(
        KCOptionTypeRegistry().loadText(R"({"pages":{},"types":[{"type":1,"pages":["Q"]}]})", "t.json", &error));
    EXPECT_EQ(error, "t.json: type 1: page \"Q\" has no template");
}
