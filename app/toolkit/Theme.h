#pragma once

#include <QColor>
#include <QIcon>

class QApplication;

/// The program's look: one style sheet in several sets of colors, the same on every desktop, and the colors for what is
/// painted by hand. Main thread only.
namespace theme {

enum class Chrome : int {
    System = 0,  ///< light or dark, as the desktop's own colors are
    Light,
    Dark,
    NeutralGray  ///< no hue but in warning signs, of medium lightness: for judging the colors of pictures
};
inline constexpr int kChromes = 4;

/// One set of colors. Every text color can be read on window, surface and raised.
struct Colors {
    QColor window;   ///< behind everything
    QColor surface;  ///< of ribbon, lists and edits
    QColor raised;   ///< of titles and of tabs that are behind
    QColor header;   ///< of the columns of a list
    QColor border;   ///< between parts
    QColor line;     ///< within a part
    QColor control;  ///< around a button or an edit
    QColor strong;   ///< around a check box or a handle
    QColor text;
    QColor label;
    QColor muted;  ///< captions
    QColor disabled;
    QColor dimmed;  ///< the rows of a list that can't be edited now
    QColor accent;  ///< what white text stands on
    QColor accentDeep;
    QColor accentSoft;
    QColor lit;     ///< focus and the chosen tab, as a text or a line
    QColor chosen;  ///< around the selected viewer
    QColor hover;
    QColor pressed;
    QColor selection;  ///< a selected row, a checked button
    QColor keyTip;
    QColor keyTipText;
};

/// The colors in force.
const Colors& Now();

/// Dresses the program, and again whenever the choice changes. Pictures from Icon and what asks Now() while it paints
/// follow by themselves.
void Apply(QApplication& application, Chrome chrome);
Chrome GetChrome();  ///< as it was chosen, System included
bool IsDark();       ///< whether the set in force is the dark one

/// A picture of the program in the colors in force.
/// @param path of an SVG in the program's resources
QIcon Icon(const QString& path);

}  // namespace theme
