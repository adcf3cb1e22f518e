#include "app/panes/quality_texts.h"

#include <algorithm>
#include <cmath>

using namespace tonewright;

namespace quality_texts {

namespace {

QString nameOf(const ReportPatch& patch) {
    return QString("%1 %2").arg(patch.number).arg(QString::fromStdString(patch.name)).trimmed();
}

QString lab(const Lab& color) {
    return QString("%1, %2, %3").arg(Difference(color[0]), Difference(color[1]), Difference(color[2]));
}

}  // namespace

QString Difference(double value) { return std::isfinite(value) ? QString::number(value, 'f', 1) : QString("–"); }

QString Headline(const Report& report) { return Difference(report.mean); }

QString Figures(const Report& report) {
    QString text;
    const auto worst =
        std::max_element(report.patches.begin(), report.patches.end(),
                         [](const ReportPatch& a, const ReportPatch& b) { return a.difference < b.difference; });
    if (worst != report.patches.end()) {
        text = QString("worst %1 (%2)\n").arg(Difference(worst->difference), nameOf(*worst));
    }
    if (report.unseen) text += QString("patches left out %1\n").arg(Difference(*report.unseen));
    text += QString("before %1").arg(Difference(report.before));
    return report.inPicture.empty() ? text : text + "\n" + QString::fromStdString(report.inPicture) + ".";
}

QString PatchNumbers(const ReportPatch& patch) {
    return QString("%1: %2 (before %3)\nwanted L*a*b* %4\ndelivered L*a*b* %5")
        .arg(nameOf(patch), Difference(patch.difference), Difference(patch.before), lab(patch.color.targetLab),
             lab(patch.color.deliveredLab));
}

QString Findings(const std::vector<Finding>& findings, const char* without) {
    if (findings.empty()) return without;
    QString text;
    for (const Finding& finding : findings) {
        QString word = GetSeverityName(finding.severity);
        word[0] = word[0].toUpper();
        text += QString("<p style=\"margin:0 0 6px 0\"><b>%1:</b> %2</p>")
                    .arg(word, QString::fromStdString(finding.text).toHtmlEscaped());
    }
    return text;
}

}  // namespace quality_texts
