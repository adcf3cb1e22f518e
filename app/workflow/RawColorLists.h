#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "foundation/CTivVector.h"

/// A color picked from an image.
struct RawColorEntry {
    std::uint32_t color = 0;  ///< FormatRgb word: blue in bits 0 to 7, green in 8 to 15, red in 16 to 23
    std::int32_t x = 0;       ///< centre of the ROI that it came from, image pixels; 0 for an entry from a file
    std::int32_t y = 0;
    bool isMixed = false;  ///< the ROI held two colors, and this is neither

    bool operator==(const RawColorEntry&) const = default;
};

/// One side of the raw color pane, without a window: the swatches, the rows that show them, and the entries that reach
/// the calibration. Rows and entries are meant to go together, but the pane's rules let them part; what walks over both
/// stops where the shorter one ends.
class RawColorSide {
public:
    struct Row {
        int label;             ///< the number shown
        std::size_t image;     ///< the swatch shown
        std::size_t itemData;  ///< the swatch that "Replace/Add" overwrites: 0 for every row that came from a file
        bool isMixed;          ///< as the entry that it was made with

        bool operator==(const Row&) const = default;
    };

    /// Appends an entry with its swatch and a row numbered from 1.
    /// @throw std::length_error "list too long" past 0xCCCCCCC entries
    void Add(const RawColorEntry& entry);
    /// Replaces color and swatch of the selected row, or appends where none is selected.
    void ReplaceOrAdd(std::optional<std::size_t> selected, const RawColorEntry& entry);
    /// Removes the selected row with its entry and renumbers the rows behind it from 1 on, leaving the swatch; without
    /// a selection the last row, its entry and the last swatch.
    /// @return the row that went, nothing where there was none
    std::optional<std::size_t> Remove(std::optional<std::size_t> selected);
    /// Appends a vector's colors at (0, 0). Their rows are labelled from 0, deliberately (C16) unlike rows made by
    /// hand.
    void Fill(const CTivVector& colors);
    void ClearRows();     ///< swatches and rows; the entries stay
    void ClearEntries();  ///< entries; the rows stay
    void Clear();

    /// @return FormatRgb, one element an entry, in list order; empty without entries
    CTivVector GetColors() const;
    const std::vector<Row>& Rows() const { return m_rows; }
    const std::vector<std::uint32_t>& Images() const { return m_images; }
    bool operator==(const RawColorSide&) const = default;
    const std::vector<RawColorEntry>& Entries() const { return m_entries; }

private:
    void Append(const RawColorEntry& entry, int label, bool fromFile);

    std::vector<std::uint32_t> m_images;  // a swatch is its color
    std::vector<Row> m_rows;
    std::vector<RawColorEntry> m_entries;
};

/// Both sides and the rules that reach across them.
struct RawColorLists {
    RawColorSide raw;        ///< left
    RawColorSide reference;  ///< right

    bool operator==(const RawColorLists&) const = default;

    void ClearBoth();
    /// A new image came into a viewer. Deliberately (C17) lopsided: for the raw side the entries of both sides stay and
    /// still reach the calibration; for the reference side the entries of both sides go, and the raw rows lose theirs.
    void ClearForNewImage(bool rawSide);
};
