#include <gtest/gtest.h>

#include <QSettings>
#include <QTemporaryDir>

#include "app/CTonewrightApp.h"
#include "tests/app/view_support.h"

namespace {

/// Puts these prompts in force before each test; one that sets its own leaves nothing to the next.
class CancelByDefault : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { SetPrompts(&prompts_); }
    CancellingPrompts prompts_;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir settings;  // the profile of whoever runs the tests stays as it is
    for (const auto scope : {QSettings::UserScope, QSettings::SystemScope}) {
        for (const auto format : {QSettings::NativeFormat, QSettings::IniFormat}) {
            QSettings::setPath(format, scope, settings.path());
        }
    }
    CTonewrightApp application(argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new CancelByDefault);
    return RUN_ALL_TESTS();
}
