// The values that a start writes into the settings tree. The tool takes them back: who looks, or changes another value,
// must not find the next start to be a different one.
#pragma once

#include <QtCore/QMap>
#include <QtCore/QVariant>

namespace vruinfo::tool
{

/// Whether a start may write a value of that name.
[[nodiscard]] bool isIdentityName(const QString& name);

/// The values as they are before a start; the settings must be open.
class IdentityValues final
{
public:
    IdentityValues();
    void putBack() const;

private:
    QMap<QString, QVariant> m_values;
};

} // namespace vruinfo::tool
