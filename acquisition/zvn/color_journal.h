#pragma once

#include <array>
#include <optional>
#include <string>

// A camera that is lost while coefficients are written into its features is left with some of the new ones and some of
// those before. So what was there is kept on the disk from before the first write until the camera works again.

/// One number for each value of a camera's color transformation, as the camera counts them: rows red, green, blue of an
/// offset and the weights of red, green, blue.
using ZvnColorValues = std::array<double, 12>;

/// The names of the values, as ColorTransformationValueSelector has them.
inline constexpr std::array<const char*, 12> kZvnColorValueNames = {"Offset0", "Gain00", "Gain01", "Gain02",
                                                                    "Offset1", "Gain10", "Gain11", "Gain12",
                                                                    "Offset2", "Gain20", "Gain21", "Gain22"};

struct ZvnColorRecord {
    ZvnColorValues earlier{};  ///< what was there
    ZvnColorValues next{};     ///< what is being written
    bool wasOn = false;        ///< whether the earlier ones were in force
};

/// The record of one camera: a file of the user's own. Programs take turns by Lock.
class ZvnColorJournal {
public:
    /// @param folder made where it is missing; empty: nothing can be kept
    /// @param camera what tells this camera from all others; empty: nothing can be kept
    ZvnColorJournal(const std::string& folder, const std::string& camera);
    ZvnColorJournal(const ZvnColorJournal&) = delete;
    ZvnColorJournal& operator=(const ZvnColorJournal&) = delete;
    ~ZvnColorJournal();

    /// Whether a record lies there, good or not.
    bool IsPending() const;
    /// Until the journal's end. @return false while another program, or another journal of this one, has the lock; true
    ///         also where nothing can be locked
    bool Lock();
    /// @param wrong why what lies there is no record of this camera that could be put back
    std::optional<ZvnColorRecord> Read(std::string& wrong) const;
    /// @return why it is not on the disk, empty where it is
    std::string Keep(const ZvnColorRecord& record);
    void Drop();

private:
    std::string camera_;
    std::string folder_;
    std::string path_;  // empty: nothing can be kept
    int lock_ = -1;
};

/// Where records lie: "Brennick Korva/Tonewright/cameras" in the folder for the user's data ($XDG_DATA_HOME, else
/// .local/share in $HOME, else in the home folder that the system names). Empty where there is none.
std::string FindZvnJournalFolder();

/// What tells a camera from all others, as one word. Empty where that cannot be told.
std::string GetZvnCameraKey(const std::string& vendor, const std::string& model, const std::string& serial);
