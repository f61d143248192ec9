#include <zelkon/common/conversions.h>
#include <zelkon/common/error.h>
#include <zelkon/common/extent_p.h>
#include <zelkon/common/ignoreerrors_p.h>
#include <zelkon/common/propertybag.h>

#include <QWidget>

#include <cmath>

namespace zelkon {

int toPixels(double value)
{
    if (!(std::fabs(value) <= double(QWIDGETSIZE_MAX)))
        throw Error(Overflow);
    return int(std::lround(value));
}

void writeExtent(const QWidget &widget, PropertyBag &bag, ExtentKeys keys)
{
    const auto write = [&bag](const char *key, int value) {
        attempt([&] { bag.WriteProperty(QLatin1String(key), float(value), float(value)); });
    };
    if (keys == ExtentKeys::PositionAndSize) {
        write("Left", widget.x());
        write("Top", widget.y());
    }
    write("Height", widget.height());
    write("Width", widget.width());
}

void readExtent(QWidget &widget, const PropertyBag &bag, ExtentKeys keys)
{
    const auto read = [&bag](const char *key, int current) {
        return toPixels(CDbl(bag.ReadProperty(QLatin1String(key), float(current))));
    };
    if (keys == ExtentKeys::PositionAndSize) {
        attempt([&] { widget.move(read("Left", widget.x()), widget.y()); });
        attempt([&] { widget.move(widget.x(), read("Top", widget.y())); });
    }
    attempt([&] { widget.resize(widget.width(), qMax(0, read("Height", widget.height()))); });
    attempt([&] { widget.resize(qMax(0, read("Width", widget.width())), widget.height()); });
}

} // namespace zelkon
