#pragma once

#include "app/workflow/RawColorLists.h"
#include "foundation/CTivVector.h"

/// The colors that are picked by hand, as the steps of the work see them.
class ColorLists {
public:
    virtual ~ColorLists() = default;

    virtual const RawColorLists& Lists() const = 0;
    virtual void Restore(const RawColorLists& lists) = 0;
    virtual CTivVector GetRawColors() const = 0;  ///< FormatRgb, also when empty
    virtual CTivVector GetReferenceColors() const = 0;
    virtual void FillRawColors(const CTivVector& colors) = 0;
    virtual void FillReferenceColors(const CTivVector& colors) = 0;
    virtual void SetEnabled(bool enabled) = 0;  ///< colors may be picked
    virtual void SetMode(bool relative) = 0;
    virtual void AddColor() = 0;  ///< from the selected picture
    virtual void Remove() = 0;    ///< the marked color, or else the last
    virtual void RemoveLast() = 0;
    virtual void Clear() = 0;  ///< both sides
    /// A new picture came into a view.
    virtual void ClearSide(bool rawSide) = 0;
};
