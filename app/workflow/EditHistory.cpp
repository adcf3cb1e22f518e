#include "app/workflow/EditHistory.h"

#include <utility>

void EditHistory::Push(EditStep step) {
    m_undone.clear();
    m_done.push_back(std::move(step));
    if (m_done.size() > kMostSteps) m_done.pop_front();
}

void EditHistory::Extend(unsigned parts, const EditState& after) {
    m_undone.clear();
    m_done.back().parts |= parts;
    m_done.back().after = after;
}

std::optional<EditStep> EditHistory::Undo() {
    if (m_done.empty()) return std::nullopt;
    m_undone.push_back(std::move(m_done.back()));
    m_done.pop_back();
    return m_undone.back();
}

std::optional<EditStep> EditHistory::Redo() {
    if (m_undone.empty()) return std::nullopt;
    m_done.push_back(std::move(m_undone.back()));
    m_undone.pop_back();
    return m_done.back();
}

void EditHistory::Clear() {
    m_done.clear();
    m_undone.clear();
}

QString GetEditPartNames(unsigned parts) {
    constexpr std::pair<EditPart, const char*> kNames[] = {{kGammaPart, "gamma"},
                                                           {kSaturationPart, "saturation"},
                                                           {kColorsPart, "colors"},
                                                           {kValuesPart, "user's values"}};
    QString names;
    for (const auto& [part, name] : kNames) {
        if (parts & part) names += QString(names.isEmpty() ? "" : ", ") + name;
    }
    return names;
}
