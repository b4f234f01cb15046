// The user's own values, without the defaults that the machine's settings files provide behind them.
#pragma once

#include <QtCore/QSettings>

#include "VrUInfo/VornaConfig.h"

namespace vruinfo::tool
{

/// While it lives, the settings show nothing else.
class [[nodiscard]] OwnValues final
{
public:
    OwnValues() : m_withDefaults(g_globalSettings->fallbacksEnabled()) { g_globalSettings->setFallbacksEnabled(false); }
    OwnValues(const OwnValues&) = delete;
    OwnValues& operator=(const OwnValues&) = delete;
    ~OwnValues() { g_globalSettings->setFallbacksEnabled(m_withDefaults); }

private:
    bool m_withDefaults;
};

} // namespace vruinfo::tool
