#include "app/workflow/RawColorLists.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::size_t kMostEntries = 0xCCCCCCC;

}  // namespace

void RawColorSide::Append(const RawColorEntry& entry, int label, bool fromFile) {
    if (m_entries.size() >= kMostEntries) throw std::length_error("list too long");
    m_entries.push_back(entry);
    m_rows.push_back({label, m_images.size(), fromFile ? 0 : m_images.size(), entry.isMixed});
    m_images.push_back(entry.color);
}

void RawColorSide::Add(const RawColorEntry& entry) { Append(entry, static_cast<int>(m_rows.size()) + 1, false); }

void RawColorSide::ReplaceOrAdd(std::optional<std::size_t> selected, const RawColorEntry& entry) {
    if (!selected || *selected >= std::min(m_rows.size(), m_entries.size())) return Add(entry);
    const std::size_t image = m_rows[*selected].itemData;
    if (image < m_images.size()) m_images[image] = entry.color;
    m_entries[*selected] = entry;
    m_rows[*selected].isMixed = entry.isMixed;
}

std::optional<std::size_t> RawColorSide::Remove(std::optional<std::size_t> selected) {
    if (selected && *selected < std::min(m_rows.size(), m_entries.size())) {
        const auto at = static_cast<std::ptrdiff_t>(*selected);
        m_rows.erase(m_rows.begin() + at);
        m_entries.erase(m_entries.begin() + at);
        for (std::size_t i = *selected; i < m_rows.size(); ++i) m_rows[i].label = static_cast<int>(i) + 1;
        return selected;
    }
    if (m_rows.empty() || m_images.empty()) return std::nullopt;
    m_rows.pop_back();
    m_images.pop_back();
    if (!m_entries.empty()) m_entries.pop_back();
    return m_rows.size();
}

void RawColorSide::Fill(const CTivVector& colors) {
    for (int i = 0; i < colors.GetSize(); ++i) Append({colors.GetData(i).AsRgb() & 0xFFFFFF}, i, true);
}

void RawColorSide::ClearRows() {
    m_images.clear();
    m_rows.clear();
}

void RawColorSide::ClearEntries() { m_entries.clear(); }

void RawColorSide::Clear() {
    ClearRows();
    ClearEntries();
}

CTivVector RawColorSide::GetColors() const {
    CTivVector colors(static_cast<int>(m_entries.size()), CTivData::FormatRgb, nullptr, true);
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        colors.SetData(static_cast<int>(i), CTivData(CTivData::FormatRgb, m_entries[i].color));
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
