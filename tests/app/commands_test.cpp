#include <gtest/gtest.h>

#include <QFile>
#include <QKeySequence>
#include <map>
#include <set>
#include <string>

#include "app/CommandTable.h"
#include "app/StringTable.h"
#include "app/StudioRibbon.h"
#include "app/illuminant_commands.h"
#include "tests/support/places.h"

using namespace tonewright;

namespace {

bool enabled(int id, const StudioState& state) { return FindCommand(id)->enabled(state); }
bool checked(int id, const StudioState& state) { return FindCommand(id)->checked(state); }

TEST(Commands, DeviceRulesFollowKindAndCoefficients) {
    struct Case {
        int kind;
        bool file, snap, backup, upload;
    };
    for (const Case& c :
         {Case{0, false, false, false, false}, Case{0, true, false, false, false}, Case{1, false, true, false, true},
          Case{1, true, true, false, true}, Case{2, false, true, true, false}, Case{2, true, true, true, true},
          Case{3, false, false, false, false}, Case{3, true, false, false, true}, Case{4, false, true, false, false},
          Case{4, true, true, false, false}}) {
        const StudioState state{.deviceKind = c.kind, .hasCoefficientFile = c.file};
        EXPECT_EQ(enabled(ID_BTN_ACQ_SNAP, state), c.snap) << c.kind << c.file;
        EXPECT_EQ(enabled(ID_BTN_BACKUP_DEVICE_FILE, state), c.backup) << c.kind << c.file;
        EXPECT_EQ(enabled(ID_BTN_CALIBRATE_DEVICE, state), c.upload) << c.kind << c.file;
    }
}

TEST(Commands, PreviewWantsARawImageOrInRelativeModeAReference) {
    struct Case {
        int mode;
        bool raw, reference, expected;
    };
    for (const Case& c : {Case{0, false, false, false}, Case{0, false, true, false}, Case{0, true, false, true},
                          Case{1, false, false, false}, Case{1, false, true, true}, Case{1, true, false, true}}) {
        const StudioState state{.calibrationMode = c.mode, .rawHasImage = c.raw, .refHasImage = c.reference};
        EXPECT_EQ(enabled(ID_BTN_CALIBRATE_PREVIEW, state), c.expected) << c.mode << c.raw << c.reference;
    }
}

TEST(Commands, ViewRulesWantAnImageInTheSelectedViewer) {
    struct Case {
        StudioState state;
        bool expected;
    };
    const Case cases[] = {
        {{}, false},
        {{.rawHasImage = true, .refHasImage = true, .calibHasImage = true}, false},
        {{.rawSelected = true}, false},
        {{.refHasImage = true, .rawSelected = true}, false},
        {{.rawHasImage = true, .rawSelected = true}, true},
        {{.refHasImage = true, .refSelected = true}, true},
        {{.rawHasImage = true, .calibSelected = true}, false},
        {{.calibHasImage = true, .calibSelected = true}, true},
    };
    for (const int id : {ID_BTN_IMAGE_RESET_SCALE, ID_BTN_IMAGE_AUTO_HEIGHT, ID_BTN_IMAGE_AUTO_WIDTH,
                         ID_BTN_IMAGE_FIT_SCREEN, ID_IMAGE_ZOOM_IN}) {
        for (const Case& c : cases) EXPECT_EQ(enabled(id, c.state), c.expected) << id << " case " << &c - cases;
    }
    EXPECT_FALSE(enabled(ID_BTN_ACQ_SAVE_IMAGE_AS, {.rawHasImage = true}));
    EXPECT_TRUE(enabled(ID_BTN_ACQ_SAVE_IMAGE_AS, {.calibHasImage = true}));
}

TEST(Commands, ColorListRulesWantTheViewerOfTheMode) {
    struct Case {
        int mode;
        bool paneEnabled, raw, reference, expected;
    };
    for (const Case& c :
         {Case{0, true, true, false, true}, Case{0, false, true, false, false}, Case{0, true, false, true, false},
          Case{1, true, false, true, true}, Case{1, true, true, false, true}, Case{1, false, false, true, false},
          Case{1, true, false, false, false}}) {
        const StudioState state{.calibrationMode = c.mode,
                                .rawSelected = c.raw,
                                .refSelected = c.reference,
                                .rawColorListEnabled = c.paneEnabled};
        EXPECT_EQ(enabled(ID_COLOR_LIST_REMOVE, state), c.expected);
        EXPECT_EQ(enabled(ID_COLOR_LIST_CLEAR, state), c.expected);
    }
}

TEST(Commands, ExactlyOneChoiceOfEachGroupIsChecked) {
    const std::vector<int> illuminants{ID_BTN_ILLUMINANT_USER, ID_BTN_ILLUMINANT_A,   ID_BTN_ILLUMINANT_D50,
                                       ID_BTN_ILLUMINANT_D55,  ID_BTN_ILLUMINANT_D65, ID_BTN_ILLUMINANT_D75,
                                       ID_BTN_ILLUMINANT_E,    ID_BTN_ILLUMINANT_F2,  ID_BTN_ILLUMINANT_F7,
                                       ID_BTN_ILLUMINANT_F11};
    for (std::size_t i = 0; i < illuminants.size(); ++i) {
        const StudioState state{.illuminant = static_cast<int>(i) - 1};
        for (std::size_t k = 0; k < illuminants.size(); ++k) EXPECT_EQ(checked(illuminants[k], state), i == k);
    }
    for (int mode = 0; mode < 3; ++mode) {
        const int choices[] = {ID_BTN_SATURATION_AUTO, ID_BTN_SATURATION_MANUAL, ID_BTN_SATURATION_NONE};
        for (int k = 0; k < 3; ++k) EXPECT_EQ(checked(choices[k], {.saturationMode = mode}), mode == k);
    }
    for (int mode = 0; mode < 2; ++mode) {
        EXPECT_EQ(checked(ID_BTN_METHOD_ABSOLUTE, {.calibrationMode = mode}), mode == 0);
        EXPECT_EQ(checked(ID_BTN_METHOD_RELATIVE, {.calibrationMode = mode}), mode == 1);
        for (const int id : illuminants) EXPECT_EQ(enabled(id, {.calibrationMode = mode}), mode == 0);
        EXPECT_EQ(enabled(ID_BTN_ILLUMINANT_TYPE, {.calibrationMode = mode}), mode == 0);
    }
    for (const int id : {ID_EDIT_SATURATION_R, ID_EDIT_SATURATION_G, ID_EDIT_SATURATION_B, ID_SLD_SATURATION_R,
                         ID_SLD_SATURATION_G, ID_SLD_SATURATION_B}) {
        for (int mode = 0; mode < 3; ++mode) EXPECT_EQ(enabled(id, {.saturationMode = mode}), mode == 1) << id;
    }
}

TEST(Commands, AnIlluminantBeyondThePublishedOnesCollidesWithNoCommand) {
    const CalibrationIlluminant tenth{.index = 9, .word = "L", .label = "", .adaptationKey = 9};
    EXPECT_EQ(FindCommand(IlluminantCommand(tenth)), nullptr);
    EXPECT_EQ(FindIlluminantOfCommand(ID_BTN_CALIBRATE_CAMERA), nullptr);
}

TEST(Commands, KeysRunWhatTheyAreBoundToAndNotWhatTheLabelsSay) {
    const std::map<std::string, int> expected{
        {"Ctrl+I", 32918},   {"Ctrl+E", 32920}, {"Ctrl+Space", 32786}, {"Ctrl+C", 32897}, {"Ctrl+P", 32899},
        {"Ctrl+Del", 32916}, {"Ctrl+O", 32790}, {"Ctrl+S", 32924},     {"Del", 32915},    {"Return", 113},
        {"Backspace", 114},  {"F1", 57670},     {"Ctrl+B", 32922}};
    std::map<std::string, int> bound;
    std::set<int> ids;
    for (const CommandRow& row : CommandTable()) {
        EXPECT_TRUE(ids.insert(row.id).second) << row.id << " stands twice";
        if (!*row.key) continue;
        EXPECT_EQ(QKeySequence(row.key).toString(QKeySequence::PortableText).toStdString(), row.key);
        EXPECT_TRUE(bound.emplace(row.key, row.id).second) << row.key << " is bound twice";
    }
    // The additions have numbers from 40000 on, and keys that were free.
    std::erase_if(bound, [](const auto& key) { return key.second >= 40000 && key.second < 50000; });
    EXPECT_EQ(bound, expected);
}

TEST(Commands, TipsSplitIntoTitleAndDescription) {
    for (const int id : {ID_BTN_IMAGE_AUTO_HEIGHT, ID_BTN_CLEAR_LOG}) {  // with a space behind the line feed, without
        const CommandTip tip = SplitTip(FindCommand(id)->tip);
        EXPECT_EQ(tip.title, id == ID_BTN_CLEAR_LOG ? "Clear Log" : "Auto Height");
        EXPECT_EQ(tip.description,
                  id == ID_BTN_CLEAR_LOG ? "Clear logger window of old messages." : "Fit height to screen.");
    }
    EXPECT_STREQ(LoadStudioString(114), "Removes the last color that was previously added");
    EXPECT_STREQ(LoadStudioString(316), "Zoom factor");
    EXPECT_STREQ(LoadStudioString(1), "");
}

// What the layout names must exist, and each large button must have a picture.
TEST(Commands, RibbonShowsOnlyCommandsAndEachLargeButtonHasAPicture) {
    const QString pictures = QString::fromStdString(sourceFile("app/resources/icons/%1.svg"));
    const auto known = [](int id) { return FindCommand(id) != nullptr; };
    const ribbon::Layout& layout = StudioRibbon();
    for (const ribbon::FileEntry& entry : layout.fileEntries) EXPECT_TRUE(known(entry.id)) << entry.text;
    for (const ribbon::Tab& tab : layout.tabs) {
        for (const ribbon::Panel& panel : tab.panels) {
            EXPECT_TRUE(QFile::exists(pictures.arg(QString(panel.picture).section('/', 2).section('.', 0, 0))));
            for (const ribbon::Item& item : panel.items) {
                if (!item.id) continue;
                ASSERT_TRUE(known(item.id)) << item.id;
                for (const int id : item.menuIds) EXPECT_TRUE(!id || known(id)) << id;
                EXPECT_TRUE(!item.sliderId || known(item.sliderId)) << item.sliderId;
                if (item.kind != ribbon::Kind::Large && item.kind != ribbon::Kind::Small) continue;
                EXPECT_TRUE(QFile::exists(pictures.arg(FindCommand(item.id)->picture))) << FindCommand(item.id)->label;
            }
        }
    }
}

// A key tip that begins another one could never be told from it.
TEST(Commands, NoKeyTipBeginsAnother) {
    for (const ribbon::Tab& tab : StudioRibbon().tabs) {
        std::vector<std::string> tips;
        for (const ribbon::Panel& panel : tab.panels) {
            tips.emplace_back(panel.keyTip);
            for (const ribbon::Item& item : panel.items) {
                if (*item.keyTip) tips.emplace_back(item.keyTip);
            }
        }
        for (std::size_t i = 0; i < tips.size(); ++i) {
            for (std::size_t k = 0; k < tips.size(); ++k) {
                EXPECT_TRUE(i == k || !tips[i].starts_with(tips[k])) << tips[i] << " and " << tips[k];
            }
        }
    }
}

}  // namespace
