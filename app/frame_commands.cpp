// Actions, keys and rules: what brings the command table to the window.

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QWhatsThis>
#include <exception>

#include "app/CAboutDlg.h"
#include "app/CHelpWnd.h"
#include "app/CMainFrame.h"
#include "app/CommandTable.h"
#include "app/HelpFile.h"
#include "app/StudioRibbon.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CQualityWnd.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/RibbonBar.h"
#include "app/toolkit/Theme.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CCompareViewer.h"
#include "app/view/CDockableImgPane.h"
#include "app/workflow/Workflow.h"
#include "calibration/parameter_limits.h"

using namespace tonewright;

namespace {

constexpr int kTipWidth = 200;  // pixels, at most
constexpr int kRecentFiles = 5;
constexpr float kZoomStep = 0.1f;

/// @param choice a line that says what is in force of a menu's choices; empty where there is none
QString toolTipHtml(const CommandTip& tip, const QString& choice, const QFontMetrics& metrics) {
    if (tip.title.isEmpty()) return tip.description;
    const int width = qMin(kTipWidth, metrics.horizontalAdvance(tip.description) + 2);
    QString html = "<div style='white-space:nowrap'><b>" + tip.title.toHtmlEscaped() + "</b></div>";
    html += QString("<table width='%1'><tr><td>%2</td></tr>").arg(width).arg(tip.description.toHtmlEscaped());
    if (!choice.isEmpty()) html += "<tr><td>" + choice + "</td></tr>";
    return html + "</table>";
}

QStringList recentDocuments() {
    QStringList paths;
    for (int i = 1; i <= kRecentFiles; ++i) {
        const QString path = GetProfile().ReadString("Recent File List", QString("File%1").arg(i), {});
        if (!path.isEmpty()) paths += path;
    }
    return paths;
}

QList<QKeySequence> keysOf(const CommandRow& row) {
    QList<QKeySequence> keys{QKeySequence(row.key)};
    if (QLatin1String(row.key) == QLatin1String("Return")) keys += QKeySequence(Qt::Key_Enter);
    return keys;
}

/// @param lead stands before the choice
void showChoice(QAction& button, const char* lead, const QString& name, const QFontMetrics& metrics) {
    constexpr const char* kChoice = "choice";
    const QString choice = name.isEmpty() ? QString() : lead + QString(" <b>%1</b>").arg(name.toHtmlEscaped());
    if (button.property(kChoice).toString() == choice) return;
    button.setProperty(kChoice, choice);
    button.setToolTip(toolTipHtml(SplitTip(FindCommand(button.data().toInt())->tip), choice, metrics));
    button.setWhatsThis(button.toolTip());
}

}  // namespace

void CMainFrame::CreateActions() {
    for (const CommandRow& row : CommandTable()) {
        auto* action = new QAction(row.label, this);
        action->setData(row.id);
        action->setCheckable(row.checked != nullptr);
        if (*row.picture) action->setIcon(theme::Icon(QString(":/icons/%1.svg").arg(row.picture)));
        const CommandTip tip = SplitTip(row.tip);
        if (*row.tip) {
            action->setToolTip(toolTipHtml(tip, {}, fontMetrics()));
            action->setWhatsThis(action->toolTip());
        }
        if (*row.key) {
            action->setShortcuts(keysOf(row));
            addAction(action);
        }
        m_actions[row.id] = action;
    }
}

// The ribbon comes before the connections: then it has closed its drop-downs when a command runs.
void CMainFrame::CreateRibbon() {
    m_ribbon = std::make_unique<RibbonBar>(
        StudioRibbon(), [this](int id) { return m_actions.at(id); }, this);
    setMenuWidget(m_ribbon.get());
    m_ribbon->SetRecentDocuments(recentDocuments());
    for (const int id : {ID_EDIT_SATURATION_R, ID_EDIT_SATURATION_G, ID_EDIT_SATURATION_B}) {
        m_ribbon->SetEditText(id, QString::number(kMostSaturation));
    }
    for (const int id : {ID_SLD_SATURATION_R, ID_SLD_SATURATION_G, ID_SLD_SATURATION_B}) {
        m_ribbon->SetSliderValue(id, kMostSaturation);
    }
    for (const auto& [id, action] : m_actions) {
        connect(action, &QAction::triggered, this, [this, id = id] { RunCommand(id); });
    }
    connect(m_ribbon.get(), &RibbonBar::edited, this, &CMainFrame::RunCommand);
    connect(m_ribbon.get(), &RibbonBar::slid, this, &CMainFrame::RunCommand);
    connect(m_ribbon.get(), &RibbonBar::slidEnough, this, [this] { m_workflow->Get<UndoSteps>().Settle(); });
    connect(m_ribbon.get(), &RibbonBar::recentChosen, this, &CMainFrame::OpenDroppedFile);
    // Whatever changed the state, the commands show it before the window next waits for the user.
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &CMainFrame::UpdateCommands);
}

QAction* CMainFrame::GetAction(int id) const {
    const auto found = m_actions.find(id);
    return found != m_actions.end() ? found->second : nullptr;
}

