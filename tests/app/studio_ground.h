#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <string>
#include <vector>

#include "acquisition/zvn/CAcqConfigDlg.h"
#include "app/CommandIds.h"
#include "app/GetEngine.h"
#include "app/toolkit/LogType.h"
#include "app/toolkit/Prompts.h"
#include "calibration/CTivTonewrightDC.h"
#include "foundation/CTivImage.h"
#include "tests/support/library.h"

/// Answers every prompt with what the test wants and notes what was asked.
class AnsweringPrompts : public Prompts {
public:
    AnsweringPrompts() { SetPrompts(this); }
    ~AnsweringPrompts() override { SetPrompts(nullptr); }

    std::optional<FileChoice> OpenFile(const FileRequest& request) override { return Answer(request, opened); }
    std::optional<FileChoice> SaveFile(const FileRequest& request) override { return Answer(request, saved); }
    bool AskYesNo(const QString& caption, const QString& text) override {
        questions.push_back(caption.toStdString() + ": " + text.toStdString());
        return yes;
    }
    void ShowWarning(const QString&, const QString& text) override { messages.push_back(text.toStdString()); }
    void ShowError(const QString&, const QString& text) override { messages.push_back(text.toStdString()); }
    bool EditMatrixSize(int&, int&) override { return false; }

    QString path;  ///< empty: cancel
    int filterIndex = 1;
    bool yes = false;
    std::vector<FileRequest> opened, saved;
    std::vector<std::string> questions, messages;

private:
    std::optional<FileChoice> Answer(const FileRequest& request, std::vector<FileRequest>& asked) const {
        asked.push_back(request);
        return path.isEmpty() ? std::nullopt : std::optional(FileChoice{path, filterIndex});
    }
};

/// Engine as at the program's start, no hardware, an empty profile, prompts that cancel, and a folder for files.
class StudioGround : public testing::Test {
protected:
    struct LogRow {
        std::string text;
        int type;
        bool operator==(const LogRow&) const = default;
        friend void PrintTo(const LogRow& row, std::ostream* out) { *out << row.type << " " << row.text; }
    };
    using Rows = std::vector<LogRow>;

    StudioGround() {
        Simulate("");
        QSettings(QSettings::IniFormat, QSettings::UserScope, "Brennick Korva", "Tonewright").clear();
        GetEngine().Reset();
        ClearLastError();
    }
    ~StudioGround() override {
        unsetenv("ZVN_SIMULATION");
        CAcqConfigDlg::SetAsk(nullptr);
    }

    QString Path(const QString& name) const { return folder.filePath(name); }
    /// Describes the servers of the machine.
    void Simulate(const std::string& ini) {
        const std::string path = Path("simulation.ini").toStdString();
        Write("simulation.ini", ini);
        setenv("ZVN_SIMULATION", path.c_str(), 1);
    }
    void Write(const QString& name, const std::string& content) const {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content.data(), static_cast<qint64>(content.size()));
    }
    std::string Read(const QString& name) const {
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll().toStdString();
    }
    /// A chart of 6 x 4 patches on black, each of another color, white at the bottom left.
    /// @param patch side of a patch in pixels; the picture is 10 x 7 of them @param rows of patches that are there
    QString WriteChart(const QString& name, int patch = 40, int rows = 4) const {
        CTivImage image(10 * patch, 7 * patch, CTivData::FormatRgb, nullptr, true);
        for (int i = 0; i < 6 * rows; ++i) {
            const int row = i / 6, column = i % 6;
            const auto shade = static_cast<std::uint8_t>(row == 3 ? 240 - 30 * column : 90 + 7 * i);
            const auto green = static_cast<std::uint8_t>(row == 3 ? shade : 110 + (i * 53) % 120);
            const auto blue = static_cast<std::uint8_t>(row == 3 ? shade : 100 + (i * 31) % 110);
            for (int y = 0; y < patch; ++y) {
                for (int x = 0; x < patch; ++x) {
                    image.SetData(patch * 3 / 4 + patch * 3 / 2 * column + x, patch * 3 / 4 + patch * 3 / 2 * row + y,
                                  CTivData::Rgb(shade, green, blue));
                }
            }
        }
        EXPECT_TRUE(image.Save(Path(name).toStdString(), 5)) << LastError();
        return Path(name);
    }
    /// Describes the servers of the machine, and lets the next configuration choose the first.
    void SimulateAndChoose(const std::string& ini) {
        Simulate(ini);
        const std::string server = ini.substr(1, ini.find(']') - 1);
        CAcqConfigDlg::SetAsk([server](void*, const CAcqConfigDlg::Choice*) {
            return CAcqConfigDlg::Choice{ZvnLocation(server), {}};
        });
    }

    QTemporaryDir folder;
    AnsweringPrompts prompts;
};
