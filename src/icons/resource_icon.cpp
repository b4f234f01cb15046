#include "icons/resource_icon.h"

#include <memory>
#include <utility>

#include <QtGui/QImageReader>
#include <QtGui/QPainter>
#include <QtGui/QPixmap>

namespace vruinfo::internal
{

ResourceIconEngine::ResourceIconEngine(QString path) : m_path(std::move(path)) {}

const QIcon& ResourceIconEngine::icon()
{
    if (m_icon.isNull())
        m_icon = QIcon(m_path);
    return m_icon;
}

void ResourceIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state)
{
    icon().paint(painter, rect, Qt::AlignCenter, mode, state);
}

QPixmap ResourceIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state)
{
    return icon().pixmap(size, mode, state);
}

QSize ResourceIconEngine::actualSize(const QSize& size, QIcon::Mode, QIcon::State)
{
    const QSize picture = QImageReader(m_path).size();
    const bool isLarger = picture.width() > size.width() || picture.height() > size.height();
    return isLarger ? picture.scaled(size, Qt::KeepAspectRatio) : picture;
}

QList<QSize> ResourceIconEngine::availableSizes(QIcon::Mode, QIcon::State) const
{
    return {QImageReader(m_path).size()};
}

QIconEngine* ResourceIconEngine::clone() const
{
    return std::make_unique<ResourceIconEngine>(*this).release();
}

} // namespace vruinfo::internal
