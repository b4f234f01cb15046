// Work that may end the process or never come to an end, done in a process of its own.
#pragma once

#include <functional>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include "doctor/finding.h"

namespace vruinfo::tool::doctor
{

struct Outcome {
    enum class End {
        Answered,
        Exited, ///< The work ended the process.
        Killed, ///< A signal did.
        TooLong,
        NotBegun, ///< The system has no room for another process.
    };

    End end = End::NotBegun;
    int code = 0;      ///< The exit code, or the signal's number.
    QByteArray answer; ///< Whole only when answered.
    QString words;     ///< What was said on standard error, in one line.

    [[nodiscard]] bool isAnswered() const { return end == End::Answered; }
    /// How it ended where that was not with an answer, behind "it": "ends the process with exit code 1".
    [[nodiscard]] QString ending() const;
};

/// Does the task in a child of this process, which has no standard input and prints nothing. It is ended when it takes
/// too long.
[[nodiscard]] Outcome runIsolated(const std::function<QByteArray()>& task);

/// A check done so. \param broken the finding when it does not come to an end; the outcome's ending is appended to its
/// meaning
[[nodiscard]] Findings checkIsolated(const std::function<Findings()>& check, Finding broken);

} // namespace vruinfo::tool::doctor
