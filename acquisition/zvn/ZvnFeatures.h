#pragma once

#include <stdexcept>
#include <string>
#include <vector>

/// A feature could not be read or written; the text says which and why.
class ZvnFeatureFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The features of an open camera, by their names in the GenICam Standard Features Naming Convention.
/// Every call but Has and GetEntries throws ZvnFeatureFailure where it fails.
class ZvnFeatures {
public:
    /// What values a number takes. A step of 0: any, as a float holds them.
    struct Range {
        double min;
        double max;
        double step;
    };

    virtual ~ZvnFeatures() = default;

    /// @return whether the camera has the feature and it can be used at present
    virtual bool Has(const std::string& feature) = 0;
    /// The words that a choice takes at present; none for what is no choice.
    virtual std::vector<std::string> GetEntries(const std::string& feature) = 0;

    virtual std::string GetChoice(const std::string& feature) = 0;
    virtual void SetChoice(const std::string& feature, const std::string& entry) = 0;
    virtual bool GetSwitch(const std::string& feature) = 0;
    virtual void SetSwitch(const std::string& feature, bool on) = 0;
    virtual double GetNumber(const std::string& feature) = 0;
    virtual void SetNumber(const std::string& feature, double value) = 0;
    virtual Range GetRange(const std::string& feature) = 0;
};
