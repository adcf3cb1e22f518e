#include "report/patch_tables.h"

#include "report/adaptation.h"
#include "report/markup_impl.h"

namespace tonewright {

namespace {

using markup::Fixed;

std::string joined(std::initializer_list<double> values, int decimals, char separator) {
    std::string text;
    for (const double value : values) {
        if (!text.empty()) text += separator;
        text += Fixed(value, decimals);
    }
    return text;
}

std::string quoted(const std::string& field) {
    if (field.find_first_of(",\"\r\n") == std::string::npos) return field;
    std::string text = "\"";
    for (const char c : field) text += c == '"' ? std::string("\"\"") : std::string(1, c);
    return text + "\"";
}

}  // namespace

std::string CgatsTable(std::span<const ReportPatch> patches, const std::string& created) {
    std::string text =
        "CTI3\n\nDESCRIPTOR \"Camera colors and their targets\"\nORIGINATOR \"Tonewright\"\nCREATED \"" + created +
        "\"\nDEVICE_CLASS \"INPUT\"\nCOLOR_REP \"XYZ_RGB\"\n\nNUMBER_OF_FIELDS 10\nBEGIN_DATA_FORMAT\n"
        "SAMPLE_ID RGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z LAB_L LAB_A LAB_B\nEND_DATA_FORMAT\n\nNUMBER_OF_SETS " +
        std::to_string(patches.size()) + "\nBEGIN_DATA\n";
    for (const ReportPatch& patch : patches) {
        const Xyz xyz = ToD50(ToXyz(patch.color.target));
        const Lab lab = XyzToLab(xyz, kWhiteD50);
        text += std::to_string(patch.number) + " " +
                joined({100 * patch.color.measured[0], 100 * patch.color.measured[1], 100 * patch.color.measured[2],
                        100 * xyz[0], 100 * xyz[1], 100 * xyz[2], lab[0], lab[1], lab[2]},
                       5, ' ') +
                "\n";
    }
    return text + "END_DATA\n";
}

std::string PatchCsv(std::span<const ReportPatch> patches, int fullScale) {
    std::string text =
        "number,name,raw_r,raw_g,raw_b,target_L,target_a,target_b,delivered_L,delivered_a,delivered_b,before_dE00,"
        "delivered_dE00,delivered_dE76\r\n";
    for (const ReportPatch& patch : patches) {
        const Lab& target = patch.color.targetLab;
        const Lab& delivered = patch.color.deliveredLab;
        text += std::to_string(patch.number) + "," + quoted(patch.name) + "," +
                joined({patch.color.measured[0] * fullScale, patch.color.measured[1] * fullScale,
                        patch.color.measured[2] * fullScale},
                       0, ',') +
                "," +
                joined({target[0], target[1], target[2], delivered[0], delivered[1], delivered[2], patch.before,
                        patch.difference, DeltaE76(delivered, target)},
                       4, ',') +
                "\r\n";
    }
    return text;
}

}  // namespace tonewright
