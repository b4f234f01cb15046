// A start of the library in a process of its own, and what it told.
#pragma once

#include <vector>

#include <QtCore/QJsonObject>
#include <QtCore/QStringList>

#include "context.h"
#include "doctor/isolated.h"
#include "path_table.h"

namespace vruinfo::tool::doctor
{

class Trial final
{
public:
    /// Starts with the identity options, as a look does. No file changes: a lock file that was left behind stays, too.
    [[nodiscard]] static Trial of(const Context& context);

    [[nodiscard]] bool hasStarted() const { return m_outcome.isAnswered() && problem().isEmpty(); }
    [[nodiscard]] const Outcome& outcome() const { return m_outcome; }
    /// Why the start did not succeed, where it came to an end.
    [[nodiscard]] QString problem() const { return fact("problem"); }

    /// \name Facts of a start that succeeded; empty otherwise
    /// @{
    [[nodiscard]] QString product() const { return fact("product"); }
    [[nodiscard]] QString language() const { return fact("language"); }
    [[nodiscard]] QString version() const { return fact("version"); }
    [[nodiscard]] bool hasAsked() const { return isTrue("hasAsked"); } ///< The user would see a question.
    /// What the settings remember and the start did not take: "<path>: <reason>".
    [[nodiscard]] QStringList passedOver() const;
    [[nodiscard]] QString recordedProfile() const { return fact("recordedProfile"); }
    [[nodiscard]] QString profileItem() const { return fact("profileItem"); }
    [[nodiscard]] bool hasProfileItem() const { return isTrue("hasProfileItem"); }
    [[nodiscard]] std::vector<NamedPath> paths() const;
    [[nodiscard]] QString partnerLibrary() const { return fact("partnerLibrary"); } ///< As the settings name it.
    [[nodiscard]] QString styleFile() const { return fact("styleFile"); }           ///< Only one that is configured.
    [[nodiscard]] QString editorExtension() const { return fact("editorExtension"); }
    [[nodiscard]] bool isMigrationPending() const { return isTrue("isMigrationPending"); }
    /// @}

private:
    [[nodiscard]] QString fact(const char* key) const { return m_facts.value(text(key)).toString(); }
    [[nodiscard]] bool isTrue(const char* key) const { return m_facts.value(text(key)).toBool(); }

    Outcome m_outcome;
    QJsonObject m_facts;
};

} // namespace vruinfo::tool::doctor
