#include "app/toolkit/Theme.h"

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QPalette>
#include <QStyleFactory>
#include <array>

namespace theme {

namespace {

constexpr double kFontPoints = 9;
constexpr int kDarkBelow = 128;  // lightness of the desktop's windows

// In the order of Colors.
constexpr Colors kLight{
    .window = {0xF3, 0xF5, 0xF8},
    .surface = {0xFF, 0xFF, 0xFF},
    .raised = {0xE9, 0xED, 0xF3},
    .header = {0xF7, 0xF9, 0xFB},
    .border = {0xD3, 0xD9, 0xE2},
    .line = {0xE3, 0xE8, 0xEF},
    .control = {0xC3, 0xCB, 0xD6},
    .strong = {0x8A, 0x97, 0xA8},
    .text = {0x1F, 0x2A, 0x37},
    .label = {0x3A, 0x46, 0x56},
    .muted = {0x5B, 0x67, 0x78},
    .disabled = {0xA3, 0xAC, 0xB9},
    .dimmed = {0x66, 0x66, 0x66},
    .accent = {0x1F, 0x63, 0xB0},
    .accentDeep = {0x17, 0x4F, 0x8F},
    .accentSoft = {0x6E, 0x9F, 0xD6},
    .lit = {0x1F, 0x63, 0xB0},
    .chosen = {0x1F, 0x63, 0xB0},
    .hover = {0xE6, 0xEF, 0xFA},
    .pressed = {0xC9, 0xDE, 0xF5},
    .selection = {0xD7, 0xE7, 0xF8},
    .keyTip = {0x2B, 0x36, 0x44},
    .keyTipText = {0xFF, 0xFF, 0xFF},
};

constexpr Colors kDark{
    .window = {0x1E, 0x23, 0x29},
    .surface = {0x26, 0x2C, 0x33},
    .raised = {0x2E, 0x35, 0x3E},
    .header = {0x2A, 0x30, 0x38},
    .border = {0x3D, 0x46, 0x50},
    .line = {0x35, 0x3D, 0x47},
    .control = {0x4C, 0x57, 0x63},
    .strong = {0x7E, 0x8B, 0x9A},
    .text = {0xE4, 0xE9, 0xEF},
    .label = {0xC6, 0xCF, 0xD9},
    .muted = {0x9F, 0xAB, 0xB8},
    .disabled = {0x69, 0x74, 0x81},
    .dimmed = {0x8E, 0x95, 0x9D},
    .accent = {0x2B, 0x6C, 0xB8},
    .accentDeep = {0x3A, 0x7D, 0xCB},
    .accentSoft = {0x4B, 0x82, 0xBE},
    .lit = {0x7D, 0xB3, 0xF0},
    .chosen = {0x7D, 0xB3, 0xF0},
    .hover = {0x33, 0x3E, 0x4B},
    .pressed = {0x41, 0x56, 0x6E},
    .selection = {0x34, 0x50, 0x6E},
    .keyTip = {0xE4, 0xE9, 0xEF},
    .keyTipText = {0x1E, 0x23, 0x29},
};

constexpr Colors kNeutralGray{
    .window = {0x80, 0x80, 0x80},
    .surface = {0x8E, 0x8E, 0x8E},
    .raised = {0x7A, 0x7A, 0x7A},
    .header = {0x84, 0x84, 0x84},
    .border = {0x62, 0x62, 0x62},
    .line = {0x7A, 0x7A, 0x7A},
    .control = {0x5A, 0x5A, 0x5A},
    .strong = {0x3A, 0x3A, 0x3A},
    .text = {0x08, 0x08, 0x08},
    .label = {0x0E, 0x0E, 0x0E},
    .muted = {0x16, 0x16, 0x16},
    .disabled = {0x5C, 0x5C, 0x5C},
    .dimmed = {0x38, 0x38, 0x38},
    .accent = {0x33, 0x33, 0x33},
    .accentDeep = {0x22, 0x22, 0x22},
    .accentSoft = {0x4A, 0x4A, 0x4A},
    .lit = {0x00, 0x00, 0x00},
    .chosen = {0xFF, 0xFF, 0xFF},
    .hover = {0x9C, 0x9C, 0x9C},
    .pressed = {0xAA, 0xAA, 0xAA},
    .selection = {0xB0, 0xB0, 0xB0},
    .keyTip = {0x1A, 0x1A, 0x1A},
    .keyTipText = {0xFF, 0xFF, 0xFF},
};

/// The words of the style sheet; a word that begins another one stands behind it.
struct Word {
    const char* word;
    QColor Colors::*color;
};
constexpr Word kWords[] = {
    {"@window", &Colors::window},
    {"@surface", &Colors::surface},
    {"@raised", &Colors::raised},
    {"@header", &Colors::header},
    {"@border", &Colors::border},
    {"@line", &Colors::line},
    {"@control", &Colors::control},
    {"@strong", &Colors::strong},
    {"@text", &Colors::text},
    {"@label", &Colors::label},
    {"@muted", &Colors::muted},
    {"@disabled", &Colors::disabled},
    {"@accentDeep", &Colors::accentDeep},
    {"@accentSoft", &Colors::accentSoft},
    {"@accent", &Colors::accent},
    {"@lit", &Colors::lit},
    {"@hover", &Colors::hover},
    {"@pressed", &Colors::pressed},
    {"@selection", &Colors::selection},
    {"@keyTip", &Colors::keyTip},
    {"@tipText", &Colors::keyTipText},
};

constexpr const char* kStyleSheet = R"(
QMainWindow::separator { background: @line; width: 5px; height: 5px; }
QMainWindow::separator:hover { background: @pressed; }

QDockWidget { font-weight: 600; color: @text; titlebar-close-icon: url(:/icons/close@variant.svg);
              titlebar-normal-icon: url(:/icons/float@variant.svg); }
QDockWidget::title { background: @raised; border: 1px solid @border; padding: 4px 8px; text-align: left; }
QDockWidget::close-button, QDockWidget::float-button { border: none; border-radius: 3px; padding: 1px; }
QDockWidget::close-button:hover, QDockWidget::float-button:hover { background: @pressed; }

QTabBar { font-weight: 400; }
QMainWindow > QTabBar::tab { background: @raised; border: 1px solid @border; padding: 4px 12px; color: @muted; }
QMainWindow > QTabBar::tab:selected { background: @surface; color: @text; }
QMainWindow > QTabBar::tab:hover:!selected { background: @hover; }

QHeaderView { background: @header; }
QHeaderView::section { background: @header; border: none; border-right: 1px solid @line;
                       border-bottom: 1px solid @border; padding: 3px 6px; color: @muted; font-weight: 400; }
QTableView, QTreeView, QListView { background: @surface; border: 1px solid @border; gridline-color: @line;
             selection-background-color: @selection; selection-color: @text; font-weight: 400; }
QDockWidget QTableWidget { font-weight: 400; }

QStatusBar { background: @surface; border-top: 1px solid @border; }
QStatusBar::item { border: none; }
QStatusBar QLabel { color: @label; padding: 3px 8px; }
QStatusBar QLabel[divided="true"] { border-left: 1px solid @line; }

QMenu { background: @surface; border: 1px solid @control; padding: 4px; }
QMenu::item { padding: 5px 28px 5px 30px; border-radius: 3px; color: @text; }
QMenu::item:selected { background: @hover; }
QMenu::item:disabled { color: @disabled; background: transparent; }
QMenu#pictures::item { padding-left: 8px; }
QMenu::icon { padding-left: 6px; }
QMenu::indicator { width: 14px; height: 14px; left: 8px; }
QMenu::indicator:checked { image: url(:/icons/check@variant.svg); }
QMenu::separator { height: 1px; background: @line; margin: 4px 6px; }

QToolButton#ribbonFile { background: @accent; color: white; border: none; padding: 6px 18px; font-weight: 600; }
QToolButton#ribbonFile:hover, QToolButton#ribbonFile:pressed { background: @accentDeep; }
QToolButton#ribbonFile:focus { background: @accentDeep; }
QToolButton#ribbonFile::menu-indicator { image: none; }
QTabBar#ribbonTabs::tab { background: transparent; border: none; border-bottom: 2px solid transparent;
                          padding: 5px 18px 4px 18px; color: @label; }
QTabBar#ribbonTabs::tab:hover { color: @lit; }
QTabBar#ribbonTabs::tab:selected { background: @surface; color: @lit; border-bottom: 2px solid @lit; }
QTabBar#ribbonTabs::tab:focus { color: @lit; }
QToolButton#ribbonHelp { border: none; border-radius: 3px; padding: 3px; padding-right: 16px; }
QToolButton#ribbonHelp:hover, QToolButton#ribbonHelp:focus { background: @hover; }
QToolButton#ribbonHelp::menu-button { border: none; width: 14px; }
QToolButton#ribbonHelp::menu-arrow { image: url(:/icons/down@variant.svg); width: 9px; height: 9px; }
QMenu#ribbonFileMenu::item { padding: 6px 24px 6px 12px; }
QListWidget#recentList { border: none; border-top: 1px solid @line; }
QLabel#recentTitle { color: @muted; font-weight: 600; }
QLabel#keyTip { background: @keyTip; color: @tipText; border-radius: 3px; padding: 1px 4px; font-size: 8pt;
                font-weight: 600; }

