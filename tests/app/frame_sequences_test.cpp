// Whatever a user does, in whatever order: nothing crashes, nothing hangs, and the log tells each failure.

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTimer>
#include <ctime>
#include <random>

#include "acquisition/zvn/CAbortDlg.h"
#include "app/AcquisitionDialogs.h"
#include "app/CommandTable.h"
#include "tests/app/studio.h"

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int kSeedsInCi = 6;  // watched memory is slow
#else
constexpr int kSeedsInCi = 25;
#endif
constexpr int kStepsOfSeed = 40;
// A wait by design takes a second; the machine may be busy with something else besides.
constexpr double kMostCpuSeconds = 2.0;
constexpr qint64 kMostMs = 10000;

class FrameSequences : public Studio {
protected:
    FrameSequences() {
        InstallAcquisitionDialogs();
        QDir(folder.path()).mkdir("memory");
        QDir::setCurrent(folder.path());
        Write("memory/ColorCorrectionMatrix", "the factory's");
        WriteChart("small.bmp", 10);
        WriteChart("chart.bmp", 20);
        WriteChart("half.bmp", 20, 2);
        const CTivImage gray(70, 50, CTivData::FormatUByte, nullptr, true);
        EXPECT_TRUE(gray.Save(Path("gray.zvk").toStdString(), 0) && gray.Save(Path("gray.tif").toStdString(), 4));
        Write("short.zvk", Read("gray.zvk").substr(0, 100));
        Write("broken.bmp", "BM and no more");
        Write("broken.twkp", "no parameters");
        Write("values.csv", "0.1,0.2,0.3\n");
        QObject::connect(&m_closer, &QTimer::timeout, [] {
            if (QWidget* popup = QApplication::activePopupWidget()) popup->close();
            if (QWidget* dialog = QApplication::activeModalWidget()) dialog->close();
        });
        m_closer.start(5);
    }
    ~FrameSequences() override {
        frame.reset();
        CAbortDlg::SetWaitFor(nullptr);
        QDir::setCurrent(QDir::rootPath());
    }

    void Begin(unsigned seed) {
        m_random.seed(seed);
        GetEngine().Reset();
        Restart();
    }
    void Restart() {
        Start();
        QObject::connect(&frame->GetWorkflow().News(), &WorkflowNews::previewed, [this] { ++m_previews; });
        frame->show();
    }
    int Below(int count) { return static_cast<int>(m_random() % static_cast<unsigned>(count)); }
    template <std::size_t Count>
    QString AnyOf(const char* const (&names)[Count]) {
        return names[Below(Count)];
    }
    qsizetype Messages() const { return frame->Logger().List().rowCount(); }
    void Answer(const QString& name) {
        prompts.path = Below(8) ? Path(name) : QString();
        prompts.filterIndex = 1 + Below(3);
        prompts.yes = Below(2);
    }

