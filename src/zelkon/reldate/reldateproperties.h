// zelkon::RelDateProperties: the design-time page of RelDate.
#pragma once

#include <zelkon/common/propertypage.h>

#include <memory>

namespace zelkon {

class RelDatePropertiesPrivate;

class ZELKON_EXPORT RelDateProperties : public PropertyPage
{
    Q_OBJECT

public:
    explicit RelDateProperties(QWidget *parent = nullptr);
    ~RelDateProperties() override;

    void SelectionChanged() override;
    void ApplyChanges() override;

private:
    std::unique_ptr<RelDatePropertiesPrivate> d;
};

} // namespace zelkon
