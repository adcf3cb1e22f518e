#include "app/panes/RawColorLists.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::size_t kMostEntries = 0xCCCCCCC;

}  // namespace

void RawColorSide::Append(const RawColorEntry& entry, int label, bool fromFile) {
    if (entries_.size() >= kMostEntries) throw std::length_error("list too long");
    entries_.push_back(entry);
    rows_.push_back({label, images_.size(), fromFile ? 0 : images_.size()});
    images_.push_back(entry.color);
}

void RawColorSide::Add(const RawColorEntry& entry) { Append(entry, static_cast<int>(rows_.size()) + 1, false); }

void RawColorSide::ReplaceOrAdd(std::optional<std::size_t> selected, const RawColorEntry& entry) {
    if (!selected || *selected >= std::min(rows_.size(), entries_.size())) return Add(entry);
    const std::size_t image = rows_[*selected].itemData;
    if (image < images_.size()) images_[image] = entry.color;
    entries_[*selected] = entry;
}

std::optional<std::size_t> RawColorSide::Remove(std::optional<std::size_t> selected) {
    if (selected && *selected < std::min(rows_.size(), entries_.size())) {
        const auto at = static_cast<std::ptrdiff_t>(*selected);
        rows_.erase(rows_.begin() + at);
        entries_.erase(entries_.begin() + at);
        for (std::size_t i = *selected; i < rows_.size(); ++i) rows_[i].label = static_cast<int>(i) + 1;
        return selected;
    }
    if (rows_.empty() || images_.empty()) return std::nullopt;
    rows_.pop_back();
    images_.pop_back();
    if (!entries_.empty()) entries_.pop_back();
    return rows_.size();
}

void RawColorSide::Fill(const CTivVector& colors) {
    for (int i = 0; i < colors.GetSize(); ++i) Append({colors.GetData(i).AsRgb() & 0xFFFFFF, 0, 0}, i, true);
}

void RawColorSide::ClearRows() {
    images_.clear();
    rows_.clear();
}

void RawColorSide::ClearEntries() { entries_.clear(); }

void RawColorSide::Clear() {
    ClearRows();
    ClearEntries();
}

CTivVector RawColorSide::GetColors() const {
    CTivVector colors(static_cast<int>(entries_.size()), CTivData::FormatRgb, nullptr, true);
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        colors.SetData(static_cast<int>(i), CTivData(CTivData::FormatRgb, entries_[i].color));
    }
    return colors;
}

void RawColorLists::ClearBoth() {
    raw.Clear();
    reference.Clear();
}

void RawColorLists::ClearForNewImage(bool rawSide) {
    if (rawSide) return raw.ClearRows();
    reference.ClearRows();
    raw.ClearEntries();
    reference.ClearEntries();
}