    // Each runs one thing as the user would. @return what was done
    std::string Load() {
        const int command[] = {ID_BTN_ACQ_LOAD_IMAGE, ID_BTN_ACQ_LOAD_RAW_IMAGE, ID_BTN_ACQ_LOAD_REF_IMAGE};
        Answer(
            AnyOf({"small.bmp", "chart.bmp", "half.bmp", "gray.zvk", "gray.tif", "short.zvk", "broken.bmp", "no.bmp"}));
        Run(command[Below(3)]);
        return "load " + prompts.path.toStdString();
    }
    std::string Drop() {
        const QString name = AnyOf(
            {"small.bmp", "chart.bmp", "gray.zvk", "broken.bmp", "kept.twkp", "broken.twkp", "values.csv", "strange"});
        const qsizetype before = Messages();
        frame->OpenDroppedFile(Path(name));
        const bool fails = name == "broken.twkp" || name == "strange";
        if (fails) {
            EXPECT_GT(Messages(), before) << name.toStdString();
        }
        return "drop " + name.toStdString();
    }
    std::string Configure() {
        const std::string kind[] = {
            "[Grabber]\nkind = frame grabber\nwidth = 48\nheight = 32\nformat = RGB 32\n",
            "[Grabber]\nkind = frame grabber\nwidth = 300\nheight = 200\nformat = RGB 24\ndelay ms = 20\n",
            "[Grabber]\nkind = frame grabber\nwidth = 8\nheight = 4\nformat = RGB 32\nfaults = create\n",
            "[Other]\nkind = other\nwidth = 8\nheight = 4\nformat = RGB 32\nfaults = no frame\n", ""};
        const std::string camera =
            "[A Camera_Link]\nkind = Camera Link camera\nwidth = 64\nheight = 48\nformat = RGB 32\nfiles = memory\n";
        const std::string first = kind[Below(5)];
        SimulateAndChoose(first + camera);
        Run(ID_BTN_REFRESH_CAMERAS);
        return "configure " + first;
    }
    std::string Snap() {
        Run(ID_BTN_ACQ_SNAP);
        return "snap";
    }
    std::string Edit() {
        const int edits[] = {ID_EDIT_GAMMA, ID_EDIT_SATURATION_R, ID_EDIT_SATURATION_G, ID_EDIT_SATURATION_B};
        const int id = edits[Below(4)];
        frame->Ribbon().SetEditText(id, AnyOf({"60", "abc", "", "99999999999", "-3", "255"}));
        Answer("");
        Run(id);
        return "edit " + std::to_string(id);
    }
    std::string Preview() {
        Answer("");
        const bool mayRun = IsEnabled(ID_BTN_CALIBRATE_PREVIEW);
        const qsizetype before = Messages();
        const std::size_t asked = prompts.questions.size();
        const int previews = m_previews;
        Run(ID_BTN_CALIBRATE_PREVIEW);
        const bool declined = prompts.questions.size() > asked && !prompts.yes;
        if (m_previews > previews) {
            const CTivImage &raw = frame->RawViewer().Image(), &shown = frame->CalibratedViewer().Image();
            EXPECT_EQ(shown.GetWidth(), raw.GetWidth());
            EXPECT_EQ(shown.GetHeight(), raw.GetHeight());
        } else if (mayRun && !declined) {
            EXPECT_GT(Messages(), before);
        }
        return "preview";
    }
    std::string Upload() {
        const bool mayRun = IsEnabled(ID_BTN_CALIBRATE_DEVICE);
        const qsizetype before = Messages();
        Run(ID_BTN_CALIBRATE_DEVICE);
        if (mayRun) {
            EXPECT_GE(Messages(), before + 2);
        }
        return "upload";
    }
    std::string Keep() {
        const bool coefficients = Below(2);
        Answer(coefficients ? AnyOf({"kept.ccor", "no folder/kept.ccor"}) : QString("kept.twkp"));
        const qsizetype before = Messages();
        Run(coefficients ? ID_BTN_SAVE_CAMERA_FILE : ID_BTN_PARAM_SAVE);
        if (!prompts.path.isEmpty()) {
            EXPECT_TRUE(QFile::exists(prompts.path) || Messages() > before);
        }
        return "keep";
    }
    std::string LoadKept() {
        Answer(AnyOf({"kept.ccor", "broken.twkp"}));
        const qsizetype before = Messages();
        Run(ID_BTN_LOAD_CAMERA_FILE);
        if (!prompts.path.isEmpty()) {
            EXPECT_GT(Messages(), before) << "told, whether it succeeds or not";
        }
        return "load coefficients";
    }
    std::string Verify() {
        Answer(AnyOf({"chart.bmp", "small.bmp", "half.bmp", "gray.zvk", "broken.bmp"}));
        const bool mayRun = IsEnabled(ID_BTN_VERIFY);
        const qsizetype before = Messages();
        Run(ID_BTN_VERIFY);
        if (mayRun && !prompts.path.isEmpty()) {
            EXPECT_TRUE(Messages() > before || frame->GetWorkflow().Get<VerifySteps>().GetReport());
        }
        return "verify " + prompts.path.toStdString();
    }
    std::string TakeBack() {
        Answer("");
        const RawColorLists colors = frame->RawColorPane().Lists();
        const float gamma = GetEngine().GetGamma();
        if (!IsEnabled(ID_BTN_UNDO)) return "nothing to take back";
        Run(ID_BTN_UNDO);
        EXPECT_TRUE(IsEnabled(ID_BTN_REDO));
        if (Below(2)) return "take back";
        Run(ID_BTN_REDO);
        EXPECT_EQ(GetEngine().GetGamma(), gamma);
        EXPECT_TRUE(frame->RawColorPane().Lists() == colors);
        return "take back and do again";
    }
    std::string Compare() {
        const bool mayRun = IsEnabled(ID_BTN_COMPARE), was = frame->GetState().comparing;
        Run(ID_BTN_COMPARE);
        EXPECT_EQ(frame->GetState().comparing, mayRun ? !was : was);
        CImageViewerCtrl& moved = Below(2) ? frame->RawViewer() : frame->CalibratedViewer();
        if (Below(2) || !moved.Image().IsAllocated()) {
            moved.SetZoom(0.05f * static_cast<float>(1 + Below(60)));
        } else {
            moved.FitToWindow();
        }
        return "compare";
    }
    std::string AnyCommand() {
        const auto table = CommandTable();
        const CommandRow& row = table[static_cast<std::size_t>(Below(static_cast<int>(table.size())))];
        const bool leaves = row.id == ID_APP_EXIT || row.id == ID_CONTEXT_HELP;
        const bool dresses = row.id >= ID_BTN_CHROME && row.id <= ID_BTN_CHROME_NEUTRAL;
        if (leaves || dresses) return "nothing";
        Answer("any.out");
        Run(row.id);
        return "command " + std::to_string(row.id);
    }
    std::string Resize() {
        frame->resize(1 + Below(1600), 1 + Below(1000));
        return "resize";
    }
    std::string ChartSize() {
        frame->SpectrumPane().SetMatrixSize(1 + Below(8), 1 + Below(8));
        return "chart size";
    }
    std::string Select() {
        CImageViewerCtrl* const viewers[] = {&frame->RawViewer(), &frame->ReferenceViewer(),
                                             &frame->CalibratedViewer()};
        frame->DeselectAllViewers();
        viewers[Below(3)]->SetSelected(1);
        frame->RefreshManualPick();
        return "select";
    }
    std::string Close() {
        if (Below(3)) return "nothing";
        frame->close();
        Restart();
        return "close";
    }

