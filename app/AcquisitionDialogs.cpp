#include "app/AcquisitionDialogs.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QEventLoop>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

#include "acquisition/zvn/CAbortDlg.h"
#include "acquisition/zvn/CAcqConfigDlg.h"
#include "acquisition/zvn/ZvnBackend.h"
#include "acquisition/zvn/ZvnClock.h"
#include "acquisition/zvn/ZvnManager.h"
#include "app/toolkit/Prompts.h"

namespace {

constexpr int kNameBytes = 30;
constexpr int kPollMs = 5;
constexpr int kQuietMs = 250;  // a frame that comes this soon shows no dialog

struct Resource {
    ZvnLocation location;
    QString text;
};

std::vector<Resource> listResources() {
    std::vector<Resource> resources;
    const int servers = ZvnManager::GetServerCount();
    for (int server = 0; server < servers; ++server) {
        char name[kNameBytes] = "";
        if (!ZvnManager::GetServerName(server, name, kNameBytes)) continue;
        for (const auto& [type, kind] :
             {std::pair(kZvnAcquisition, "Frame grabber"), std::pair(kZvnAcqDevice, "Camera")}) {
            const int count = ZvnManager::GetResourceCount(server, type);
            for (int i = 0; i < count; ++i) {
                resources.push_back({ZvnLocation(name, i), QString("%1 %2: %3").arg(kind).arg(i + 1).arg(name)});
            }
        }
    }
    return resources;
}

class ConfigDialog : public QDialog {
public:
    ConfigDialog(QWidget* parent, const CAcqConfigDlg::Choice* inForce)
        : QDialog(parent), m_resources(listResources()), m_device(new QComboBox(this)), m_file(new QLineEdit(this)) {
        setWindowTitle("Acquisition Configuration");
        for (const Resource& resource : m_resources) m_device->addItem(resource.text);
        if (inForce) Preselect(*inForce);
        m_file->setPlaceholderText("None: the device stays as it is");
        m_file->setMinimumWidth(320);
        auto* browse = new QPushButton("Browse...", this);
        browse->setAutoDefault(false);
        connect(browse, &QPushButton::clicked, this, [this] {
            const auto choice = GetPrompts().OpenFile({m_file->text(), "All Files (*)|*||", 1, {}});
            if (choice) m_file->setText(choice->path);
        });
        auto* fileRow = new QHBoxLayout;
        fileRow->addWidget(m_file);
        fileRow->addWidget(browse);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
        buttons->button(QDialogButtonBox::Ok)->setEnabled(!m_resources.empty());
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        auto* form = new QFormLayout(this);
        form->addRow("Device:", m_device);
        form->addRow("Configuration file:", fileRow);
        form->addRow(buttons);
    }

    CAcqConfigDlg::Choice Choice() const {
        return {m_resources[static_cast<std::size_t>(m_device->currentIndex())].location, m_file->text().toStdString()};
    }

private:
    // A device that is no longer there leaves the first one chosen, and its file behind.
    void Preselect(const CAcqConfigDlg::Choice& choice) {
        const auto found = std::ranges::find_if(m_resources, [&](const Resource& resource) {
            return resource.location.GetServerName() == choice.location.GetServerName() &&
                   resource.location.GetResourceIndex() == choice.location.GetResourceIndex();
        });
        if (found == m_resources.end()) return;
        m_device->setCurrentIndex(static_cast<int>(found - m_resources.begin()));
        m_file->setText(QString::fromStdString(choice.configFile));
    }

    std::vector<Resource> m_resources;
    QComboBox* m_device;
    QLineEdit* m_file;
};

// The command waits with the wait cursor on; over a dialog the arrow belongs.
class ArrowCursor {
public:
    ArrowCursor() { QApplication::setOverrideCursor(Qt::ArrowCursor); }
    ArrowCursor(const ArrowCursor&) = delete;
    ArrowCursor& operator=(const ArrowCursor&) = delete;
    ~ArrowCursor() { QApplication::restoreOverrideCursor(); }
};

std::optional<CAcqConfigDlg::Choice> askForDevice(void* parentWindow, const CAcqConfigDlg::Choice* inForce) {
    const ArrowCursor arrow;
    ConfigDialog dialog(static_cast<QWidget*>(parentWindow), inForce);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return dialog.Choice();
}

bool waitForTransfer(void* parentWindow, ZvnTransfer& transfer, int timeoutMs) {
    const auto elapsed = [start = ZvnClock::Get().Now()] {
        return std::chrono::duration_cast<ZvnClock::Duration>(ZvnClock::Get().Now() - start).count();
    };
    QEventLoop quiet;
    while (elapsed() < qMin(kQuietMs, timeoutMs)) {
        if (transfer.Wait(kPollMs)) return true;
        quiet.processEvents(QEventLoop::ExcludeUserInputEvents);
    }
    QDialog dialog(static_cast<QWidget*>(parentWindow));
    dialog.setWindowTitle("Acquisition");
    auto* column = new QVBoxLayout(&dialog);
    column->addWidget(new QLabel("Waiting for a frame..."));
    auto* progress = new QProgressBar;
    progress->setRange(0, timeoutMs);
    progress->setTextVisible(false);
    progress->setMinimumWidth(260);
    column->addWidget(progress);
    auto* abort = new QPushButton("Abort");
    column->addWidget(abort, 0, Qt::AlignRight);
    QObject::connect(abort, &QPushButton::clicked, &dialog, &QDialog::reject);
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &dialog, [&] {
        progress->setValue(static_cast<int>(elapsed()));
        if (transfer.Wait(0)) {
            dialog.accept();
        } else if (elapsed() >= timeoutMs) {
            dialog.reject();
        }
    });
    poll.start(kPollMs);
    return dialog.exec() == QDialog::Accepted;
}

}  // namespace

void InstallAcquisitionDialogs() {
    CAcqConfigDlg::SetAsk(askForDevice);
    CAbortDlg::SetWaitFor(waitForTransfer);
}
