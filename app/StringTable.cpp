#include "app/StringTable.h"

#include "app/CommandTable.h"

namespace {

struct Row {
    int id;
    const char* text;
};

constexpr Row kStrings[] = {
    {100, "OLE initialization failed.  Make sure that the OLE libraries are the correct version."},
    {101, "Logger output window"},
    {102, "Spectrum values list window"},
    {103, "Raw color list window"},
    {104, "Raw image"},
    {105, "Reference image"},
    {106, "Calibration image"},
    {107, "ROI"},
    {108, "Raw image window"},
    {109, "Reference image window"},
    {110, "Calibrated image window"},
    {111, "Last execution time (ms)"},
    {112, "Pixel Data"},
    {128, "Zelvan Tonewright\n\nTonewright\n\n\nTonewright.Document\nTonewright.Document"},
    {316, "Zoom factor"},
    {317, "Buffer information"},
    // Words for commands that do not exist: the rendering size has no control, and the log is toggled by 32948.
    {32839, "High quality rendering.\n 3x10"},
    {32840, "Medium quality and speed rendering.\n 3x7"},
    {32841, "High speed rendering.\n 3x4"},
    {32947, "Toggle logger window on or off.\nShow/Hide Log"},
    {57344, "Tonewright"},
};

}  // namespace

const char* LoadStudioString(int id) {
    for (const Row& row : kStrings) {
        if (row.id == id) return row.text;
    }
    const CommandRow* command = FindCommand(id);
    return command ? command->tip : "";
}
