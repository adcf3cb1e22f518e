#include "app/CTonewrightApp.h"

#include <QFileInfo>
#include <QScreen>
#include <clocale>
#include <cstdio>

#include "app/AcquisitionDialogs.h"
#include "app/CMainFrame.h"
#include "app/HelpFile.h"
#include "app/StringTable.h"
#include "app/appearance.h"
#include "app/toolkit/Prompts.h"
#include "app/workflow/FileSteps.h"
#include "app/workflow/Workflow.h"
#include "foundation/CTivManager.h"
#include "foundation/nur_report.h"

CTonewrightApp::CTonewrightApp(int& argc, char** argv) : QApplication(argc, argv) {
    // Numbers in files have a decimal point, whatever the user's language writes.
    std::setlocale(LC_NUMERIC, "C");
    setOrganizationName("Brennick Korva");
    setApplicationName(LoadStudioString(string_id::kApplicationName));
}

CTonewrightApp::~CTonewrightApp() = default;

// The toolkit's own parts (controls, drag and drop, keyboard, tool tips) are up when the application object is.
bool CTonewrightApp::InitInstance() {
    RestoreAppearance();
    SetHelpRoot(qEnvironmentVariable("ZELVANDIR"));
    CTivManager::Initialize();
    CTivManager::SetErrorMode(ErrorModeNone);  // all words of the library go to the log, none shows by itself
    nur_set_message_box([](const std::string& title, const std::string& text) {
        GetPrompts().ShowError(QString::fromStdString(title), QString::fromStdString(text));
    });
    InstallAcquisitionDialogs();
    if (!CreateMainFrame()) return false;
    if (!m_mainFrame->GetPanes().Restore()) {
        const QRect free = m_mainFrame->screen()->availableGeometry();
        m_mainFrame->move(free.center() - QRect(QPoint(0, 0), m_mainFrame->size()).center());
    }
    m_mainFrame->show();
    m_mainFrame->GetPanes().RestoreFloating();
    if (const QStringList words = arguments(); words.size() > 1) {
        // Once the window is up: a file that does not fit may ask.
        const auto open = [this, path = QFileInfo(words[1]).absoluteFilePath()] {
            m_mainFrame->GetWorkflow().Get<FileSteps>().OpenStartFile(path);
            m_mainFrame->UpdateCommands();
        };
        QMetaObject::invokeMethod(m_mainFrame.get(), open, Qt::QueuedConnection);
    }
    return true;
}

int CTonewrightApp::ExitInstance(int code) {
    DestroyMainFrame();
    nur_set_message_box({});
    CTivManager::Shutdown();
    return code;
}

bool CTonewrightApp::CreateMainFrame() {
    m_mainFrame = std::make_unique<CMainFrame>();
    return m_mainFrame->OnCreate();
}

void CTonewrightApp::DestroyMainFrame() { m_mainFrame.reset(); }

bool CTonewrightApp::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (...) {
        if (!m_mainFrame) {
            std::fputs("Tonewright: an exception came before there was a window to tell it.\n", stderr);
            return false;
        }
        m_mainFrame->LogException();
        return false;
    }
}
