// What the window remembers from one run to the next: its place, its panes and its colors.

#include <QApplication>
#include <QDockWidget>
#include <QMargins>
#include <QScreen>

#include "app/CMainFrame.h"
#include "app/CommandIds.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Theme.h"
#include "app/toolkit/WindowPlace.h"

namespace {

constexpr const char* kSection = "Window";
constexpr const char* kPlace = "Place";
constexpr const char* kPanes = "Panes";
constexpr const char* kChrome = "Chrome";
constexpr int kPanesVersion = 1;  // an arrangement of another version is not read

constexpr QMargins kFrame{8, 36, 8, 8};  // room for the frame that the desktop draws around the window

QList<QRect> screensOfToday() {
    QList<QRect> screens;
    for (const QScreen* screen : QGuiApplication::screens()) screens += screen->availableGeometry() - kFrame;
    return screens;
}

}  // namespace

void CMainFrame::SaveLayout() const {
    GetProfile().WriteString(kSection, kPlace, ToText({isMaximized() ? normalGeometry() : geometry(), isMaximized()}));
    GetProfile().WriteString(kSection, kPanes, QString::fromLatin1(saveState(kPanesVersion).toBase64()));
}

bool CMainFrame::RestoreLayout() {
    const auto place = WindowPlaceFrom(GetProfile().ReadString(kSection, kPlace, {}));
    if (!place) return false;
    setGeometry(FitToScreens(place->normal, screensOfToday()));
    if (place->isMaximised) setWindowState(windowState() | Qt::WindowMaximized);
    const QString panes = GetProfile().ReadString(kSection, kPanes, {});
    restoreState(QByteArray::fromBase64(panes.toLatin1()), kPanesVersion);
    return true;
}

void CMainFrame::OnResetLayout() {
    for (QDockWidget* pane : findChildren<QDockWidget*>()) pane->setFloating(false);
    DockPanes();
}

void CMainFrame::OnChrome(int id) {
    const int chrome = id - ID_BTN_CHROME_SYSTEM;
    GetProfile().WriteInt(kSection, kChrome, chrome);
    theme::Apply(*qApp, static_cast<theme::Chrome>(chrome));
}

void CMainFrame::RestoreChrome() {
    const int chrome = GetProfile().ReadInt(kSection, kChrome, 0);
    theme::Apply(*qApp,
                 chrome >= 0 && chrome < theme::kChromes ? static_cast<theme::Chrome>(chrome) : theme::Chrome::System);
}
