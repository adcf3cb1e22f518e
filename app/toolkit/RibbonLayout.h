#pragma once

#include <span>

#include "app/toolkit/RibbonForms.h"

/// What a ribbon shows, as data. Commands are named by number; texts, pictures, tips and states of buttons come from
/// the action of that number, so that the ribbon knows no command. All texts outlive the ribbon.
namespace ribbon {

enum class Kind {
    Large,      ///< a button of the panel's height: picture above the text
    Small,      ///< a button of one row; three rows fill a column
    CheckBox,   ///< one row
    Field,      ///< one row: label, edit, and a slider behind it if there is one
    Slider,     ///< one row of its own, under the field that it belongs to
    Separator,  ///< a vertical line
    NewColumn   ///< what follows begins a new column
};

/// How a button that has a menu shares the work with it.
enum class Menu {
    None,
    Whole,  ///< a press anywhere opens the menu
    Split   ///< the arrow opens the menu, the rest runs the command
};

struct Range {
    int minimum = 0;
    int maximum = 0;
};

struct Item {
    Kind kind;
    int id = 0;
    const char* keyTip = "";  ///< letters that reach it after Alt
    Menu menu = Menu::None;
    std::span<const int> menuIds = {};  ///< 0 is a separator
    int editWidth = 0;                  ///< pixels
    int sliderId = 0;                   ///< the command of a field's slider; 0 for none
    int sliderWidth = 0;                ///< pixels
    Range range = {};                   ///< of the slider
};

struct Panel {
    const char* caption;
    const char* picture;  ///< resource path, for the button that the panel shrinks to
    const char* keyTip;   ///< of that button
    std::span<const Item> items;
};

struct Tab {
    const char* title;
    const char* keyTip;
    std::span<const Panel> panels;
    std::span<const RibbonShrinkStep> shrinkSteps;  ///< where room is short, in this order
};

struct FileEntry {
    int id;
    const char* text;      ///< its own words, with "&" before the mnemonic
    const char* keyLabel;  ///< shown beside the text; binds nothing
};

struct Layout {
    const char* fileTitle;
    const char* fileKeyTip;
    std::span<const FileEntry> fileEntries;
    const char* recentTitle;
    int recentWidth;  ///< pixels
    std::span<const Tab> tabs;
    int helpId;
    const char* helpKeyTip;  ///< reaches the menu below
    std::span<const int> helpMenuIds;
};

}  // namespace ribbon
