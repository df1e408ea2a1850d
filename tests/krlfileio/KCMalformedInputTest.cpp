#include "KCFormatTestTools.h"

// One suite for every reader: each malformed sample must fail the load with an error that
// names the file and the line of the fault. A format joins by one line in formatSamples().
// Projects and handler jobs are read by the document, above this library: their samples are
// in tests/core/doc/KCMalformedProjectSamples.inc.
using namespace KCFormatTest;

namespace {

struct Sample
{
    std::string what;
    std::string text;
    uint64_t line; // 1-based line of the fault
};

struct FormatSamples
{
    const char *format;
    std::vector<Sample> samples;
};

std::vector<Sample> intelSamples()
{
    const std::string pre = intelRecord(0, 0, {0x11}) + "\r\n\n";
    const std::string good = intelRecord(0, 0x100, {0x22, 0x33});
    std::string badSum = good;
    badSum.back() = badSum.back() == '0' ? '1' : '0';
    std::string nul = good;
    nul[5] = '\0';
    return {
        {"checksum", pre + badSum + "\n", 3},
        {"odd_digits", pre + good.substr(0, good.size() - 1) + "\n", 3},
        {"wrong_length", pre + ":03010000223344" + "\n", 3},
        {"unknown_type", pre + intelRecord(6, 0, {1, 2, 3, 4}) + "\r", 3},
        {"truncated", pre + good.substr(0, 7), 3},
        {"nul_byte", pre + nul + "\n", 3},
        {"beyond_4gib", pre + intelRecord(4, 0, {0xFF, 0xFF}) + "\r" + intelRecord(0, 0xFFF0, std::vector<uint8_t>(17)),
         4},
        {"garbage", pre + "\x7F" "ELF\x02\x01\x01\n", 3},
    };
}

std::vector<Sample> motorolaSamples()
{
    const std::string pre = srecRecord(0, 0, 2, {'H', 'D', 'R'}) + "\r\n" + srecRecord(1, 0, 2, {0x11}) + "\r";
    const std::string good = srecRecord(2, 0x10000, 3, {0x22, 0x33});
    std::string badSum = good;
    badSum.back() = badSum.back() == '0' ? '1' : '0';
    std::string nul = good;
    nul[6] = '\0';
    return {
        {"checksum", pre + badSum + "\n", 3},
        {"odd_digits", pre + good + "0\n", 3},
        {"wrong_length", pre + "S1050000AA50\n", 3},
        {"unknown_type", pre + "S4030000FC\n", 3},
        {"truncated", pre + "S2", 3},
        {"nul_byte", pre + nul + "\n", 3},
        {"beyond_4gib", pre + "\r\n" + srecRecord(3, 0xFFFFFFFF, 4, {1, 2}) + "\n", 4},
        {"garbage", pre + "#!/bin/sh\n", 3},
    };
}

std::vector<Sample> tiSamples()
{
    const std::string txt = "@0000\r\n00 11\n";
    const std::string tagged = "K0008KRL90100B4B52\r\nB4C44*FF\n";
    return {
        {"txt_odd_digits", txt + "22 334\n", 3},
        {"txt_nul_byte", txt + std::string("22 \0 33\n", 8), 3},
        {"txt_beyond_4gib", txt + "@FFFFFFFF\n00 11\n", 4},
        {"txt_garbage", txt + "hello\n", 3},
        {"tagged_checksum", tagged + "70000F\n:\n", 3},
        {"tagged_unknown_tag", tagged + "Z\n:\n", 3},
        {"tagged_truncated", tagged + "B4C", 3},
        {"tagged_nul_byte", tagged + "B4C" + std::string(1, '\0') + "4F\n:\n", 3},
        {"tagged_short_identifier", tagged + "K0003\n:\n", 3},
    };
}

std::vector<FormatSamples> formatSamples()
{
    return {
        {"intel", intelSamples()},
        {"motorola", motorolaSamples()},
        {"ti", tiSamples()},
#include "KCMalformedDeviceSamples.inc"
    };
}

struct Case
{
    const char *format;
    Sample sample;
};

std::vector<Case> allCases()
{
    std::vector<Case> cases;
    for (const auto &f : formatSamples())
        for (const auto &s : f.samples)
            cases.push_back({f.format, s});
    return cases;
}

class KCMalformedInput : public ::testing::TestWithParam<Case>
{
};

} // namespace

TEST_P(KCMalformedInput, FailsNamingFileAndLine)
{
    const Case &c = GetParam();
    ASSERT_NE(KCFileFormatRegistry::byName(c.format), nullptr) << c.format << " is not registered";
    const Loaded l = load(c.format, c.sample.text);
    EXPECT_FALSE(l.result.ok) << l.sink.dump();
    const Message *error = l.sink.first(KCFileMessage::Error);
    ASSERT_NE(error, nullptr) << l.sink.dump();
    EXPECT_EQ(error->file, kFileName);
    EXPECT_EQ(error->line, c.sample.line) << error->text;
    EXPECT_EQ(l.sink.count(KCFileMessage::Error), 1u) << l.sink.dump();
}

INSTANTIATE_TEST_SUITE_P(AllFormats, KCMalformedInput, ::testing::ValuesIn(allCases()),
                         [](const ::testing::TestParamInfo<Case> &info) {
                             return std::string(info.param.format) + "_" + info.param.sample.what;
                         });

// Every registered reader survives every prefix of every sample and every one-byte change of
// it: no crash, and a failed load always says why, naming the file.
TEST(KCDamagedInput, EveryReaderSurvivesCutAndFlippedInput)
{
    std::vector<std::string> inputs;
    for (const auto &f : formatSamples())
        for (const auto &s : f.samples)
            inputs.push_back(s.text);
    for (const auto &info : KCFileFormatRegistry::formats()) {
        for (const std::string &text : inputs) {
            for (size_t cut = 0; cut <= text.size(); ++cut) {
                for (int flip : {-1, 0x01, 0x20, 0x80}) {
                    std::string input = text.substr(0, cut);
                    if (flip >= 0 && cut)
                        input[cut - 1] = char(input[cut - 1] ^ flip);
                    KCLoadOptions o;
                    o.rangeLength = 1 << 20;
                    const Loaded l = load(info.name, input, o);
                    if (!l.result.ok) {
                        const Message *error = l.sink.first(KCFileMessage::Error);
                        ASSERT_NE(error, nullptr) << info.name << ": " << input;
                        EXPECT_EQ(error->file, kFileName);
                    }
                }
            }
        }
    }
}
