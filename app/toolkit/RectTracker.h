#pragma once

#include "app/toolkit/ViewRect.h"

/// A rectangle with eight handles that a person moves and resizes with the mouse. Plain geometry in client pixels: the
/// widget draws it and passes the mouse on.
class RectTracker {
public:
    enum Style : int { NoStyle = 0, DottedLine = 2, ResizeInside = 8 };  ///< combined by "or"

    /// What a point is on. The eight handles come first, clockwise from the top left corner.
    enum class Hit { TopLeft, Top, TopRight, Right, BottomRight, Bottom, BottomLeft, Left, Middle, Nothing };
    static constexpr int kHandleCount = 8;
    static constexpr int kHandleSize = 7;   ///< pixels of a handle's side
    static constexpr int kMinimumSize = 2;  ///< no side gets shorter by resizing

    /// Which pointer tells what a drag from a place would do.
    enum class Cursor { Arrow, Move, Horizontal, Vertical, FallingDiagonal, RisingDiagonal };

    void SetStyle(int style) { m_style = style; }
    int GetStyle() const { return m_style; }
    void SetRect(const ViewRect& rect) { m_rect = rect; }
    const ViewRect& GetRect() const { return m_rect; }

    /// @return the handle under a point (with ResizeInside only; a corner before the sides where they overlap), Middle
    ///         for the rest of the rectangle
    Hit HitTest(ViewPoint point) const;
    /// @return the pixels of one of the eight handles, which lie inside the rectangle
    ViewRect HandleRect(Hit handle) const;
    static Cursor CursorFor(Hit hit);

    /// Begins to follow the mouse. @return false, and nothing begins, where the point hits nothing
    bool Begin(ViewPoint point);
    /// Moves or resizes. A moved rectangle keeps its size; no edge that moves leaves `bounds`, and none crosses the
    /// opposite one.
    void Follow(ViewPoint point, const ViewRect& bounds);
    /// Ends following. @return whether the rectangle is another one than at the beginning
    bool End();
    void Cancel();  ///< ends following and puts the rectangle back
    bool IsFollowing() const { return m_hit != Hit::Nothing; }

private:
    ViewRect m_rect;
    ViewRect m_rectAtBegin;
    ViewPoint m_pointAtBegin;
    Hit m_hit = Hit::Nothing;
    int m_style = NoStyle;
};
