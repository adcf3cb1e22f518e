#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/workflow/RawColorLists.h"
#include "app/workflow/Workflow.h"
#include "tests/app/studio_ground.h"

// What the steps of the work need of a window, without one.

/// A picture whose ROI is the whole of it less a fiftieth on each side, as the viewers place it.
class BenchPicture : public PictureView {
public:
    CTivImage& Image() override { return image; }
    bool SetImage(CTivImage* source, bool) override {
        if (!source || !source->IsAllocated()) return false;
        image = *source;
        image.SetRoi({});
        overlays = 0;
        if (onRoi) onRoi(Roi());
        return true;
    }
    void ResetView() override {}
    void ClearOverlays() override { overlays = 0; }
    void FitIfLarger() override { ++fitted; }
    void ShowNow() override { ++shown; }
    void SetSelected(int value) override { selected = value; }
    int IsSelected() const override { return selected; }

    ViewRect Roi() const {
        const int x = image.GetWidth() / 50, y = image.GetHeight() / 50;
        return {x, y, image.GetWidth() - x, image.GetHeight() - y};
    }

    CTivImage image;
    int selected = 0, fitted = 0, shown = 0;
    std::size_t overlays = 0;
    std::function<void(const ViewRect&)> onRoi;
};

class BenchChart : public BenchPicture {
public:
    explicit BenchChart(const ChartSize& size) : m_size(size) {}
    void SetAutoDetect(bool on) override {
        if (on && onRoi) onRoi(Roi());
        if (!on) overlays = 0;
    }
    void DetectPatches() override {
        m_detector.DetectPatches(image, ChartRoiOfView(), m_size);
        overlays = m_detector.GetOverlay().size();
    }
    CTivVector GetRawColors() override { return m_detector.GetRawColors(image, ChartRoiOfView(), m_size).colors; }
    const tonewright::PatchDetector* Detector() const override { return &m_detector; }

private:
    tonewright::ChartRoi ChartRoiOfView() const {
        const ViewRect roi = Roi();
        return {roi.left, roi.top, roi.right, roi.bottom};
    }
    tonewright::PatchDetector m_detector;
    const ChartSize& m_size;
};

/// Picks the color of the middle of the selected picture.
class BenchLists : public ColorLists {
public:
    BenchLists(BenchPicture& raw, BenchPicture& reference) : m_raw(raw), m_reference(reference) {}
    CTivVector GetRawColors() const override { return lists.raw.GetColors(); }
    CTivVector GetReferenceColors() const override { return lists.reference.GetColors(); }
    const RawColorLists& Lists() const override { return lists; }
    void Restore(const RawColorLists& other) override { lists = other; }
    void FillRawColors(const CTivVector& colors) override { lists.raw.Fill(colors); }
    void FillReferenceColors(const CTivVector& colors) override { lists.reference.Fill(colors); }
    void SetEnabled(bool on) override { enabled = on; }
    void SetMode(bool on) override { relative = on; }
    void AddColor() override {
        const CTivImage& image = m_raw.selected ? m_raw.image : m_reference.image;
        const int x = image.GetWidth() / 2, y = image.GetHeight() / 2;
        Side().Add({image.GetData(x, y).AsRgb() & 0xFFFFFF, x, y});
    }
    void Remove() override { Side().Remove(marked); }
    void RemoveLast() override { Side().Remove(std::nullopt); }
    void Clear() override { lists.ClearBoth(); }
    void ClearSide(bool rawSide) override { lists.ClearForNewImage(rawSide); }

    RawColorLists lists;
    std::optional<std::size_t> marked;
    bool enabled = false, relative = false;

private:
    RawColorSide& Side() { return m_raw.selected ? lists.raw : lists.reference; }
    BenchPicture& m_raw;
    BenchPicture& m_reference;
};

class BenchValues : public UserValues {
public:
    CTivVector GetSpectrumValues() const override { return spectrum; }
    std::array<float, 4> GetIlluminantValue() const override { return white; }
    void ShowSpectrumValues(const CTivVector& values) override { spectrum = values; }
    void ShowIlluminantValue(const std::array<float, 4>& value) override { white = value; }
    UserValueTexts GetTexts() const override {
        UserValueTexts texts;
        for (int i = 0; i < spectrum.GetSize(); ++i) {
            for (int k = 0; k < 3; ++k) texts.patches.push_back(QString::number(spectrum.GetData(i).AsColorFloat()[k]));
        }
        for (int k = 0; k < 3; ++k) texts.white.push_back(QString::number(white[static_cast<std::size_t>(k)]));
        return texts;
    }
    void ShowTexts(const UserValueTexts& texts) override {
        spectrum = CTivVector(static_cast<int>(texts.patches.size() / 3), CTivData::FormatColorFloat, nullptr, true);
        for (int i = 0; i < spectrum.GetSize(); ++i) {
            const auto at = static_cast<std::size_t>(3 * i);
            const float xyz[4] = {texts.patches[at].toFloat(), texts.patches[at + 1].toFloat(),
                                  texts.patches[at + 2].toFloat(), 0};
            spectrum.SetData(i, CTivData::ColorFloat(xyz));
        }
        for (std::size_t k = 0; k < 3; ++k) white[k] = texts.white[k].toFloat();
    }
    bool Shows(const UserValueTexts& texts) const override { return GetTexts() == texts; }
    void SetEnabled(bool on) override { enabled = on; }
    void ResetValues() override {
        spectrum = CTivVector(size.Width * size.Height, CTivData::FormatColorFloat, nullptr, true);
        white = {};
        enabled = false;
    }
    ChartSize* GetChartSize() override { return &size; }
    void SetMatrixSize(int width, int height) override { size = {width, height}; }
    void LoadValuesFrom(const QString& path) override { loaded = path; }

