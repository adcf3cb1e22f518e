#include "app/appearance.h"

#include <QApplication>

#include "app/toolkit/Profile.h"
#include "app/toolkit/Theme.h"

namespace {

constexpr const char* kSection = "Window";
constexpr const char* kChrome = "Chrome";

}  // namespace

void RestoreAppearance() {
    const int chrome = GetProfile().ReadInt(kSection, kChrome, 0);
    theme::Apply(*qApp,
                 chrome >= 0 && chrome < theme::kChromes ? static_cast<theme::Chrome>(chrome) : theme::Chrome::System);
}

void ChooseAppearance(int chrome) {
    GetProfile().WriteInt(kSection, kChrome, chrome);
    theme::Apply(*qApp, static_cast<theme::Chrome>(chrome));
}
