#pragma once

/// Dresses the program as the user last chose.
void RestoreAppearance();
/// Dresses it otherwise, and remembers that. @param chrome a theme::Chrome
void ChooseAppearance(int chrome);
