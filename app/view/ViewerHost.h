#pragma once

/// What a viewer asks of the window that holds it.
class ViewerHost {
public:
    virtual ~ViewerHost() = default;

    /// Clears the selected flag of every viewer; the one that was clicked then sets its own.
    virtual void DeselectAllViewers() = 0;
    /// A double click moved a viewer's ROI: a color is picked from it where colors are selected by hand.
    virtual void RefreshManualPick() = 0;
    /// Whether colors are selected by hand.
    virtual bool PicksByHand() const = 0;
};
