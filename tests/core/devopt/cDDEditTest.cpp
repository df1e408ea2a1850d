#include "devopt/cDDEdit.h"

#include <gtest/gtest.h>

namespace {

// An edit whose shown text comes back as a change notification, as a real edit's does.
struct Bench
{
    uint32_t parameter = 0x5;
    bool present = true;
    int writes = 0;
    std::string shown;
    std::unique_ptr<cDDEdit> edit;

    explicit Bench(const std::string &format = cDDEdit::DefaultFormat)
    {
        edit = std::make_unique<cDDEdit>(
            [this](uint32_t &v) {
                v = parameter;
                return present;
            },
            [this](uint32_t v) {
                parameter = v;
                ++writes;
            },
            [this](const std::string &t) {
                shown = t;
                edit->OnChange(t);
            },
            format);
    }
};

} // namespace

TEST(cDDEdit, ParsesOnChangeAndRewritesOnFocusLossWithoutReentering)
{
    Bench b;
    b.edit->OnChange("a");
    EXPECT_EQ(b.parameter, 0xAu);
    b.edit->OnChange("zz"); // not a number: the parameter keeps its value
    b.edit->OnChange("");
    EXPECT_EQ(b.parameter, 0xAu);
    EXPECT_EQ(b.writes, 1);

    b.edit->OnKillFocus();
    EXPECT_EQ(b.shown, "0A");
    EXPECT_EQ(b.writes, 1) << "the rewrite came back as a change";
    EXPECT_EQ(b.edit->text(), "0A");

    b.present = false;
    b.edit->Show();
    EXPECT_EQ(b.shown, "");

    Bench dec("%u");
    dec.edit->OnChange("12");
    EXPECT_EQ(dec.parameter, 12u);
    dec.edit->OnChange("-1");
    dec.edit->OnChange("4294967296");
    EXPECT_EQ(dec.parameter, 12u);
}
