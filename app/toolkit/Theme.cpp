#include "app/toolkit/Theme.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QStyleFactory>

namespace theme {

namespace {

constexpr double kFontPoints = 9;

constexpr const char* kStyleSheet = R"(
QMainWindow::separator { background: #E3E8EF; width: 5px; height: 5px; }
QMainWindow::separator:hover { background: #C9DEF5; }

QDockWidget { font-weight: 600; color: #1F2A37; titlebar-close-icon: url(:/icons/close.svg);
              titlebar-normal-icon: url(:/icons/float.svg); }
QDockWidget::title { background: #E9EDF3; border: 1px solid #D3D9E2; padding: 4px 8px; text-align: left; }
QDockWidget::close-button, QDockWidget::float-button { border: none; border-radius: 3px; padding: 1px; }
QDockWidget::close-button:hover, QDockWidget::float-button:hover { background: #C9DEF5; }

QTabBar { font-weight: 400; }
QMainWindow > QTabBar::tab { background: #E9EDF3; border: 1px solid #D3D9E2; padding: 4px 12px; color: #5B6778; }
QMainWindow > QTabBar::tab:selected { background: #FFFFFF; color: #1F2A37; }
QMainWindow > QTabBar::tab:hover:!selected { background: #E6EFFA; }

QHeaderView { background: #F7F9FB; }
QHeaderView::section { background: #F7F9FB; border: none; border-right: 1px solid #E3E8EF;
                       border-bottom: 1px solid #D3D9E2; padding: 3px 6px; color: #5B6778; font-weight: 400; }
QTableView, QTreeView, QListView { background: #FFFFFF; border: 1px solid #D3D9E2; gridline-color: #EDF0F4;
             selection-background-color: #D7E7F8; selection-color: #1F2A37; font-weight: 400; }
QDockWidget QTableWidget { font-weight: 400; }

QStatusBar { background: #FFFFFF; border-top: 1px solid #D3D9E2; }
QStatusBar::item { border: none; }
QStatusBar QLabel { color: #3A4656; padding: 3px 8px; }
QStatusBar QLabel[divided="true"] { border-left: 1px solid #E3E8EF; }

QMenu { background: #FFFFFF; border: 1px solid #C3CBD6; padding: 4px; }
QMenu::item { padding: 5px 28px 5px 30px; border-radius: 3px; color: #1F2A37; }
QMenu::item:selected { background: #E6EFFA; }
QMenu::item:disabled { color: #A3ACB9; background: transparent; }
QMenu::icon { padding-left: 6px; }
QMenu::indicator { width: 14px; height: 14px; left: 8px; }
QMenu::indicator:checked { image: url(:/icons/check.svg); }
QMenu::separator { height: 1px; background: #E3E8EF; margin: 4px 6px; }

QToolButton#ribbonFile { background: #1F63B0; color: #FFFFFF; border: none; padding: 6px 18px; font-weight: 600; }
QToolButton#ribbonFile:hover, QToolButton#ribbonFile:pressed { background: #174F8F; }
QToolButton#ribbonFile:focus { background: #174F8F; }
QToolButton#ribbonFile::menu-indicator { image: none; }
QTabBar#ribbonTabs::tab { background: transparent; border: none; border-bottom: 2px solid transparent;
                          padding: 5px 18px 4px 18px; color: #3A4656; }
QTabBar#ribbonTabs::tab:hover { color: #1F63B0; }
QTabBar#ribbonTabs::tab:selected { background: #FFFFFF; color: #1F63B0; border-bottom: 2px solid #1F63B0; }
QTabBar#ribbonTabs::tab:focus { color: #174F8F; }
QToolButton#ribbonHelp { border: none; border-radius: 3px; padding: 3px; padding-right: 16px; }
QToolButton#ribbonHelp:hover, QToolButton#ribbonHelp:focus { background: #E6EFFA; }
QToolButton#ribbonHelp::menu-button { border: none; width: 14px; }
QToolButton#ribbonHelp::menu-arrow { image: url(:/icons/down.svg); width: 9px; height: 9px; }
QMenu#ribbonFileMenu::item { padding: 6px 24px 6px 12px; }
QListWidget#recentList { border: none; border-top: 1px solid #E3E8EF; }
QLabel#recentTitle { color: #5B6778; font-weight: 600; }
QLabel#keyTip { background: #2B3644; color: #FFFFFF; border-radius: 3px; padding: 1px 5px; font-weight: 600; }

QPushButton { background: #FFFFFF; border: 1px solid #C3CBD6; border-radius: 3px; padding: 4px 12px;
              min-height: 16px; font-weight: 400; }
QDockWidget QPushButton { padding: 4px 6px; }
QPushButton:hover { background: #E6EFFA; border-color: #8FB4DE; }
QPushButton:pressed { background: #C9DEF5; }
QPushButton:default { border-color: #1F63B0; }
QPushButton:focus { border-color: #1F63B0; }
QPushButton:disabled { color: #A3ACB9; background: #F3F5F8; border-color: #DDE2EA; }

QLineEdit, QSpinBox { background: #FFFFFF; border: 1px solid #C3CBD6; border-radius: 3px; padding: 1px 4px;
            selection-background-color: #1F63B0; selection-color: #FFFFFF; }
QLineEdit:focus, QSpinBox:focus { border-color: #1F63B0; }
QLineEdit:disabled { background: #F3F5F8; color: #A3ACB9; border-color: #DDE2EA; }

QSlider::groove:horizontal { height: 4px; border-radius: 2px; background: #D3D9E2; }
QSlider::sub-page:horizontal { height: 4px; border-radius: 2px; background: #6E9FD6; }
QSlider::handle:horizontal { width: 10px; height: 16px; margin: -6px 0; border-radius: 3px;
                             background: #FFFFFF; border: 1px solid #8A97A8; }
QSlider::handle:horizontal:hover, QSlider::handle:horizontal:focus { border-color: #1F63B0; background: #E6EFFA; }
QSlider::sub-page:horizontal:disabled { background: #D3D9E2; }
QSlider::handle:horizontal:disabled { background: #F3F5F8; border-color: #CBD2DC; }

QCheckBox { spacing: 6px; padding: 1px 4px; }
QCheckBox::indicator { width: 14px; height: 14px; border: 1px solid #8A97A8; border-radius: 3px; background: #FFFFFF; }
QCheckBox::indicator:hover { border-color: #1F63B0; background: #E6EFFA; }
QCheckBox::indicator:checked { border-color: #1F63B0; background: #1F63B0; image: url(:/icons/check-white.svg); }
QCheckBox:focus { color: #1F63B0; }

QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }

QToolTip { background: #FFFFFF; color: #1F2A37; border: 1px solid #C3CBD6; padding: 4px; }

QScrollBar:vertical { background: #F3F5F8; width: 12px; margin: 0; }
QScrollBar:horizontal { background: #F3F5F8; height: 12px; margin: 0; }
QScrollBar::handle { background: #C3CBD6; border-radius: 4px; margin: 2px; }
QScrollBar::handle:vertical { min-height: 24px; }
QScrollBar::handle:horizontal { min-width: 24px; }
QScrollBar::handle:hover { background: #9AA7B8; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: none; }
)";

QPalette lightPalette() {
    QPalette palette;
    palette.setColor(QPalette::Window, kWindow);
    palette.setColor(QPalette::WindowText, kText);
    palette.setColor(QPalette::Base, kSurface);
    palette.setColor(QPalette::AlternateBase, kWindow);
    palette.setColor(QPalette::Text, kText);
    palette.setColor(QPalette::Button, kWindow);
    palette.setColor(QPalette::ButtonText, kText);
    palette.setColor(QPalette::BrightText, kSurface);
    palette.setColor(QPalette::ToolTipBase, kSurface);
    palette.setColor(QPalette::ToolTipText, kText);
    palette.setColor(QPalette::PlaceholderText, kMutedText);
    palette.setColor(QPalette::Highlight, kAccent);
    palette.setColor(QPalette::HighlightedText, kSurface);
    palette.setColor(QPalette::Link, kAccent);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, kDisabledText);
    }
    return palette;
}

}  // namespace

void Apply(QApplication& application) {
    application.setStyle(QStyleFactory::create("Fusion"));
    application.setPalette(lightPalette());
    QFont font = application.font();
    font.setPointSizeF(kFontPoints);
    application.setFont(font);
    application.setStyleSheet(kStyleSheet);
}

}  // namespace theme
