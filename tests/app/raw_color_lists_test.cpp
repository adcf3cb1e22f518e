#include "app/workflow/RawColorLists.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr std::uint32_t kColors[] = {0x100000, 0x200000, 0x300000, 0x400000, 0x500000};

RawColorSide handMade(int count) {
    RawColorSide side;
    for (int i = 0; i < count; ++i) side.Add({kColors[i], i, 10 * i});
    return side;
}

CTivVector vectorOf(int count) {
    CTivVector colors(count, CTivData::FormatRgb, nullptr, true);
    for (int i = 0; i < count; ++i) colors.SetData(i, CTivData(CTivData::FormatRgb, kColors[i]));
    return colors;
}

// "label:color" for each row, in order, with the color of the swatch that the row shows.
std::string shown(const RawColorSide& side) {
    std::string text;
    for (const auto& row : side.Rows()) {
        text += std::to_string(row.label) + ":" + std::to_string(side.Images()[row.image] >> 20) + " ";
    }
    return text;
}

}  // namespace

TEST(RawColorSide, RemovingTheSelectedRowRenumbersWhatFollowsAndKeepsItsSwatch) {
    RawColorSide side = handMade(5);
    side.Remove(2);
    EXPECT_EQ(shown(side), "1:1 2:2 3:4 4:5 ");
    EXPECT_EQ(side.Images().size(), 5u);
    side.Add({0x600000, 0, 0});
    EXPECT_EQ(shown(side), "1:1 2:2 3:4 4:5 5:6 ");
    side.Remove(std::nullopt);
    EXPECT_EQ(shown(side), "1:1 2:2 3:4 4:5 ");
    EXPECT_EQ(side.GetColors().GetSize(), 4);
}

// The mark goes with the color that was picked: not with the number, and not with the row's place.
TEST(RawColorSide, AColorOfTwoIsMarkedUntilItIsPickedAnew) {
    const auto marks = [](const RawColorSide& side) {
        std::string text;
        for (const auto& row : side.Rows()) text += row.isMixed ? '!' : '.';
        return text;
    };
    RawColorSide side = handMade(3);
    side.Add({0x600000, 7, 8, true});
    side.Fill(vectorOf(1));
    EXPECT_EQ(marks(side), "...!.");
    side.Remove(0);
    EXPECT_EQ(marks(side), "..!.");
    side.ReplaceOrAdd(2, {0x700000, 7, 9});
    side.ReplaceOrAdd(0, {0x700000, 7, 9, true});
    EXPECT_EQ(marks(side), "!...");
}

TEST(RawColorSide, RemovingFromAnEmptyListDoesNothing) {
    RawColorSide side;
    side.Remove(std::nullopt);
    side.Remove(3);
    EXPECT_TRUE(side.Rows().empty());
    EXPECT_FALSE(side.GetColors().IsAllocated());
}

TEST(RawColorSide, ReplacingChangesEntryAndSwatchOfTheSelectedRow) {
    RawColorSide side = handMade(3);
    side.ReplaceOrAdd(1, {0x900000, 7, 8});
    EXPECT_EQ(shown(side), "1:1 2:9 3:3 ");
    EXPECT_EQ(side.Entries()[1].x, 7);
    side.ReplaceOrAdd(std::nullopt, {0xA00000, 0, 0});
    EXPECT_EQ(shown(side), "1:1 2:9 3:3 4:10 ");
}

TEST(RawColorSide, RowsFromAFileCountFromZeroAndShareTheFirstSwatchWhenReplaced) {
    RawColorSide side;
    side.Fill(vectorOf(3));
    EXPECT_EQ(shown(side), "0:1 1:2 2:3 ");
    side.Add({0x400000, 1, 1});
    EXPECT_EQ(shown(side), "0:1 1:2 2:3 4:4 ");
    side.ReplaceOrAdd(2, {0x900000, 5, 6});
    EXPECT_EQ(shown(side), "0:9 1:2 2:3 4:4 ");
    EXPECT_EQ(side.GetColors().GetData(2).AsRgb(), 0x900000u);
    EXPECT_EQ(side.GetColors().GetData(0).AsRgb(), 0x100000u);
}

TEST(RawColorLists, ANewRawImageLeavesBothEntryListsAndANewReferenceEmptiesThem) {
    RawColorLists lists{handMade(3), handMade(2)};
    lists.ClearForNewImage(true);
    EXPECT_TRUE(lists.raw.Rows().empty());
    EXPECT_EQ(lists.raw.GetColors().GetSize(), 3);
    EXPECT_EQ(lists.reference.Rows().size(), 2u);

    lists = {handMade(3), handMade(2)};
    lists.ClearForNewImage(false);
    EXPECT_EQ(shown(lists.raw), "1:1 2:2 3:3 ");
    EXPECT_EQ(lists.raw.GetColors().GetSize(), 0);
    EXPECT_TRUE(lists.reference.Rows().empty());
    // A row without an entry cannot be replaced or removed by itself: the walk over both ends before it.
    lists.raw.ReplaceOrAdd(1, {0x900000, 0, 0});
    EXPECT_EQ(shown(lists.raw), "1:1 2:2 3:3 4:9 ");
    lists.raw.Remove(1);
    EXPECT_EQ(shown(lists.raw), "1:1 2:2 3:3 ");
    EXPECT_EQ(lists.raw.GetColors().GetSize(), 0);
}
