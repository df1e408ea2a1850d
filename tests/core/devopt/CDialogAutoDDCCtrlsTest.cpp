#include "devopt/CDialogAutoDDCCtrls.h"

#include <gtest/gtest.h>

namespace {

cParamStcBase item(uint32_t id, cParamStcBase::Kind kind, std::vector<cParamStcBase> children = {})
{
    cParamStcBase c;
    c.id = id;
    c.kind = kind;
    c.children = std::move(children);
    return c;
}

// Controls measure by id: width id, height 10; groups' own captions are 30 wide.
CDialogAutoDDCCtrls::Size measure(const cParamStcBase &c)
{
    return c.isGroup() ? CDialogAutoDDCCtrls::Size{30, 0} : CDialogAutoDDCCtrls::Size{int(c.id), 10};
}

} // namespace

TEST(CDialogAutoDDCCtrls, StacksControlsAndSizesNestedGroupsFromTheirParent)
{
    // Group 1 holds a control 50 wide and a nested group 2 with a control 100 wide.
    const std::vector<cParamStcBase> page = {
        item(1, cParamStcBase::GroupBox,
             {item(50, cParamStcBase::CheckBox),
              item(2, cParamStcBase::GroupBox, {item(100, cParamStcBase::Edit), item(60, cParamStcBase::Edit)})}),
        item(70, cParamStcBase::CheckBox),
    };
    CDialogAutoDDCCtrls::Size total;
    const auto r = CDialogAutoDDCCtrls::layout(page, measure, &total);

    // Nested group: 100 + 40 wide, its controls at +20/+20 and 4 apart, 10 after the last.
    EXPECT_EQ(r.at(2).width, 140);
    EXPECT_EQ(r.at(100).x, r.at(2).x + 20);
    EXPECT_EQ(r.at(100).y, r.at(2).y + 20);
    EXPECT_EQ(r.at(60).y, r.at(100).bottom() + 4);
    EXPECT_EQ(r.at(2).bottom(), r.at(60).bottom() + 10);
    // Outer group: widest content (the nested group) + 40; the page another 40.
    EXPECT_EQ(r.at(1).width, 180);
    EXPECT_EQ(r.at(1).x, 20);
    EXPECT_EQ(r.at(1).y, 20);
    EXPECT_EQ(r.at(50).y, 40);
    EXPECT_EQ(r.at(2).y, 54);
    EXPECT_EQ(r.at(70).y, r.at(1).bottom() + 4);
    EXPECT_EQ(total.width, 220);
    EXPECT_EQ(total.height, r.at(70).bottom() + 10);

    // A narrow nested group still takes its parent's width less 40.
    const std::vector<cParamStcBase> wide = {
        item(1, cParamStcBase::GroupBox,
             {item(300, cParamStcBase::CheckBox), item(2, cParamStcBase::GroupBox, {item(10, cParamStcBase::Edit)})}),
    };
    const auto w = CDialogAutoDDCCtrls::layout(wide, measure);
    EXPECT_EQ(w.at(1).width, 340);
    EXPECT_EQ(w.at(2).width, 300);
}

TEST(CDialogAutoDDCCtrls, ItemListMarkerOpensANestedGroup)
{
    const std::vector<cParamStcBase> items = {item(1, cParamStcBase::GroupBox), item(10, cParamStcBase::CheckBox),
                                              item(2, cParamStcBase::GroupBox), item(20, cParamStcBase::Edit),
                                              item(21, cParamStcBase::ListEdit)};
    const cParamStcBase g =
        CDialogAutoDDCCtrls::fromItemList({0, 1, CDialogAutoDDCCtrls::NestedGroupMarker, 2, 3, 4}, items);
    EXPECT_EQ(g.id, 1u);
    ASSERT_EQ(g.children.size(), 2u);
    EXPECT_EQ(g.children[0].id, 10u);
    ASSERT_EQ(g.children[1].children.size(), 2u);
    EXPECT_EQ(g.children[1].children[1].id, 21u);

    EXPECT_THROW(CDialogAutoDDCCtrls::fromItemList({0, CDialogAutoDDCCtrls::NestedGroupMarker}, items),
                 std::invalid_argument);
    EXPECT_THROW(CDialogAutoDDCCtrls::fromItemList({0, 0x80000007u, 1}, items), std::invalid_argument);
}
