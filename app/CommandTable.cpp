#include "app/CommandTable.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>

#include "app/CMainFrame.h"
#include "app/appearance.h"
#include "app/illuminant_commands.h"
#include "app/workflow/Workflow.h"

using namespace tonewright;

namespace {

using State = const StudioState&;

bool always(State) { return true; }
bool never(State) { return false; }

bool selectedHasImage(State s) {
    return (s.rawSelected && s.rawHasImage) || (s.refSelected && s.refHasImage) || (s.calibSelected && s.calibHasImage);
}
bool selectedChartHasImage(State s) { return (s.rawSelected && s.rawHasImage) || (s.refSelected && s.refHasImage); }
bool calibHasImage(State s) { return s.calibHasImage; }
bool canSnap(State s) { return s.deviceKind != DeviceKindNone && s.deviceKind != DeviceKindFileOnly; }
bool canBackup(State s) { return s.deviceKind == DeviceKindCameraLink; }
bool canPreview(State s) { return s.rawHasImage || (s.calibrationMode == 1 && s.refHasImage); }
bool canUpload(State s) {
    return s.deviceKind != DeviceKindNone && s.deviceKind != DeviceKindOther &&
           (s.deviceKind == DeviceKindFrameGrabber || s.hasCoefficientFile);
}
bool canCompare(State s) { return s.comparing || (s.rawHasImage && s.calibHasImage); }
bool isOtherCamera(State s) { return s.deviceKind == DeviceKindOther; }
bool canEditColors(State s) {
    return s.rawColorListEnabled && (s.rawSelected || (s.calibrationMode == 1 && s.refSelected));
}

bool isAbsolute(State s) { return s.calibrationMode == 0; }
bool isRelative(State s) { return s.calibrationMode == 1; }
template <int Mode>
bool saturationIs(State s) {
    return s.saturationMode == Mode;
}
template <std::size_t Row>
bool illuminantIs(State s) {
    return s.illuminant == kCalibrationIlluminants[Row].index;
}
template <bool StudioState::*Flag>
bool flag(State s) {
    return s.*Flag;
}
template <int Chrome>
bool chromeIs(State s) {
    return s.chrome == Chrome;
}
bool automaticColors(State s) { return !s.manualColors; }

// Calls a function of the frame, of its panes or of the steps that it belongs to, with the command's number if it takes
// one.
template <class Owner, class... Arguments>
Owner ownerOf(void (Owner::*)(Arguments...));
template <auto Member>
void call(CMainFrame& frame, int id) {
    using Owner = decltype(ownerOf(Member));
    Owner* owner = nullptr;
    if constexpr (std::is_same_v<Owner, CMainFrame>) {
        owner = &frame;
    } else if constexpr (std::is_same_v<Owner, PaneLayout>) {
        owner = &frame.GetPanes();
    } else {
        owner = &frame.GetWorkflow().Get<Owner>();
    }
    if constexpr (std::is_invocable_v<decltype(Member), Owner&, int>) {
        (owner->*Member)(id);
    } else {
        (owner->*Member)();
    }
}

void dress(CMainFrame&, int id) { ChooseAppearance(id - ID_BTN_CHROME_SYSTEM); }

constexpr CommandRow::Rule kUnchecked = nullptr;
constexpr auto kNothing = nullptr;
using Pictures = PictureSteps;
using Calibration = CalibrationSteps;
using Parameters = ParameterSteps;
using Files = FileSteps;
using Devices = DeviceSteps;
using F = CMainFrame;
using S = StudioState;

// The keys are the ones that work. The labels of the file menu name others, deliberately (C9).
constexpr CommandRow kFixedCommands[] = {
    {ID_BTN_ACQ_LOAD_IMAGE, "Load Image", "load-image", "Ctrl+O", always, kUnchecked, call<&Pictures::OnLoadImage>,
     "Load an image from a file.\n Load Image"},
    {ID_BTN_ACQ_LOAD_RAW_IMAGE, "Load Raw", "load-raw", "", always, kUnchecked, call<&Pictures::OnLoadRawImage>,
     "Load an image in the raw image window.\nLoad Raw Image"},
    {ID_BTN_ACQ_LOAD_REF_IMAGE, "Load Reference", "load-reference", "", always, kUnchecked,
     call<&Pictures::OnLoadReferenceImage>, "Load an image in the reference image window.\nLoad Reference Image"},
    {ID_BTN_ACQ_SAVE_IMAGE_AS, "Save Image", "save-image", "", calibHasImage, kUnchecked, call<&Pictures::OnSaveImage>,
     "Save the calibrated image as a new file.\n Save Image"},
    {ID_BTN_REFRESH_CAMERAS, "Configure", "configure", "", always, kUnchecked, call<&Devices::OnConfigure>,
     "Configure the acquisition device (CameraLink camera or frame grabber)\n Acquisition Configuration"},
    {ID_BTN_ACQ_SNAP, "Snap", "snap", "Ctrl+Space", canSnap, kUnchecked, call<&Devices::OnSnap>,
     "Acquire an image using the current frame grabber and camera\n Acquire one Frame"},

    {ID_BTN_BACKUP_DEVICE_FILE, "Backup Coefficients", "backup-coefficients", "Ctrl+B", canBackup, kUnchecked,
     call<&Devices::OnBackupCoefficients>,
     "Save the current coefficients from the acquisition device (CameraLink camera only) to disk\nBackup Acquisition "
     "Device Coefficients"},
    {ID_BTN_LOAD_CAMERA_FILE, "Load Coefficients", "load-coefficients", "Ctrl+I", always, kUnchecked,
     call<&Files::OnLoadCoefficients>,
     "Load color calibration coefficients file from disk\nLoad Coefficients (.ccor file)"},
    {ID_BTN_SAVE_CAMERA_FILE, "Save Coefficients", "save-coefficients", "Ctrl+E", always, kUnchecked,
     call<&Files::OnSaveCoefficients>,
     "Save color calibration coefficients file to disk\nSave Coefficients (.ccor file)"},
    {ID_BTN_CALIBRATE_PREVIEW, "Calibrate and Preview", "calibrate-preview", "Ctrl+P", canPreview, kUnchecked,
     call<&Calibration::OnCalibratePreview>,
     "Compute new coefficients and create a calibrated preview image using current parameters\n Calibrate and "
     "Preview"},
    {ID_BTN_CALIBRATE_DEVICE, "Upload Coefficients", "upload-coefficients", "", canUpload, kUnchecked,
     call<&Devices::OnUploadCoefficients>,
     "Upload the current calibration coefficients to the acquisition device (CameraLink camera or frame grabber)\n "
     "Upload Calibration Coefficients"},
    // Deliberately (C10) without a handler, and so always gray.
    {ID_BTN_CALIBRATE_CAMERA, "Calibrate Camera", "", "Ctrl+C", never, kUnchecked, kNothing,
     "Calibrate selected camera using currently selected camera file.\n Calibrate Camera"},

    {ID_BTN_PARAM_LOAD, "Load", "load-parameters", "", always, kUnchecked, call<&Files::OnLoadParameters>,
     "Load parameters from a save file.\n Load Parameters"},
    {ID_BTN_PARAM_SAVE, "Save", "save-parameters", "", always, kUnchecked, call<&Files::OnSaveParameters>,
     "Save current configuration of parameters.\n Save Parameters"},
    // Deliberately (C11) enabled and without an action.
    {ID_BTN_PARAM_SAVE_AS, "Save as", "", "", always, kUnchecked, kNothing,
     "Save current configuration of parameters as a new file.\n Save Parameters As"},
    {ID_BTN_PARAM_RESET, "Reset", "reset-parameters", "", always, kUnchecked, call<&Parameters::OnResetParameters>,
     "Reset all current parameters to their default.\n Reset"},
    {ID_EDIT_GAMMA, "Gamma Adjustment", "", "", always, kUnchecked, call<&Parameters::OnGammaEdit>, ""},
    {ID_SLD_GAMMA, "Gamma Adjustment", "", "", always, kUnchecked, call<&Parameters::OnGammaSlider>,
     "Adjust gamma calibration on the image.\n Gamma Adjustment"},

    {ID_BTN_SATURATION_MODE, "Saturation Mode", "saturation", "", always, kUnchecked, kNothing,
     "Choose a way to select saturation coefficients.\n Saturation Mode"},
    {ID_BTN_SATURATION_AUTO, "Automatic", "", "", always, saturationIs<0>, call<&Parameters::OnSaturationMode>, ""},
    {ID_BTN_SATURATION_MANUAL, "Manual", "", "", always, saturationIs<1>, call<&Parameters::OnSaturationMode>, ""},
    {ID_BTN_SATURATION_NONE, "None", "", "", always, saturationIs<2>, call<&Parameters::OnSaturationMode>, ""},
    {ID_EDIT_SATURATION_R, "R", "", "", saturationIs<1>, kUnchecked, call<&Parameters::OnSaturationEdit>, ""},
    {ID_EDIT_SATURATION_G, "G", "", "", saturationIs<1>, kUnchecked, call<&Parameters::OnSaturationEdit>, ""},
    {ID_EDIT_SATURATION_B, "B", "", "", saturationIs<1>, kUnchecked, call<&Parameters::OnSaturationEdit>, ""},
    {ID_SLD_SATURATION_R, "R", "", "", saturationIs<1>, kUnchecked, call<&Parameters::OnSaturationSlider>, ""},
    {ID_SLD_SATURATION_G, "G", "", "", saturationIs<1>, kUnchecked, call<&Parameters::OnSaturationSlider>, ""},
    {ID_SLD_SATURATION_B, "B", "", "", saturationIs<1>, kUnchecked, call<&Parameters::OnSaturationSlider>, ""},

    {ID_BTN_METHOD_ABSOLUTE, "Absolute", "absolute", "", always, isAbsolute, call<&Parameters::OnAbsolute>,
     "Calibrate using the absolute method. This method asks for an illuminant type.\n Calibrate using absolute mode"},
    {ID_BTN_METHOD_RELATIVE, "Relative", "relative", "", always, isRelative, call<&Parameters::OnRelative>,
     "Calibrate using the relative method. This method asks for a reference image.\n Calibrate using relative mode"},
    {ID_BTN_ILLUMINANT_TYPE, "Illuminant Type", "illuminant", "", isAbsolute, kUnchecked,
     call<&Parameters::OnIlluminantType>, "Choose a predefined illuminant type for the calibration.\n Illuminant Type"},
    {ID_BTN_COLOR_SELECT, "Color Selection", "color-selection", "", always, kUnchecked, kNothing,
     "Choose a way to select ROI colors.\n Color Selection"},
    {ID_BTN_COLOR_AUTO, "Automatic", "", "", always, automaticColors, call<&Calibration::OnColorsAutomatic>,
     "Automatically choose raw colors from the image.\n Automatic ROI"},
    {ID_BTN_COLOR_MANUAL, "Manual", "", "", always, flag<&S::manualColors>, call<&Calibration::OnColorsManual>,
     "Select raw colors manually using ROI.\n Manual ROI"},

    {ID_BTN_IMAGE_RESET_SCALE, "Fit to Scale", "fit-scale", "", selectedHasImage, kUnchecked, call<&F::OnViewCommand>,
     "Reset the image viewer scale to its original value.\n Reset Scale"},
    {ID_BTN_IMAGE_AUTO_HEIGHT, "Auto Height", "auto-height", "", selectedHasImage, kUnchecked, call<&F::OnViewCommand>,
     "Fit height to screen.\n Auto Height"},
    {ID_BTN_IMAGE_AUTO_WIDTH, "Auto Width", "auto-width", "", selectedHasImage, kUnchecked, call<&F::OnViewCommand>,
     "Fit width to screen.\n Auto Width"},
    {ID_BTN_IMAGE_FIT_SCREEN, "Fit to Screen", "fit-screen", "", selectedHasImage, kUnchecked, call<&F::OnViewCommand>,
     "Fit image to screen.\n Fit to Screen"},
    {ID_IMAGE_ZOOM_IN, "Zoom", "", "", selectedHasImage, kUnchecked, call<&F::OnViewCommand>,
     "Zoom on area (Right click to zoom out).\n Zoom"},
    {ID_LEARN, "Learn", "", "", always, kUnchecked, kNothing, "Learn the basics of Tonewright.\n Learn"},

    {ID_BTN_CLEAR_LOG, "Clear", "clear-log", "", always, kUnchecked, call<&F::OnClearLog>,
     "Clear logger window of old messages.\nClear Log"},
    {ID_CBTN_LOG, "Logger", "", "", always, flag<&S::logVisible>, call<&PaneLayout::Toggle>, ""},
    {ID_CBTN_RAW_COLOR_LIST, "Raw colors list", "", "", always, flag<&S::rawColorsVisible>, call<&PaneLayout::Toggle>,
     ""},
    {ID_CBTN_SPECTRUM_VALUES, "Spectrum Values", "", "", always, flag<&S::spectrumVisible>, call<&PaneLayout::Toggle>,
     ""},
    {ID_CBTN_REF_IMG_VIEW, "Reference image viewer", "", "", always, flag<&S::refPaneVisible>,
     call<&PaneLayout::Toggle>, ""},
    {ID_CBTN_CALIB_IMG_VIEW, "Calibrated image viewer", "", "", always, flag<&S::calibPaneVisible>,
     call<&PaneLayout::Toggle>, ""},

    {ID_COLOR_ADD_BY_HAND, "Add color", "", "Return", always, kUnchecked, call<&Calibration::OnAddColor>,
     "Adds a raw color to the raw color list associated with the current image viewer"},
    {ID_COLOR_REMOVE_LAST, "Remove last color", "", "Backspace", always, kUnchecked,
     call<&Calibration::OnRemoveLastColor>, "Removes the last color that was previously added"},
    {ID_COLOR_LIST_REMOVE, "Remove", "", "Del", canEditColors, kUnchecked, call<&Calibration::OnRemoveColor>, ""},
    {ID_COLOR_LIST_CLEAR, "Clear colors", "", "Ctrl+Del", canEditColors, kUnchecked, call<&Calibration::OnClearColors>,
     ""},
    // The key is bound and nothing handles it, deliberately (C12).
    {ID_KEY_CONTROL_S, "", "", "Ctrl+S", never, kUnchecked, kNothing, ""},

    {ID_BTN_FIND_CHART, "Find Chart", "find-chart", "", selectedChartHasImage, kUnchecked,
     call<&QualitySteps::OnFindChart>,
     "Find the chart in the selected picture wherever it lies, and fill the color list with it.\n Find Chart"},
    {ID_BTN_QUALITY_PANE, "Calibration Quality", "quality", "", always, flag<&S::qualityVisible>,
     call<&PaneLayout::Toggle>, "Show what the calibration delivers, patch by patch.\n Calibration Quality"},
    {ID_BTN_COMPARE, "Compare", "compare", "", canCompare, flag<&S::comparing>, call<&F::OnCompare>,
     "Look at the raw and the calibrated picture at the same place, with a divider between before and after.\n "
     "Compare"},
    {ID_BTN_SAVE_REPORT, "Save Report", "save-report", "", flag<&S::hasReport>, kUnchecked,
     call<&ReportSteps::OnSaveReport>, "Save the figures on show as a page or as a PDF document.\n Save Report"},
    {ID_BTN_VERIFY, "Verify", "verify", "", flag<&S::canVerify>, kUnchecked, call<&VerifySteps::OnVerify>,
     "Hold the present calibration against another picture of the chart.\n Verify"},
    {ID_BTN_UNDO, "Undo", "undo", "Ctrl+Z", flag<&S::canUndo>, kUnchecked, call<&UndoSteps::OnUndo>,
     "Take the last edit of colors, values, gamma or saturation back.\n Undo"},
    {ID_BTN_REDO, "Redo", "redo", "Ctrl+Shift+Z", flag<&S::canRedo>, kUnchecked, call<&UndoSteps::OnRedo>,
     "Do again what was taken back.\n Redo"},
    {ID_BTN_SEND_COEFFICIENTS, "Send Coefficients", "send-coefficients", "", isOtherCamera, kUnchecked,
     call<&Devices::OnSendCoefficients>,
     "Send the loaded or saved coefficients to the camera, or those of a new calibration where there are none.\n Send "
     "Coefficients"},
    {ID_BTN_READ_COEFFICIENTS, "Read Coefficients", "read-coefficients", "", isOtherCamera, kUnchecked,
     call<&Devices::OnReadCoefficients>, "Save the coefficients that the camera has now to disk.\n Read Coefficients"},
    {ID_BTN_RESET_LAYOUT, "Reset Layout", "reset-layout", "", always, kUnchecked, call<&PaneLayout::Reset>,
     "Put all panes back to where they first were.\n Reset Layout"},
    {ID_BTN_CHROME, "Appearance", "appearance", "", always, kUnchecked, kNothing,
     "Choose the colors of the window.\n Appearance"},
    {ID_BTN_CHROME_SYSTEM, "System", "", "", always, chromeIs<0>, dress, "Light or dark, as the desktop is.\n System"},
    {ID_BTN_CHROME_LIGHT, "Light", "", "", always, chromeIs<1>, dress, ""},
    {ID_BTN_CHROME_DARK, "Dark", "", "", always, chromeIs<2>, dress, ""},
    {ID_BTN_CHROME_NEUTRAL, "Neutral Gray", "", "", always, chromeIs<3>, dress,
     "Gray without any hue, for judging the colors of pictures.\n Neutral Gray"},
    {ID_SELECT_RAW_VIEWER, "Select Raw Viewer", "", "Ctrl+1", always, kUnchecked, call<&F::OnSelectViewer>, ""},
    {ID_SELECT_REF_VIEWER, "Select Reference Viewer", "", "Ctrl+2", always, kUnchecked, call<&F::OnSelectViewer>, ""},
    {ID_SELECT_CALIB_VIEWER, "Select Calibrated Viewer", "", "Ctrl+3", always, kUnchecked, call<&F::OnSelectViewer>,
     ""},

    {ID_APP_EXIT, "Exit", "exit", "", always, kUnchecked, call<&F::OnExit>, ""},
    {ID_APP_ABOUT, "About Tonewright Tool", "about", "", always, kUnchecked, call<&F::OnAbout>, ""},
    {ID_HELP, "Help", "help", "F1", always, kUnchecked, call<&F::OnHelp>, ""},
    {ID_CONTEXT_HELP, "Context Help", "", "", always, kUnchecked, call<&F::OnContextHelp>, ""},
};

// Behind the fixed rows, one for each illuminant.
template <std::size_t... Row>
constexpr auto withIlluminants(std::index_sequence<Row...>) {
    std::array<CommandRow, std::size(kFixedCommands) + sizeof...(Row)> all{};
    const CommandRow illuminants[] = {{IlluminantCommand(kCalibrationIlluminants[Row]),
                                       kCalibrationIlluminants[Row].label, "", "", isAbsolute, illuminantIs<Row>,
                                       call<&Parameters::OnIlluminant>, ""}...};
    std::ranges::copy(illuminants, std::ranges::copy(kFixedCommands, all.begin()).out);
    return all;
}
constexpr auto kCommands = withIlluminants(std::make_index_sequence<kCalibrationIlluminants.size()>());

}  // namespace

std::span<const CommandRow> CommandTable() { return kCommands; }

const CommandRow* FindCommand(int id) {
    for (const CommandRow& row : kCommands) {
        if (row.id == id) return &row;
    }
    return nullptr;
}

CommandTip SplitTip(const char* tip) {
    const QString text = tip;
    return {text.section('\n', 1).trimmed(), text.section('\n', 0, 0)};
}
