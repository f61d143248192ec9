/// \file
/// zelkon::RelDateProperties: the design-time page of RelDate.
#pragma once

#include <zelkon/common/propertypage.h>

#include <memory>

namespace zelkon {

class RelDatePropertiesPrivate;

/// The design-time page of RelDate, made by createPropertyPage("RelDateProperties").
class ZELKON_EXPORT RelDateProperties : public PropertyPage
{
    Q_OBJECT

public:
    /// A page with its fields and no selection.
    explicit RelDateProperties(QWidget *parent = nullptr);
    ~RelDateProperties() override;

    /// Fills the fields from the first selected RelDate.
    void SelectionChanged() override;
    /// Writes the fields to the first selected RelDate, in order; a refused value is skipped.
    void ApplyChanges() override;

private:
    std::unique_ptr<RelDatePropertiesPrivate> d;
};

} // namespace zelkon
