#pragma once

#include <QApplication>
#include <memory>

class CMainFrame;

/// The one application object: brings the program up and down, and sees to it that no exception ends it.
class CTonewrightApp : public QApplication {
    Q_OBJECT
public:
    CTonewrightApp(int& argc, char** argv);
    ~CTonewrightApp() override;

    /// @return false where the program can't start
    bool InitInstance();
    /// Takes everything down in the reverse order. @return the code
    int ExitInstance(int code);

    /// What a handler throws is logged as an error, and the program goes on.
    bool notify(QObject* receiver, QEvent* event) override;

    /// Makes the main window, or takes it down. @return false where it can't be made
    bool CreateMainFrame();
    void DestroyMainFrame();
    CMainFrame* GetMainFrame() { return m_mainFrame.get(); }

private:
    std::unique_ptr<CMainFrame> m_mainFrame;
};
