#include <zelkon/common/colors_p.h>
#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>

#include <QApplication>
#include <QWidget>

namespace zelkon {

namespace {

struct SystemEntry
{
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
};

// By index: the system colours of the platform the values come from, each mapped to the Qt role
// that paints the same part of a widget (the "window" of an edit box is its Base, for example).
constexpr SystemEntry systemTable[] = {
    {QPalette::Active, QPalette::Button}, // 0 scroll bars
    {QPalette::Active, QPalette::Window}, // 1 desktop
    {QPalette::Active, QPalette::Highlight}, // 2 active title bar
    {QPalette::Inactive, QPalette::Highlight}, // 3 inactive title bar
    {QPalette::Active, QPalette::Window}, // 4 menu bar
    {QPalette::Active, QPalette::Base}, // 5 window background
    {QPalette::Active, QPalette::Shadow}, // 6 window frame
    {QPalette::Active, QPalette::WindowText}, // 7 menu text
    {QPalette::Active, QPalette::Text}, // 8 window text
    {QPalette::Active, QPalette::HighlightedText}, // 9 title bar text
    {QPalette::Active, QPalette::Button}, // 10 active border
    {QPalette::Inactive, QPalette::Button}, // 11 inactive border
    {QPalette::Active, QPalette::Dark}, // 12 application workspace
    {QPalette::Active, QPalette::Highlight}, // 13 highlight
    {QPalette::Active, QPalette::HighlightedText}, // 14 highlight text
    {QPalette::Active, QPalette::Button}, // 15 button face
    {QPalette::Active, QPalette::Dark}, // 16 button shadow
    {QPalette::Disabled, QPalette::Text}, // 17 gray text
    {QPalette::Active, QPalette::ButtonText}, // 18 button text
    {QPalette::Inactive, QPalette::HighlightedText}, // 19 inactive caption text
    {QPalette::Active, QPalette::Light}, // 20 button highlight
    {QPalette::Active, QPalette::Shadow}, // 21 3D dark shadow
    {QPalette::Active, QPalette::Midlight}, // 22 3D light
    {QPalette::Active, QPalette::ToolTipText}, // 23 info text
    {QPalette::Active, QPalette::ToolTipBase}, // 24 info background
    {QPalette::Active, QPalette::Base}, // 25 (unused by the platform)
    {QPalette::Active, QPalette::Link}, // 26 hot light
    {QPalette::Active, QPalette::Highlight}, // 27 gradient active caption
    {QPalette::Inactive, QPalette::Highlight}, // 28 gradient inactive caption
    {QPalette::Active, QPalette::Highlight}, // 29 menu highlight
    {QPalette::Active, QPalette::Window}, // 30 menu bar
};

} // namespace

bool systemColorRole(qint64 oleColor, QPalette::ColorGroup *group, QPalette::ColorRole *role)
{
    const quint32 value = quint32(quint64(oleColor) & 0xffffffffu);
    if (!isSystemColor(value))
        return false;
    const quint32 index = value & 0x7fffffffu;
    if (index >= std::size(systemTable))
        return false;
    if (group)
        *group = systemTable[index].group;
    if (role)
        *role = systemTable[index].role;
    return true;
}

QColor toQColor(qint64 oleColor, const QPalette &palette)
{
    const quint32 value = quint32(quint64(oleColor) & 0xffffffffu);
    if (isSystemColor(value)) {
        QPalette::ColorGroup group;
        QPalette::ColorRole role;
        if (!systemColorRole(value, &group, &role))
            return QColor();
        return palette.color(group, role);
    }
    return QColor(int(value & 0xff), int((value >> 8) & 0xff), int((value >> 16) & 0xff));
}

quint32 toOleColor(const QColor &color)
{
    const QColor rgb = color.toRgb();
    return quint32(rgb.red()) | (quint32(rgb.green()) << 8) | (quint32(rgb.blue()) << 16);
}

quint32 oleColorFromVariant(const QVariant &value)
{
    const double number = CDbl(value);
    if (!(number >= -2147483648.0 && number <= 4294967295.0))
        throw Error(Overflow);
    return quint32(quint64(qint64(number)) & 0xffffffffu);
}

void applyOleColor(QWidget *widget, QPalette::ColorRole role, qint64 oleColor)
{
    if (!widget)
        return;
    QPalette palette = widget->palette();
    QPalette::ColorGroup group;
    QPalette::ColorRole systemRole;
    if (isSystemColor(oleColor) && systemColorRole(oleColor, &group, &systemRole)) {
        // Every group of the default palette, so that disabled and inactive looks stay native.
        const QPalette base = QApplication::palette(widget);
        for (QPalette::ColorGroup g : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            const QPalette::ColorGroup from = group == QPalette::Active ? g : group;
            palette.setColor(g, role, base.color(from, systemRole));
        }
    } else {
        const QColor color = toQColor(oleColor);
        if (!color.isValid())
            return;
        palette.setColor(role, color);
    }
    widget->setPalette(palette);
}

} // namespace zelkon
