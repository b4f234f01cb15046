// Whether a resource library can be used: it loads, and has what the program reads from it.
#pragma once

#include <cstddef>
#include <vector>

#include <QtCore/QString>

#include "doctor/finding.h"

namespace vruinfo::tool::doctor
{

/// A text that is read from a library.
struct LibraryText {
    unsigned int id;
    std::size_t limit; ///< So many characters are read.
    const char* name;  ///< What it is, where a finding should say so; null otherwise.
};

struct ResourceLibrary {
    QString path;                   ///< Or a bare name, which the system's loader looks for.
    const char* idPrefix;           ///< Of the findings: "not-loadable", "strings-missing" and so on follow.
    Severity whenNotLoadable;       ///< How bad it is.
    QString consequence;            ///< Of its not being loadable: the end of a sentence.
    const char* icon;               ///< Where it puts its icon.
    std::vector<LibraryText> texts; ///< That it should have.
    QString remedyOfLack;           ///< When something is not there or too long.
};

/// Loads it in a process of its own.
[[nodiscard]] Findings checkResourceLibrary(const ResourceLibrary& library);
/// The same for a partner's library, of which every text is looked at.
[[nodiscard]] Findings checkBrandLibrary(const ResourceLibrary& library);

[[nodiscard]] QString reinstallLibrary(); ///< The remedy for a library of the product.
/// The texts of a brand: company, product, full legal name.
[[nodiscard]] std::vector<LibraryText> brandTexts();
/// The product's other texts, which are in each language's library.
[[nodiscard]] std::vector<LibraryText> languageTexts();

} // namespace vruinfo::tool::doctor
