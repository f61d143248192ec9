// Colour values as hosts pass them: 0x00BBGGRR, or 0x800000nn for the system colour nn.
#pragma once

#include <zelkon/common/global.h>

#include <QColor>
#include <QPalette>
#include <QVariant>

class QWidget;

namespace zelkon {

enum SystemColor : quint32 {
    SystemScrollBars = 0x80000000,
    SystemDesktop = 0x80000001,
    SystemActiveTitleBar = 0x80000002,
    SystemInactiveTitleBar = 0x80000003,
    SystemMenuBar = 0x80000004,
    SystemWindowBackground = 0x80000005,
    SystemWindowFrame = 0x80000006,
    SystemMenuText = 0x80000007,
    SystemWindowText = 0x80000008,
    SystemTitleBarText = 0x80000009,
    SystemActiveBorder = 0x8000000A,
    SystemInactiveBorder = 0x8000000B,
    SystemApplicationWorkspace = 0x8000000C,
    SystemHighlight = 0x8000000D,
    SystemHighlightText = 0x8000000E,
    SystemButtonFace = 0x8000000F,
    SystemButtonShadow = 0x80000010,
    SystemGrayText = 0x80000011,
    SystemButtonText = 0x80000012,
    SystemInactiveCaptionText = 0x80000013,
    SystemButtonHighlight = 0x80000014,
    System3DDKShadow = 0x80000015,
    System3DLight = 0x80000016,
    SystemInfoText = 0x80000017,
    SystemInfoBackground = 0x80000018,
};

// Only the low 32 bits count, so a colour stored as a signed 32-bit number (0x80000008 read back
// as -2147483640) means the same colour.
constexpr bool isSystemColor(qint64 oleColor)
{
    return (quint64(oleColor) & 0x80000000u) != 0;
}

// The colour itself; a system colour is looked up in `palette` (the application's by default).
// An unknown system colour index gives an invalid QColor.
ZELKON_EXPORT QColor toQColor(qint64 oleColor, const QPalette &palette = QPalette());
// The palette group and role that stand for a system colour index; false for an unknown one.
ZELKON_EXPORT bool systemColorRole(qint64 oleColor, QPalette::ColorGroup *group,
                                   QPalette::ColorRole *role);
// 0x00BBGGRR of an opaque colour.
ZELKON_EXPORT quint32 toOleColor(const QColor &color);
// A colour value read back from a property bag or passed by name: any number, its low 32 bits.
// Throws zelkon::Error 13 for a value that is no number.
ZELKON_EXPORT quint32 oleColorFromVariant(const QVariant &value);

// Gives `role` of the widget's palette the colour. A system colour follows the widget's default
// palette, so a widget set back to a system colour looks exactly like one never coloured.
ZELKON_EXPORT void applyOleColor(QWidget *widget, QPalette::ColorRole role, qint64 oleColor);

} // namespace zelkon
