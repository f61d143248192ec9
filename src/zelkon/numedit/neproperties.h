/// \file
/// zelkon::neProperties: the design-time page of NumEdit.
#pragma once

#include <zelkon/common/propertypage.h>

#include <memory>

namespace zelkon {

class nePropertiesPrivate;

/// The design-time page of NumEdit, made by createPropertyPage("neProperties").
class ZELKON_EXPORT neProperties : public PropertyPage
{
    Q_OBJECT

public:
    /// A page with its fields and no selection.
    explicit neProperties(QWidget *parent = nullptr);
    ~neProperties() override;

    /// Fills the fields from the first selected NumEdit.
    void SelectionChanged() override;
    /// Writes the fields to the first selected NumEdit, in order; a refused value is shown and
    /// stops the apply.
    void ApplyChanges() override;

private:
    std::unique_ptr<nePropertiesPrivate> d;
};

} // namespace zelkon
