// Whether a resource library can be used: it loads, and has what the program reads from it.
#pragma once

#include <vector>

#include <QtCore/QString>

#include "doctor/finding.h"

namespace vruinfo::tool::doctor
{

struct ResourceLibrary {
    QString path;             ///< Or a bare name, which the system's loader looks for.
    const char* idPrefix;     ///< Of the findings: "not-loadable", "strings-missing" and "no-icon" follow.
    Severity whenNotLoadable; ///< How bad it is.
    QString consequence;      ///< Of its not being loadable: the end of a sentence.
    const char* icon;         ///< Where it puts its icon.
    std::vector<unsigned int> texts;
};

/// Loads it in a process of its own.
[[nodiscard]] Findings checkResourceLibrary(const ResourceLibrary& library);

/// The texts of a brand: company, product, full legal name.
[[nodiscard]] std::vector<unsigned int> brandTexts();

} // namespace vruinfo::tool::doctor
