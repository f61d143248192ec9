// Filling a combo box from an input array: element 0 the texts, element 1 the identifiers.
#pragma once

class QComboBox;
class QVariant;

namespace zelkon {

enum class Identifiers { Required, Optional };

// Empties `combo` and appends row i = (CStr(input(0)(i)), CLng(input(1)(i))) for i from 0 to the
// upper bound of the texts; with optional identifiers an Empty element 1 leaves every row's
// identifier at 0. Leaves no row selected. Throws zelkon::Error: 13 when `input` or an element is
// no array, 9 for a missing element (an identifier array shorter than the texts), 6 for more rows
// than a 16-bit count holds; the rows appended before the failure stay.
void loadInputArray(QComboBox *combo, const QVariant &input, Identifiers identifiers);

// The identifier of a row (0 for a row without one).
int rowIdentifier(const QComboBox *combo, int row);

} // namespace zelkon
