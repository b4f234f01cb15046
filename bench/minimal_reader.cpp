// The least that a program on the settings library does to print one value of a settings file: what `vruinfo get` is
// measured against.
//
//   minimal_reader KEY
#include <cstdio>

#include <QtCore/QSettings>

int main(int argc, char** argv)
{
    const QSettings settings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("HALVIK/VORNA/2026"),
                             QStringLiteral("VORNA"));
    const QString text = argc > 1 ? settings.value(QString::fromUtf8(argv[1])).toString() : QString();
    std::printf("%s\n", text.mid(2).toUtf8().constData());
    return 0;
}