    std::string Step() {
        using Doing = std::string (FrameSequences::*)();
        constexpr Doing kDoings[] = {
            &FrameSequences::Load,       &FrameSequences::Load,     &FrameSequences::Drop,
            &FrameSequences::Configure,  &FrameSequences::Snap,     &FrameSequences::Snap,
            &FrameSequences::Edit,       &FrameSequences::Preview,  &FrameSequences::Preview,
            &FrameSequences::Upload,     &FrameSequences::Keep,     &FrameSequences::AnyCommand,
            &FrameSequences::AnyCommand, &FrameSequences::Resize,   &FrameSequences::ChartSize,
            &FrameSequences::Select,     &FrameSequences::LoadKept, &FrameSequences::Close,
            &FrameSequences::Verify,     &FrameSequences::TakeBack, &FrameSequences::TakeBack,
            &FrameSequences::Compare,    &FrameSequences::Compare};
        const std::string done = (this->*kDoings[Below(static_cast<int>(std::size(kDoings)))])();
        if (Below(2)) QCoreApplication::processEvents();
        return done;
    }

    void ExpectSound() const {
        const StudioState state = frame->GetState();
        EXPECT_EQ(state.rawSelected + state.refSelected + state.calibSelected, 1);
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        if (state.comparing) {
            EXPECT_EQ(frame->RawViewer().GetZoom(), frame->CalibratedViewer().GetZoom());
        }
    }

private:
    std::mt19937 m_random;
    QTimer m_closer;
    int m_previews = 0;
};

// TONEWRIGHT_SEEDS says how many orders are tried, TONEWRIGHT_FIRST_SEED from which on.
TEST_F(FrameSequences, AnyOrderOfCommandsLeavesTheWindowSound) {
    const int first = qEnvironmentVariableIntValue("TONEWRIGHT_FIRST_SEED");
    const int given = qEnvironmentVariableIntValue("TONEWRIGHT_SEEDS");
    for (int seed = first; seed < first + (given > 0 ? given : kSeedsInCi); ++seed) {
        Begin(static_cast<unsigned>(seed));
        std::string story;
        for (int step = 0; step < kStepsOfSeed && !HasFailure(); ++step) {
            QElapsedTimer wall;
            wall.start();
            const std::clock_t cpu = std::clock();
            story += Step() + "\n";
            EXPECT_LT(static_cast<double>(std::clock() - cpu) / CLOCKS_PER_SEC, kMostCpuSeconds);
            EXPECT_LT(wall.elapsed(), kMostMs);
            ExpectSound();
        }
        ASSERT_FALSE(HasFailure()) << "seed " << seed << ":\n" << story;
    }
}

}  // namespace
