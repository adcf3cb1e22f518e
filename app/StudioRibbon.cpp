#include "app/StudioRibbon.h"

#include "app/CommandIds.h"
#include "app/illuminant_commands.h"
#include "calibration/parameter_limits.h"

using namespace tonewright;

namespace {

using ribbon::Item;
using ribbon::Kind;
using ribbon::Menu;

constexpr Item button(Kind kind, int id, const char* keyTip) { return {.kind = kind, .id = id, .keyTip = keyTip}; }
constexpr Item menuButton(Kind kind, int id, const char* keyTip, Menu menu, std::span<const int> ids) {
    return {.kind = kind, .id = id, .keyTip = keyTip, .menu = menu, .menuIds = ids};
}
constexpr Item kSeparator{.kind = Kind::Separator};

// The key labels are text and bind nothing. That the real keys are others is deliberate (C9).
constexpr ribbon::FileEntry kFileEntries[] = {
    {ID_BTN_ACQ_LOAD_IMAGE, "&Load Image", "CTRL+I"},
    {ID_BTN_ACQ_SAVE_IMAGE_AS, "&Export Image", "CTRL+E"},
    {ID_BTN_PARAM_LOAD, "&Open Config", "CTRL+O"},
    {ID_BTN_PARAM_SAVE, "&Save Config", "CTRL+S"},
    {ID_BTN_PARAM_SAVE_AS, "&Save Config as...", "CTRL+SHIFT+S"},
    {ID_BTN_CALIBRATE_CAMERA, "Calibrate Camera", ""},
    {ID_APP_EXIT, "E&xit", ""},
};

constexpr int kLoadMenu[] = {ID_BTN_ACQ_LOAD_RAW_IMAGE, ID_BTN_ACQ_LOAD_REF_IMAGE};
constexpr Item kAcquisition[] = {
    menuButton(Kind::Large, ID_BTN_ACQ_LOAD_IMAGE, "LI", Menu::Split, kLoadMenu),
    button(Kind::Large, ID_BTN_ACQ_SAVE_IMAGE_AS, "SI"),
    kSeparator,
    button(Kind::Large, ID_BTN_REFRESH_CAMERAS, "CF"),
    button(Kind::Large, ID_BTN_ACQ_SNAP, "SN"),
};

constexpr Item kCoefficients[] = {
    button(Kind::Large, ID_BTN_BACKUP_DEVICE_FILE, "BC"),
    button(Kind::Large, ID_BTN_LOAD_CAMERA_FILE, "LC"),
    button(Kind::Large, ID_BTN_SAVE_CAMERA_FILE, "SC"),
};

constexpr Item kExecution[] = {
    button(Kind::Large, ID_BTN_CALIBRATE_PREVIEW, "CP"),
    button(Kind::Large, ID_BTN_CALIBRATE_DEVICE, "UC"),
};

constexpr Item saturation(int edit, int slider, const char* keyTip) {
    return {.kind = Kind::Field,
            .id = edit,
            .keyTip = keyTip,
            .editWidth = 50,
            .sliderId = slider,
            .sliderWidth = 128,
            .range = {0, kMostSaturation}};
}

constexpr int kSaturationMenu[] = {ID_BTN_SATURATION_AUTO, ID_BTN_SATURATION_MANUAL, ID_BTN_SATURATION_NONE};
// The user's own light first, then a line, then the predefined ones.
constexpr auto kIlluminantMenu = [] {
    std::array<int, kCalibrationIlluminants.size() + 1> ids{};
    for (std::size_t i = 0; i < kCalibrationIlluminants.size(); ++i) {
        ids[i == 0 ? 0 : i + 1] = IlluminantCommand(kCalibrationIlluminants[i]);
    }
    return ids;
}();
constexpr int kColorMenu[] = {ID_BTN_COLOR_AUTO, ID_BTN_COLOR_MANUAL};
constexpr Item kParameters[] = {
    button(Kind::Small, ID_BTN_PARAM_LOAD, "LP"),
    button(Kind::Small, ID_BTN_PARAM_SAVE, "SP"),
    button(Kind::Small, ID_BTN_PARAM_RESET, "RP"),
    kSeparator,
    {.kind = Kind::Field, .id = ID_EDIT_GAMMA, .keyTip = "GA", .editWidth = 40},
    {.kind = Kind::Slider,
     .id = ID_SLD_GAMMA,
     .sliderWidth = 145,
     .range = {kLeastGammaHundredths, kMostGammaHundredths}},
    menuButton(Kind::Small, ID_BTN_SATURATION_MODE, "SM", Menu::Whole, kSaturationMenu),
    saturation(ID_EDIT_SATURATION_R, ID_SLD_SATURATION_R, "SR"),
    saturation(ID_EDIT_SATURATION_G, ID_SLD_SATURATION_G, "SG"),
    saturation(ID_EDIT_SATURATION_B, ID_SLD_SATURATION_B, "SB"),
    kSeparator,
    button(Kind::Small, ID_BTN_METHOD_ABSOLUTE, "AB"),
    button(Kind::Small, ID_BTN_METHOD_RELATIVE, "RE"),
    menuButton(Kind::Small, ID_BTN_ILLUMINANT_TYPE, "IT", Menu::Split, kIlluminantMenu),
    menuButton(Kind::Large, ID_BTN_COLOR_SELECT, "CS", Menu::Whole, kColorMenu),
};

constexpr Item kViewer[] = {
    button(Kind::Large, ID_BTN_IMAGE_RESET_SCALE, "FS"), kSeparator,
    button(Kind::Small, ID_BTN_IMAGE_AUTO_HEIGHT, "AH"), button(Kind::Small, ID_BTN_IMAGE_AUTO_WIDTH, "AW"),
    button(Kind::Small, ID_BTN_IMAGE_FIT_SCREEN, "FW"),
};

constexpr Item kLog[] = {button(Kind::Large, ID_BTN_CLEAR_LOG, "C")};

constexpr Item kPanes[] = {
    button(Kind::CheckBox, ID_CBTN_LOG, "L"),
    button(Kind::CheckBox, ID_CBTN_RAW_COLOR_LIST, "W"),
    button(Kind::CheckBox, ID_CBTN_SPECTRUM_VALUES, "S"),
    button(Kind::CheckBox, ID_CBTN_REF_IMG_VIEW, "R"),
    button(Kind::CheckBox, ID_CBTN_CALIB_IMG_VIEW, "A"),
};

constexpr Item kCalibrationQuality[] = {
    button(Kind::Large, ID_BTN_FIND_CHART, "FC"),  button(Kind::Large, ID_BTN_QUALITY_PANE, "CQ"),
    button(Kind::Large, ID_BTN_COMPARE, "CO"),     button(Kind::Large, ID_BTN_VERIFY, "VE"),
    button(Kind::Large, ID_BTN_SAVE_REPORT, "SR"),
};

constexpr Item kEdit[] = {
    button(Kind::Small, ID_BTN_UNDO, "UN"),
    button(Kind::Small, ID_BTN_REDO, "RD"),
};

constexpr Item kCamera[] = {
    button(Kind::Large, ID_BTN_SEND_COEFFICIENTS, "SF"),
    button(Kind::Large, ID_BTN_READ_COEFFICIENTS, "RF"),
};

constexpr int kChromeMenu[] = {ID_BTN_CHROME_SYSTEM, ID_BTN_CHROME_LIGHT, ID_BTN_CHROME_DARK, ID_BTN_CHROME_NEUTRAL};
constexpr Item kWindow[] = {
    button(Kind::Large, ID_BTN_RESET_LAYOUT, "RL"),
    menuButton(Kind::Large, ID_BTN_CHROME, "AP", Menu::Whole, kChromeMenu),
};

constexpr ribbon::Panel kHomePanels[] = {
    {"Image Acquisition", ":/icons/snap.svg", "ZA", kAcquisition},
    {"Acquisition Device Coefficients", ":/icons/load-coefficients.svg", "ZD", kCoefficients},
    {"Execution", ":/icons/calibrate-preview.svg", "ZE", kExecution},
    {"Parameters", ":/icons/parameters.svg", "ZP", kParameters},
    {"Image Viewer", ":/icons/fit-screen.svg", "ZV", kViewer},
};
constexpr ribbon::Panel kViewPanels[] = {
    {"Log Window", ":/icons/clear-log.svg", "ZL", kLog},
    {"Dockable Panes", ":/icons/panes.svg", "ZP", kPanes},
};
constexpr ribbon::Panel kQualityPanels[] = {
    {"Calibration Quality", ":/icons/quality.svg", "ZQ", kCalibrationQuality},
    {"Edit", ":/icons/undo.svg", "ZE", kEdit},
    {"Camera", ":/icons/send-coefficients.svg", "ZC", kCamera},
    {"Window", ":/icons/reset-layout.svg", "ZW", kWindow},
};

// Where room is short, what is used least while calibrating goes first.
enum HomePanel : std::size_t { Acquisition, Coefficients, Execution, Parameters, Viewer };
constexpr RibbonShrinkStep kHomeSteps[] = {
    {Parameters, RibbonForm::Compact},  {Coefficients, RibbonForm::Button}, {Viewer, RibbonForm::Button},
    {Acquisition, RibbonForm::Compact}, {Execution, RibbonForm::Compact},   {Acquisition, RibbonForm::Button},
    {Execution, RibbonForm::Button},    {Parameters, RibbonForm::Button},
};
constexpr RibbonShrinkStep kViewSteps[] = {{1, RibbonForm::Button}, {0, RibbonForm::Button}};

constexpr RibbonShrinkStep kQualitySteps[] = {
    {3, RibbonForm::Button}, {2, RibbonForm::Button}, {0, RibbonForm::Button}, {1, RibbonForm::Button}};

constexpr ribbon::Tab kTabs[] = {{"Home", "H", kHomePanels, kHomeSteps},
                                 {"View", "V", kViewPanels, kViewSteps},
                                 {"Quality", "Q", kQualityPanels, kQualitySteps}};

constexpr int kHelpMenu[] = {ID_APP_ABOUT};

}  // namespace

const ribbon::Layout& StudioRibbon() {
    static constexpr ribbon::Layout kLayout{.fileTitle = "File",
                                            .fileKeyTip = "F",
                                            .fileEntries = kFileEntries,
                                            .recentTitle = "Recent Documents",
                                            .recentWidth = 300,
                                            .tabs = kTabs,
                                            .helpId = ID_HELP,
                                            .helpKeyTip = "Y",
                                            .helpMenuIds = kHelpMenu};
    return kLayout;
}
