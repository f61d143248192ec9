/// \file
/// zelkon::MouseArgs: the arguments of a control's mouse events, in the platform's codes.
#pragma once

#include <QtGlobal>

namespace zelkon {

/// What a mouse event of a child widget is to the control. The second press of a double click is
/// a Down like the first, as the platform reports it.
enum class MouseAction { Down, Up, Move };

/// The arguments of a control's mouse events. For a press or release the button that changed, for a
/// move the buttons held (left 1, right 2, middle 4); Shift 1, Ctrl 2, Alt 4; coordinates are the
/// receiving widget's own.
struct MouseArgs
{
    /// Buttons: left 1, right 2, middle 4.
    qint16 Button = 0;
    /// Modifiers held: Shift 1, Ctrl 2, Alt 4.
    qint16 Shift = 0;
    ///@{
    /// Position in pixels, in the receiving widget's coordinates.
    float X = 0;
    float Y = 0;
    ///@}
};

} // namespace zelkon
