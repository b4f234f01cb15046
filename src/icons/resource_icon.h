// An icon that can be made before there is an application object.
#pragma once

#include <QtGui/QIcon>
#include <QtGui/QIconEngine>

namespace vruinfo::internal
{

/// Stands for a picture in the Qt resources. Qt's own file icons make a pixmap at once, which ends a process
/// that has no application object yet; this one becomes such an icon when it is first painted, and is asked
/// no pixmap before.
class ResourceIconEngine final : public QIconEngine
{
public:
    explicit ResourceIconEngine(QString path);

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    [[nodiscard]] QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) const override;
    [[nodiscard]] QIconEngine* clone() const override;

private:
    const QIcon& icon();

    QString m_path;
    QIcon m_icon; // null until first painted
};

} // namespace vruinfo::internal
