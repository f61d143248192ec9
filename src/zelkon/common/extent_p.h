// The container's position and size keys of a control's property bag.
#pragma once

#include <zelkon/common/global.h>

class QWidget;

namespace zelkon {

class PropertyBag;

enum class ExtentKeys { PositionAndSize, SizeOnly };

// Writes "Left", "Top", "Height", "Width" (or only the last two), each with its current value as
// both value and default. A bag keeps nothing that equals its default, so nothing is stored: the
// container keeps the geometry itself, and saved forms rely on this pairing, so it stays.
void writeExtent(const QWidget &widget, PropertyBag &bag,
                 ExtentKeys keys = ExtentKeys::PositionAndSize);
// Reads the same keys in the same order, each with its current value as default, and applies
// each on its own: a damaged value leaves only its own coordinate as it was. Never throws.
void readExtent(QWidget &widget, const PropertyBag &bag,
                ExtentKeys keys = ExtentKeys::PositionAndSize);

// A position or length in container units as whole pixels (rounded); error 6 when the value is
// not finite or lies past the largest widget Qt allows.
int toPixels(double value);

} // namespace zelkon
