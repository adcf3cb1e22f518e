#pragma once

#include <string>

#include "foundation/CTivData.h"
#include "foundation/CTivParameter.h"

/// What the stream writers are told of an image, and what readers tell of a file: geometry, format and the metadata of
/// a 3D scan.
struct ImageParameters {
    ctiv::Parameter<int> width;   ///< pixels
    ctiv::Parameter<int> height;  ///< pixels
    ctiv::Parameter<CTivData::Format> format;
    ctiv::OptionalParameter<CTivRect> roi;
    ctiv::OptionalParameter<double> scaleX, scaleY, scaleZ;
    ctiv::OptionalParameter<double> offsetX, offsetY, offsetZ;
    ctiv::OptionalParameter<double> invalidZ;  ///< the value that stands for no measurement
    ctiv::OptionalParameter<int> distanceUnit;
    ctiv::OptionalParameter<long> spaceUsed;  ///< bytes
    ctiv::OptionalParameter<std::string> unitName;

    void ClearOptional() {
        roi.SetPresent(false);
        for (auto* value : {&scaleX, &scaleY, &scaleZ, &offsetX, &offsetY, &offsetZ, &invalidZ}) {
            value->SetPresent(false);
        }
        distanceUnit.SetPresent(false);
        spaceUsed.SetPresent(false);
        unitName.SetPresent(false);
    }
};