QPushButton { background: @surface; border: 1px solid @control; border-radius: 3px; padding: 4px 12px;
              min-height: 16px; font-weight: 400; }
QDockWidget QPushButton { padding: 4px 6px; }
QPushButton:hover { background: @hover; border-color: @accentSoft; }
QPushButton:pressed { background: @pressed; }
QPushButton:default { border-color: @lit; }
QPushButton:focus { border-color: @lit; }
QPushButton:disabled { color: @disabled; background: @window; border-color: @line; }

QLineEdit, QSpinBox { background: @surface; border: 1px solid @control; border-radius: 3px; padding: 1px 4px;
            selection-background-color: @accent; selection-color: white; }
QSpinBox { padding-right: 18px; }
QSpinBox::up-button, QSpinBox::down-button { border: none; width: 18px; }
QSpinBox::up-button:hover, QSpinBox::down-button:hover { background: @hover; }
QSpinBox::up-arrow { image: url(:/icons/up@variant.svg); width: 9px; height: 9px; }
QSpinBox::down-arrow { image: url(:/icons/down@variant.svg); width: 9px; height: 9px; }
QLineEdit:focus, QSpinBox:focus { border-color: @lit; }
QLineEdit:disabled { background: @window; color: @disabled; border-color: @line; }

QSlider::groove:horizontal { height: 4px; border-radius: 2px; background: @border; }
QSlider::sub-page:horizontal { height: 4px; border-radius: 2px; background: @accentSoft; }
QSlider::handle:horizontal { width: 10px; height: 16px; margin: -6px 0; border-radius: 3px;
                             background: @surface; border: 1px solid @strong; }
