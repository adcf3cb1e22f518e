#include <QDockWidget>
#include <QTest>

#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/RibbonBar.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CDockableImgPane.h"
#include "tests/app/studio.h"

namespace {

using FramePanes = Studio;

constexpr int kPaneCommands[] = {ID_CBTN_LOG, ID_CBTN_RAW_COLOR_LIST, ID_CBTN_SPECTRUM_VALUES, ID_CBTN_REF_IMG_VIEW,
                                 ID_CBTN_CALIB_IMG_VIEW};

TEST_F(FramePanes, EverySizeOfTheWindowIsPainted) {
    LoadChart();
    frame->show();
    for (const bool allPanes : {false, true}) {
        if (allPanes) {
            for (const int id : kPaneCommands) {
                if (!frame->GetAction(id)->isChecked()) Run(id);
            }
        }
        for (int width = 1; width < 1300; width += width < 500 ? 49 : 190) {
            for (int height = 1; height < 900; height += width < 500 ? 73 : 190) {
                frame->resize(width, height);
                QCoreApplication::processEvents();
                EXPECT_FALSE(frame->grab().isNull());
            }
        }
    }
    for (int width = 0; width < 8; ++width) {
        frame->ReferenceViewer().resize(width, 7 - width);
        frame->ReferenceViewer().grab();
    }
}

}  // namespace
