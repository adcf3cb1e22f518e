#include "quality/finding_words_impl.h"

#include "foundation/fixed_text.h"

namespace tonewright {

std::string Percent(double fraction) { return FixedText(100 * fraction, 0) + " %"; }

std::string PatchList(const std::vector<int>& patches) {
    constexpr std::size_t kRun = 3;  // so many in a row become "1 to 3"
    std::vector<std::string> parts;
    for (std::size_t i = 0, end = 0; i < patches.size(); i = end) {
        for (end = i + 1; end < patches.size() && patches[end] == patches[end - 1] + 1;) ++end;
        if (end - i < kRun) end = i + 1;
        parts.push_back(std::to_string(patches[i]) + (end - i < kRun ? "" : " to " + std::to_string(patches[end - 1])));
    }
    std::string text = patches.size() == 1 ? "patch " : "patches ";
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) text += i + 1 == parts.size() ? " and " : ", ";
        text += parts[i];
    }
    return text;
}

std::string PatchWords(const std::vector<int>& patches) {
    std::string text = PatchList(patches) + (patches.size() == 1 ? " is" : " are");
    text.front() = 'P';
    return text;
}

}  // namespace tonewright
