// A host with a window: the identity as its title, the icon, and a setting that counts the starts.
//
//   window [--quit-after MILLISECONDS]    with it, says on standard output what it shows, and ends by itself
#include <cstdint>
#include <cstdio>
#include <cstring>

#include <QtCore/QStringList>
#include <QtCore/QTimer>
#include <QtGui/QIcon>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

#include <VrUInfo/VrUInfo.h>

namespace
{

constexpr wchar_t kStarts[] = L"Window/Starts";

/// A value's payload stands behind the size word of its block.
char* payload(const VornVariant& value)
{
    return static_cast<char*>(value.data) + sizeof(std::uint32_t);
}

std::int32_t storedStarts()
{
    VornVariant value;
    std::int32_t starts = 0;
    const bool isThere = vornConfig()->getValue(VornaConfig::SettingsRoot, kStarts, value) == Vorn::eOk;
    if (isThere && value.type == VornVariant::kVarInt32)
        std::memcpy(&starts, payload(value), sizeof starts);
    return starts;
}

bool storeStarts(std::int32_t starts)
{
    VornVariant value;
    value.type = VornVariant::kVarInt32;
    value.data = VornVariant::allocateValue(value.type, 0);
    std::memcpy(payload(value), &starts, sizeof starts);
    return vornConfig()->setValue(VornaConfig::SettingsRoot, kStarts, value) == Vorn::eOk;
}

QString text(const wchar_t* wide)
{
    return QString::fromWCharArray(wide);
}

class Window final : public QWidget
{
public:
    explicit Window(std::int32_t starts)
    {
        setWindowTitle(QStringLiteral("%1 by %2").arg(text(GetOemProductName()), text(GetOemCompanyName())));
        if (const QIcon* const icon = GetOemAppIcon(true))
            setWindowIcon(*icon);
        m_picture.setPixmap(windowIcon().pixmap(32));
        m_words.setText(
            QStringLiteral("Language: %1\nStarts: %2").arg(text(GetCurrentLanguageGlobalName())).arg(starts));
        m_layout.addWidget(&m_picture);
        m_layout.addWidget(&m_words);
    }

    void say() const
    {
        const QPixmap picture = m_picture.pixmap(Qt::ReturnByValue);
        std::printf("Title: %s\nIcon: %d x %d\n%s\n", qPrintable(windowTitle()), picture.width(), picture.height(),
                    qPrintable(m_words.text()));
    }

private:
    QHBoxLayout m_layout{this};
    QLabel m_picture;
    QLabel m_words;
};

/// What stands behind --quit-after; -1 without it.
int patience(const QStringList& arguments)
{
    const int place = arguments.indexOf(QStringLiteral("--quit-after"));
    return place < 0 ? -1 : arguments.value(place + 1).toInt();
}

} // namespace

int main(int argc, char** argv)
{
    // Before the application object: a question of the start is asked in a dialog of its own.
    if (InitVornConfig(nullptr, nullptr, nullptr, nullptr) != Vorn::eOk)
        return 1;
    const std::int32_t starts = storedStarts() + 1;
    if (!storeStarts(starts))
        return 1;

    const QApplication application(argc, argv);
    Window window(starts);
    window.show();
    const int milliseconds = patience(QApplication::arguments());
    if (milliseconds >= 0)
        QTimer::singleShot(milliseconds, &window, [&window] {
            window.say();
            window.close();
        });
    return QApplication::exec();
}