QSlider::handle:horizontal:hover, QSlider::handle:horizontal:focus { border-color: @lit; background: @hover; }
QSlider::sub-page:horizontal:disabled { background: @border; }
QSlider::handle:horizontal:disabled { background: @window; border-color: @control; }

QCheckBox { spacing: 6px; padding: 1px 4px; }
QCheckBox::indicator { width: 14px; height: 14px; border: 1px solid @strong; border-radius: 3px; background: @surface; }
QCheckBox::indicator:hover { border-color: @lit; background: @hover; }
QCheckBox::indicator:checked { border-color: @accent; background: @accent; image: url(:/icons/check-white.svg); }
QCheckBox:focus { color: @lit; }

QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }
QMessageBox { messagebox-critical-icon: url(:/icons/log-error.svg); messagebox-warning-icon: url(:/icons/log-warning.svg);
              messagebox-information-icon: url(:/icons/log-information.svg);
              messagebox-question-icon: url(:/icons/help.svg); }

QToolTip { background: @surface; color: @text; border: 1px solid @control; padding: 4px; }

QScrollBar:vertical { background: @window; width: 12px; margin: 0; }
QScrollBar:horizontal { background: @window; height: 12px; margin: 0; }
QScrollBar::handle { background: @control; border-radius: 4px; margin: 2px; }
QScrollBar::handle:vertical { min-height: 24px; }
QScrollBar::handle:horizontal { min-width: 24px; }
QScrollBar::handle:hover { background: @strong; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: none; }