StudioState CMainFrame::GetState() const {
    StudioState state = m_workflow->GetStudioState();
    state.rawColorListEnabled = m_rawColorWnd->IsEnabledForPicking();
    state.logVisible = !m_logger->isHidden();
    state.rawColorsVisible = !m_rawColorWnd->isHidden();
    state.spectrumVisible = !m_spectrumWnd->isHidden();
    state.refPaneVisible = !m_refPane->isHidden();
    state.calibPaneVisible = !m_calibPane->isHidden();
    state.qualityVisible = !m_qualityWnd->isHidden();
    state.comparing = m_calibViewer->IsComparing();
    state.chrome = static_cast<int>(theme::GetChrome());
    return state;
}

void CMainFrame::UpdateCommands() {
    if (!m_workflow) return;                                   // still being built
    if (m_turns.empty()) m_workflow->Get<UndoSteps>().Note();  // a pane has buttons and cells of its own
    m_workflow->Get<QualitySteps>().CheckInputs();
    m_workflow->Get<VerifySteps>().CheckInputs();
    const StudioState state = GetState();
    for (const CommandRow& row : CommandTable()) {
        QAction* const action = m_actions.at(row.id);
        action->setEnabled(row.enabled(state));
        if (row.checked) action->setChecked(row.checked(state));
    }
    setWindowTitle(m_workflow->Get<FileSteps>().GetTitle());
    ShowChoices();
    ShowNextPatch(state);
    m_rawColorWnd->UpdateCommandState();
}

// A button with a menu of choices tells in its tip which one is in force, undo and redo what they bring back.
void CMainFrame::ShowChoices() {
    const UndoSteps& undo = m_workflow->Get<UndoSteps>();
    showChoice(*m_actions.at(ID_BTN_UNDO), "Next:", undo.GetUndoName(), fontMetrics());
    showChoice(*m_actions.at(ID_BTN_REDO), "Next:", undo.GetRedoName(), fontMetrics());
    for (const ribbon::Tab& tab : StudioRibbon().tabs) {
        for (const ribbon::Panel& panel : tab.panels) {
            for (const ribbon::Item& item : panel.items) {
                QString choice;
                for (const int entry : item.menuIds) {
                    const QAction* const action = GetAction(entry);
                    if (action && action->isChecked()) choice = action->text();
                }
                if (item.menuIds.empty()) continue;
                showChoice(*m_actions.at(item.id), "Now:", choice, fontMetrics());
            }
        }
    }
}

// While colors are picked by hand, for the side to which the next one goes. Entries count and not rows: they are what
// reaches the calibration.
void CMainFrame::ShowNextPatch(const StudioState& state) {
    if (!state.manualColors || !(state.rawSelected || state.refSelected)) return m_status->HideNextPatch();
    const RawColorLists& lists = m_rawColorWnd->Lists();
    const RawColorSide& side = state.rawSelected ? lists.raw : lists.reference;
    m_status->ShowNextPatch(side.Entries().size(), *m_spectrumWnd->GetChartSize());
}

// What was typed and not committed counts for the command that is pressed next, but not for leaving.
void CMainFrame::RunCommand(int id) {
    const CommandRow* const row = FindCommand(id);
    if (!row) return;
    if (id == ID_APP_EXIT) {
        m_ribbon->DropPendingEdits();
    } else {
        m_ribbon->CommitPendingEdits();
    }
    TakeTurn([this, row] {
        if (!row->run || !row->enabled(GetState())) return;
        m_workflow->Get<UndoSteps>().Begin(row->id);
        row->run(*this, row->id);
    });
}

// Steps don't nest: one that came while another waits would take away what that one waits for.
void CMainFrame::TakeTurn(std::function<void()> step) {
    m_turns.push_back(std::move(step));
    if (m_turns.size() > 1) return;
    while (!m_turns.empty()) {
        try {
            m_turns.front()();
        } catch (...) {
            LogException();
        }
        m_turns.pop_front();
        m_workflow->Get<UndoSteps>().Note();
        UpdateCommands();
    }
}

// The fit and the parsers of numbers throw texts that nothing below catches.
void CMainFrame::LogException() {
    try {
        throw;
    } catch (const char* text) {
        LogMessage(text, LogError);
    } catch (const std::exception& exception) {
        LogMessage(exception.what(), LogError);
    } catch (...) {
        LogMessage("Unknown error.", LogError);
    }
}

void CMainFrame::OnViewCommand(int id) {
    CImageViewerCtrl* const viewer = GetSelectedViewer();
    if (!viewer) return;
    switch (id) {
        case ID_BTN_IMAGE_RESET_SCALE:
            viewer->ResetScale();
            break;
        case ID_BTN_IMAGE_AUTO_HEIGHT:
            viewer->FitHeight();
            break;
        case ID_BTN_IMAGE_AUTO_WIDTH:
            viewer->FitWidth();
            break;
        case ID_BTN_IMAGE_FIT_SCREEN:
            viewer->FitToWindow();
            break;
        default:
            viewer->SetZoom(viewer->GetZoom() + kZoomStep);
    }
}

void CMainFrame::OnClearLog() { m_logger->ClearLog(); }

void CMainFrame::OnExit() { close(); }

void CMainFrame::OnAbout() { CAboutDlg(this).exec(); }

void CMainFrame::OnHelp() {
    if (OpenHelpFile()) return;
    auto* page = findChild<CHelpWnd*>();
    if (!page) page = new CHelpWnd(this);
    page->show();
    page->raise();
    page->activateWindow();
}

void CMainFrame::OnContextHelp() { QWhatsThis::enterWhatsThisMode(); }
