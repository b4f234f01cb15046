#include "input_file.h"

#include <cstdio>

#include <QtCore/QFile>

namespace vruinfo::tool
{
namespace
{

constexpr qint64 kPiece = qint64{1} << 20;

bool isStandardInput(const QString& name)
{
    return name == QLatin1Char('-');
}

bool open(QFile& file, const QString& name)
{
    return isStandardInput(name) ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
}

Problem unreadable(const QString& name, const QFile& file)
{
    return {Exit::Failed, QStringLiteral("%1 cannot be read: %2").arg(shownInput(name), file.errorString())};
}

Problem tooLarge(const QString& name)
{
    return {Exit::Failed,
            QStringLiteral("%1 is larger than %2 bytes; that is no export").arg(shownInput(name)).arg(kLargestInput)};
}

} // namespace

QString shownInput(const QString& name)
{
    return isStandardInput(name) ? QStringLiteral("standard input") : name;
}

Result<QByteArray> readInput(const QString& name)
{
    QFile file(name);
    if (!open(file, name))
        return unreadable(name, file);
    if (file.size() > kLargestInput)
        return tooLarge(name);
    QByteArray content;
    for (QByteArray piece = file.read(kPiece); !piece.isEmpty(); piece = file.read(kPiece)) {
        content += piece;
        if (content.size() > kLargestInput)
            return tooLarge(name);
    }
    return file.error() == QFileDevice::NoError ? Result<QByteArray>(content) : unreadable(name, file);
}

} // namespace vruinfo::tool
