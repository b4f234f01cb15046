// Snapshots of an item's sub-items and values.
#include <algorithm>
#include <array>
#include <memory>

#include <QtCore/QStringList>

#include "VrUInfo/VornaConfig.h"
#include "store/items.h"
#include "store/store_group.h"
#include "text/wide_text.h"

namespace vruinfo::internal
{
namespace
{

using Names = QList<QString>;

/// Where an iterator stands: its snapshot and its position.
struct Place {
    const Names* list;
    int index;

    [[nodiscard]] bool isInside() const { return list && index >= 0 && index < list->size(); }
    [[nodiscard]] const QString& element() const { return list->at(index); }
};

unsigned int step(std::int32_t& index, std::int32_t count)
{
    if (index < 0 || index >= count)
        return Vorn::eBadPosition;
    ++index;
    return Vorn::eOk;
}

/// Fills an iterator's fields; an iterator that was filled before keeps its earlier names in front.
class Snapshot final
{
public:
    Snapshot(Names* list, std::int32_t& index, std::int32_t& count) : m_list(list), m_index(index), m_count(count)
    {
        m_index = m_count = 0;
    }
    /// The names found at the path, then the path itself, which is not counted.
    [[nodiscard]] unsigned int take(const std::optional<KeyPath>& path, QStringList (StoreGroup::*names)() const)
    {
        if (!path)
            return Vorn::eFailed;
        const QString base = path->copy();
        m_list->append((StoreGroup(base).*names)());
        m_count = m_list->size();
        m_list->append(base);
        return m_count < 1 ? Vorn::eNotFound : Vorn::eOk;
    }

private:
    Names* m_list;
    std::int32_t& m_index;
    std::int32_t& m_count;
};

std::optional<KeyPath> enumerable(const wchar_t* key)
{
    return key && isStoreThere() ? freePath(key) : std::nullopt;
}

/// The sub-item at the position as a path of its own: below the base path, or the base path itself.
QString subItemPath(const Place& place)
{
    const QString& name = place.element();
    const QString& base = place.list->last();
    if (place.list->size() > 1 && !base.isEmpty() && name != base)
        return base + QLatin1Char('/') + name;
    return name;
}

/// The name as it is after the way through wide text, which ends at the first zero.
QString asWideText(const QString& name)
{
    const int end = name.indexOf(QChar::Null);
    return end < 0 ? name : name.left(end);
}

} // namespace
} // namespace vruinfo::internal

using namespace vruinfo::internal;

VornaConfig::ItemIterator::ItemIterator() : m_list(std::make_unique<Names>().release()) {}

VornaConfig::ItemIterator::~ItemIterator()
{
    delete m_list;
}

unsigned int VornaConfig::ItemIterator::step() const
{
    return vruinfo::internal::step(m_index, m_count);
}

unsigned int VornaConfig::ItemIterator::name(wchar_t* buffer, int& length) const
{
    const Place place{m_list, m_index};
    if (!place.isInside())
        return Vorn::eBadPosition;
    const std::wstring text = toWide(place.element());
    const int needed = static_cast<int>(text.size()) + 1;
    const bool fits = buffer && needed <= length;
    length = needed;
    if (!fits)
        return Vorn::eBufferTooSmall;
    std::wmemcpy(buffer, text.c_str(), text.size() + 1);
    return Vorn::eOk;
}

VornaConfig::ValueIterator::ValueIterator() : m_list(std::make_unique<Names>().release()) {}

VornaConfig::ValueIterator::~ValueIterator()
{
    delete m_list;
}

unsigned int VornaConfig::ValueIterator::step() const
{
    return vruinfo::internal::step(m_index, m_count);
}

unsigned int VornaConfig::ValueIterator::key(wchar_t* buffer, int& length) const
{
    const Place place{m_list, m_index};
    if (!place.isInside())
        return Vorn::eBadPosition;
    const QString& name = place.element();
    const bool fits = buffer && length > name.size();
    length = name.size() + 1;
    if (!fits)
        return Vorn::eBufferTooSmall;
    widen(name.constData(), static_cast<std::size_t>(name.size()), buffer);
    return Vorn::eOk;
}

unsigned int VornaConfig::ValueIterator::value(VornVariant& out) const
{
    const Place place{m_list, m_index};
    if (!place.isInside())
        return Vorn::eBadPosition;
    const QString& name = place.element();
    if (name.size() >= static_cast<int>(kPathCapacity))
        return Vorn::eBufferTooSmall;
    if (m_list->last().isEmpty() || !isStoreThere())
        return Vorn::eMissing;
    return readValue(m_list->last(), asWideText(name), out);
}

unsigned int VornaConfig::ValueIterator::setValue(const VornVariant& value)
{
    std::array<wchar_t, kPathCapacity> name{};
    int length = kPathCapacity;
    const unsigned int status = key(name.data(), length);
    if (status != Vorn::eOk)
        return status;
    return WriteValueToReg(toWide(m_list->last()).c_str(), name.data(), value);
}

unsigned int VornaConfig::findItem(const wchar_t* key, ItemIterator& iterator)
{
    return Snapshot(iterator.m_list, iterator.m_index, iterator.m_count)
        .take(enumerable(key), &StoreGroup::childGroups);
}

unsigned int VornaConfig::findItem(const wchar_t* key, ValueIterator& iterator)
{
    return Snapshot(iterator.m_list, iterator.m_index, iterator.m_count).take(enumerable(key), &StoreGroup::childKeys);
}

unsigned int VornaConfig::findItem(Path root, const wchar_t* subkey, ItemIterator& iterator)
{
    return Snapshot(iterator.m_list, iterator.m_index, iterator.m_count)
        .take(storedItemPath(*this, root, subkey), &StoreGroup::childGroups);
}

unsigned int VornaConfig::findItem(Path root, const wchar_t* subkey, ValueIterator& iterator)
{
    return Snapshot(iterator.m_list, iterator.m_index, iterator.m_count)
        .take(storedItemPath(*this, root, subkey), &StoreGroup::childKeys);
}

unsigned int VornaConfig::getValue(const ItemIterator& iterator, const wchar_t* name, VornVariant& out) const
{
    std::array<wchar_t, kPathCapacity> item{};
    int length = kPathCapacity;
    const unsigned int status = iterator.name(item.data(), length);
    if (status != Vorn::eOk)
        return status;
    if (item[0] == L'\0' || !isStoreThere())
        return Vorn::eMissing;
    return readValue(subItemPath({iterator.m_list, iterator.m_index}), toQString(name), out);
}

unsigned int VornaConfig::setValue(ItemIterator& iterator, const wchar_t* name, const VornVariant& value) const
{
    if (!iterator.m_list)
        return Vorn::eNotFound;
    std::array<wchar_t, kPathCapacity> item{};
    int length = kPathCapacity;
    const unsigned int status = iterator.name(item.data(), length);
    if (status != Vorn::eOk)
        return status;
    return WriteValueToReg(toWide(subItemPath({iterator.m_list, iterator.m_index})).c_str(), name, value);
}
