#pragma once

#include <QString>
#include <span>

#include "app/CommandIds.h"
#include "app/StudioState.h"

class CMainFrame;

/// One command: what it is called, which key runs it, when it may run, when it shows as checked, what it does.
struct CommandRow {
    using Rule = bool (*)(const StudioState&);

    int id;
    const char* label;
    const char* picture;  ///< name of an icon, "" for none
    const char* key;      ///< the key that runs it, in Qt's portable words; "" for none
    Rule enabled;
    Rule checked;                            ///< null: it has no checked state
    void (*run)(CMainFrame& frame, int id);  ///< null: it does nothing
    const char* tip;                         ///< description, line feed, title; "" for none
};

/// All commands. Ribbon, menus and keys show these rows, and there are no others.
std::span<const CommandRow> CommandTable();
/// @return null for an unknown number
const CommandRow* FindCommand(int id);

/// The two halves of a tip.
struct CommandTip {
    QString title;
    QString description;
};
CommandTip SplitTip(const char* tip);