QWidget#ribbonSeparator { background: @border; }
)";

Chrome chosen = Chrome::Light;
const Colors* inForce = &kLight;

QString styleSheet(const Colors& colors) {
    QString sheet = kStyleSheet;
    for (const Word& word : kWords) sheet.replace(word.word, (colors.*word.color).name());
    return sheet.replace("@variant", &colors == &kDark ? "-light" : &colors == &kNeutralGray ? "-gray" : "");
}

QPalette paletteOf(const Colors& colors) {
    QPalette palette(colors.window);
    palette.setColor(QPalette::Window, colors.window);
    palette.setColor(QPalette::WindowText, colors.text);
    palette.setColor(QPalette::Base, colors.surface);
    palette.setColor(QPalette::AlternateBase, colors.window);
    palette.setColor(QPalette::Text, colors.text);
    palette.setColor(QPalette::Button, colors.window);
    palette.setColor(QPalette::ButtonText, colors.text);
    palette.setColor(QPalette::BrightText, colors.surface);
    palette.setColor(QPalette::ToolTipBase, colors.surface);
    palette.setColor(QPalette::ToolTipText, colors.text);
    palette.setColor(QPalette::PlaceholderText, colors.muted);
    palette.setColor(QPalette::Highlight, colors.accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, colors.lit);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, colors.disabled);
    }
    return palette;
}

/// Asks the desktop, whose colors show once ours are taken off.
bool isDesktopDark(QApplication& application) {
    application.setPalette({});
    return application.palette().color(QPalette::Window).lightness() < kDarkBelow;
}

/// Dresses the program anew when the desktop's colors change.
class DesktopWatch : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::ThemeChange && chosen == Chrome::System && !m_isWaiting) {
            m_isWaiting = true;
            QMetaObject::invokeMethod(
                this,
                [this] {
                    Apply(*qApp, chosen);
                    m_isWaiting = false;
                },
                Qt::QueuedConnection);
        }
        return false;
    }

private:
    bool m_isWaiting = false;
};

}  // namespace

const Colors& Now() { return *inForce; }
Chrome GetChrome() { return chosen; }
bool IsDark() { return inForce == &kDark; }

void Apply(QApplication& application, Chrome chrome) {
    static bool isFirst = true;
    chosen = chrome;
    if (isFirst) {
        application.setStyle(QStyleFactory::create("Fusion"));
        QFont font = application.font();
        font.setPointSizeF(kFontPoints);
        application.setFont(font);
        application.installEventFilter(new DesktopWatch(&application));
        isFirst = false;
    }
    const bool isDark = chrome == Chrome::Dark || (chrome == Chrome::System && isDesktopDark(application));
    inForce = isDark ? &kDark : chrome == Chrome::NeutralGray ? &kNeutralGray : &kLight;
    application.setPalette(paletteOf(*inForce));
    application.setStyleSheet(styleSheet(*inForce));
}

}  // namespace theme
