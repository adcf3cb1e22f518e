#include "report/adaptation.h"

#include <lcms2.h>

namespace tonewright {

Xyz ToD50(const Xyz& color) {
    const cmsCIEXYZ white = {kWhiteD65[0], kWhiteD65[1], kWhiteD65[2]};
    const cmsCIEXYZ from = {color[0], color[1], color[2]};
    cmsCIEXYZ adapted = from;
    cmsAdaptToIlluminant(&adapted, &white, cmsD50_XYZ(), &from);
    return {adapted.X, adapted.Y, adapted.Z};
}

}  // namespace tonewright
