#include "ui/message_box_ui.h"

#include <algorithm>

#include <QMessageBox>
#include <QString>

#include "message_box_style.h"
#include "wide_text.h"

namespace internal = vrplatformbase::internal;

namespace
{

QMessageBox::Icon iconOf(unsigned int style)
{
    switch (style & internal::kIconMask) {
    case MB_ICONERROR:
        return QMessageBox::Critical;
    case MB_ICONQUESTION:
        return QMessageBox::Question;
    case MB_ICONWARNING:
        return QMessageBox::Warning;
    case MB_ICONINFORMATION:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

QMessageBox::StandardButton buttonOf(int answer)
{
    switch (answer) {
    case IDCANCEL:
        return QMessageBox::Cancel;
    case IDRETRY:
        return QMessageBox::Retry;
    case IDYES:
        return QMessageBox::Yes;
    case IDNO:
        return QMessageBox::No;
    default:
        return QMessageBox::Ok;
    }
}

int defaultAnswer(const internal::ButtonSet& buttons, unsigned int style)
{
    const std::size_t asked = (style & 0xF00U) >> 8U;
    return buttons.answers.at(asked < buttons.count ? asked : 0);
}

void addButtons(QMessageBox& box, const internal::ButtonSet& buttons)
{
    for (std::size_t i = 0; i < buttons.count; ++i)
        box.addButton(buttonOf(buttons.answers.at(i)));
    box.setEscapeButton(buttonOf(buttons.cautious));
}

int chosenAnswer(const QMessageBox& box, const internal::ButtonSet& buttons)
{
    const QMessageBox::StandardButton clicked = box.standardButton(box.clickedButton());
    const auto* end = buttons.answers.begin() + buttons.count;
    const auto* found =
        std::find_if(buttons.answers.begin(), end, [clicked](int answer) { return buttonOf(answer) == clicked; });
    return found != end ? *found : buttons.cautious;
}

QString toQString(const wchar_t* text)
{
    return QString::fromStdString(internal::toUtf8(text));
}

} // namespace

int VrShowQtMessageBox(const wchar_t* text, const wchar_t* caption, unsigned int style)
{
    const internal::ButtonSet& buttons = internal::buttonSetOf(style);
    QMessageBox box(iconOf(style), toQString(caption), toQString(text));
    box.setTextFormat(Qt::PlainText);
    box.setAttribute(Qt::WA_QuitOnClose, false); // at start-up it is the only window, and the host goes on after it
    addButtons(box, buttons);
    box.setDefaultButton(buttonOf(defaultAnswer(buttons, style)));
    box.exec();
    return chosenAnswer(box, buttons);
}
