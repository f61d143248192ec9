#include <zelkon/common/registry.h>
#include <zelkon/dropdown/lbvalue_p.h>

namespace zelkon {

ZELKON_REGISTER_OBJECT(LBValue, "LBValue");

LBValue::LBValue(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<LBValuePrivate>())
{ }

LBValue::~LBValue() = default;

QString LBValue::Text() const
{
    return d->text;
}

void LBValue::setText(const QString &text)
{
    d->text = text;
}

QVariant LBValue::Value() const
{
    return d->value;
}

void LBValue::setValue(const QVariant &value)
{
    d->value = value;
}

bool LBValue::Checked() const
{
    return d->checked;
}

void LBValue::setChecked(bool checked)
{
    d->checked = checked;
}

QString LBValue::Key() const
{
    return d->key;
}

} // namespace zelkon
