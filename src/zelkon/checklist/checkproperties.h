// zelkon::checkProperties: the design-time page of CheckCombo.
#pragma once

#include <zelkon/common/propertypage.h>

#include <memory>

namespace zelkon {

class checkPropertiesPrivate;

class ZELKON_EXPORT checkProperties : public PropertyPage
{
    Q_OBJECT

public:
    explicit checkProperties(QWidget *parent = nullptr);
    ~checkProperties() override;

    void SelectionChanged() override;
    void ApplyChanges() override;

private:
    std::unique_ptr<checkPropertiesPrivate> d;
};

} // namespace zelkon
