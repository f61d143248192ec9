/// \file
/// zelkon::checkProperties: the design-time page of CheckCombo.
#pragma once

#include <zelkon/common/propertypage.h>

#include <memory>

namespace zelkon {

class checkPropertiesPrivate;

/// The design-time page of CheckCombo, made by createPropertyPage("checkProperties").
class ZELKON_EXPORT checkProperties : public PropertyPage
{
    Q_OBJECT

public:
    /// A page with its fields and no selection.
    explicit checkProperties(QWidget *parent = nullptr);
    ~checkProperties() override;

    /// Fills the fields from the first selected CheckCombo.
    void SelectionChanged() override;
    /// Writes the fields to the first selected CheckCombo, in order; a refused value is shown and
    /// stops the apply.
    void ApplyChanges() override;

private:
    std::unique_ptr<checkPropertiesPrivate> d;
};

} // namespace zelkon
