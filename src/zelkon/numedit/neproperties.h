// zelkon::neProperties: the design-time page of NumEdit.
#pragma once

#include <zelkon/common/propertypage.h>

#include <memory>

namespace zelkon {

class nePropertiesPrivate;

class ZELKON_EXPORT neProperties : public PropertyPage
{
    Q_OBJECT

public:
    explicit neProperties(QWidget *parent = nullptr);
    ~neProperties() override;

    void SelectionChanged() override;
    void ApplyChanges() override;

private:
    std::unique_ptr<nePropertiesPrivate> d;
};

} // namespace zelkon
