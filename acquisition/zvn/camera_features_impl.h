#pragma once

#include "acquisition/zvn/ZvnFeatures.h"
#include "acquisition/zvn/aravis_impl.h"

/// The features of a GenICam camera.
class CameraFeatures : public ZvnFeatures {
public:
    explicit CameraFeatures(ArvDevice* device) : device_(device) {}

    bool Has(const std::string& feature) override;
    std::vector<std::string> GetEntries(const std::string& feature) override;
    std::string GetChoice(const std::string& feature) override;
    void SetChoice(const std::string& feature, const std::string& entry) override;
    bool GetSwitch(const std::string& feature) override;
    void SetSwitch(const std::string& feature, bool on) override;
    double GetNumber(const std::string& feature) override;
    void SetNumber(const std::string& feature, double value) override;
    Range GetRange(const std::string& feature) override;

    /// Sets a feature of any kind as a line of text has it; a command is carried out. @return why not, empty if it is
    std::string Apply(const std::string& feature, const std::string& value);

private:
    ArvDevice* device_;
};
