// The platform's key codes, shift states and mouse buttons, translated from Qt's events.
#pragma once

#include <zelkon/common/global.h>
#include <zelkon/common/mouseargs.h>

#include <QKeyEvent>
#include <QMouseEvent>

namespace zelkon {

enum KeyCode : int {
    KeyBack = 8,
    KeyTab = 9,
    KeyReturn = 13,
    KeyShift = 16,
    KeyControl = 17,
    KeyMenu = 18,
    KeyEscape = 27,
    KeySpace = 32,
    KeyPageUp = 33,
    KeyPageDown = 34,
    KeyEnd = 35,
    KeyHome = 36,
    KeyLeft = 37,
    KeyUp = 38,
    KeyRight = 39,
    KeyDown = 40,
    KeyInsert = 45,
    KeyDelete = 46,
    Key0 = 48, // "0" .. "9" are 48 .. 57
    KeyA = 65, // "A" .. "Z" are 65 .. 90
    KeyNumpad0 = 96, // keypad digits are 96 .. 105
    KeyMultiply = 106,
    KeyAdd = 107,
    KeySubtract = 109,
    KeyDecimal = 110,
    KeyDivide = 111,
    KeyF1 = 112, // F1 .. F12 are 112 .. 123
};

enum ShiftMask : qint16 { ShiftKey = 1, CtrlKey = 2, AltKey = 4 };
enum MouseButtonCode : qint16 { LeftButtonCode = 1, RightButtonCode = 2, MiddleButtonCode = 4 };

// Key code of a key press or release (0 for keys the platform has no code for). The letter keys
// of a layout in another script give the codes of the Latin letters in their places.
ZELKON_EXPORT int keyCode(const QKeyEvent *event);
// The character code a key press types (KeyAscii): 13 for Enter, 8 for Backspace, 27 for Esc,
// the character otherwise; 0 when the key types nothing.
ZELKON_EXPORT int keyAscii(const QKeyEvent *event);
// The Qt key of a platform key code (Qt::Key_unknown when none).
ZELKON_EXPORT int qtKey(int keyCode);
ZELKON_EXPORT qint16 shiftState(Qt::KeyboardModifiers modifiers);
ZELKON_EXPORT qint16 mouseButtonCode(Qt::MouseButtons buttons);

// The platform's arguments of a mouse event, in the receiving widget's coordinates.
ZELKON_EXPORT MouseArgs mouseArgs(const QMouseEvent *event);

} // namespace zelkon