    CTivVector spectrum;
    std::array<float, 4> white{};
    bool enabled = false;
    ChartSize size;
    QString loaded;
};

class BenchControls : public ParameterControls {
public:
    QString EditText(int id) const override { return texts.at(id); }
    void SetEditText(int id, const QString& text) override { texts[id] = text; }
    int SliderValue(int id) const override { return sliders.at(id); }
    void SetSliderValue(int id, int value) override { sliders[id] = value; }
    void OpenMenuOf(int id) override { opened.push_back(id); }
    void Redraw() override {}

    std::map<int, QString> texts;
    std::map<int, int> sliders;
    std::vector<int> opened;
};

/// The steps with a real engine and a real session, but no window.
class WorkflowBench : public StudioGround {
protected:
    WorkflowBench() {
        raw.onRoi = reference.onRoi = [this](const ViewRect& roi) { Calibration().OnRoiChanged(roi); };
        GetEngine().SetIlluminant(0);
        GetEngine().SetXformSize(4);
        Begin();
    }

    /// A program that has just started.
    void Begin() {
        workflow.reset();
        for (BenchPicture* picture : std::initializer_list<BenchPicture*>{&raw, &reference, &calibrated}) {
            picture->image.Free();
            picture->selected = picture == &raw;
        }
        for (const int id : {ID_EDIT_SATURATION_R, ID_EDIT_SATURATION_G, ID_EDIT_SATURATION_B}) {
            controls.SetEditText(id, "255");
        }
        for (const int id : {ID_SLD_SATURATION_R, ID_SLD_SATURATION_G, ID_SLD_SATURATION_B}) {
            controls.SetSliderValue(id, 255);
        }
        workflow = std::make_unique<Workflow>(
            WorkflowParts{.engine = GetEngine(),
                          .session = &session,
                          .raw = raw,
                          .reference = reference,
                          .calibrated = calibrated,
                          .lists = lists,
                          .values = values,
                          .controls = controls,
                          .makePdf = [](const tonewright::Report&) { return std::string("%PDF"); },
                          .baseDir = folder.path()});
        const WorkflowNews& news = workflow->News();
        QObject::connect(&news, &WorkflowNews::message, [this](const QString& text, int type) {
            log.push_back({text.toStdString(), type});
        });
        QObject::connect(&news, &WorkflowNews::statusChanged,
                         [this](int id, const QString& text) { status[id] = text.toStdString(); });
        QObject::connect(&news, &WorkflowNews::statusWanted, [this](int id) { wanted.push_back(id); });
        QObject::connect(&news, &WorkflowNews::paneWanted, [this](int id) { wanted.push_back(id); });
        QObject::connect(&news, &WorkflowNews::detected, [this] { ++detections; });
        QObject::connect(&news, &WorkflowNews::previewed, [this] { ++previews; });
        log.clear();
        Parameters().SyncControlsFromEngine();
    }

    PictureSteps& Pictures() { return workflow->Get<PictureSteps>(); }
    CalibrationSteps& Calibration() { return workflow->Get<CalibrationSteps>(); }
    ParameterSteps& Parameters() { return workflow->Get<ParameterSteps>(); }
    FileSteps& Files() { return workflow->Get<FileSteps>(); }
    DeviceSteps& Devices() { return workflow->Get<DeviceSteps>(); }
    const WorkflowState& State() const { return workflow->State(); }

    void LoadChart(int patch = 40, int rows = 4) {
        prompts.path = WriteChart("chart.bmp", patch, rows);
        Pictures().OnLoadRawImage();
        prompts.path.clear();
    }
    void Select(BenchPicture& picture) { Pictures().SelectViewer(picture); }
    void EditGamma(const QString& text) {
        controls.SetEditText(ID_EDIT_GAMMA, text);
        Parameters().OnGammaEdit();
    }
    void EditSaturation(int id, const QString& text) {
        controls.SetEditText(id, text);
        Parameters().OnSaturationEdit(id);
    }
    /// Connects with the first of the simulated servers.
    void Connect(const std::string& ini) {
        SimulateAndChoose(ini);
        Devices().OnConfigure();
    }

    CTonewrightAcq session{[](void*, int) {}, nullptr, nullptr};
    BenchValues values;
    BenchChart raw{values.size}, reference{values.size};
    BenchPicture calibrated;
    BenchLists lists{raw, reference};
    BenchControls controls;
    std::unique_ptr<Workflow> workflow;

    Rows log;
    std::map<int, std::string> status;
    std::vector<int> wanted;  ///< numbers of panes and status parts, in order
    int detections = 0, previews = 0;
};
