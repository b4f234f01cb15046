// How texts are encoded in a settings file: other characters than ASCII as escapes, whatever was read.
#pragma once

#include <QtCore/QSettings>

namespace vruinfo::internal
{

/// To be called on a settings object that was just opened. A byte-order mark at the beginning of a file, which an
/// editor may have put there (also into one of the defaults for all users), makes the settings library read it as
/// UTF-8, but also write so from then on, without a mark: nobody could read that back.
inline void keepEscapes(QSettings& settings)
{
    if (!settings.iniCodec())
        return;
    settings.allKeys(); // what was read is taken as what it is
    settings.setIniCodec(static_cast<QTextCodec*>(nullptr));
}

} // namespace vruinfo::internal
