/// \file VrUInfo.h
/// Everything that libVrUInfo.so offers.
#pragma once

#include "VrUInfo/Diagnostics.h"
#include "VrUInfo/ErrorStatus.h"
#include "VrUInfo/Export.h"
#include "VrUInfo/FirstRun.h"
#include "VrUInfo/Lookups.h"
#include "VrUInfo/Naming.h"
#include "VrUInfo/Oem.h"
#include "VrUInfo/Paths.h"
#include "VrUInfo/Resources.h"
#include "VrUInfo/RootKeys.h"
#include "VrUInfo/Settings.h"
#include "VrUInfo/VornVariant.h"
#include "VrUInfo/VornaConfig.h"
#include "VrUInfo/VornaLanguage.h"
#include "VrUInfo/VornaProduct.h"
