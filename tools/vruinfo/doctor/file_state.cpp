#include "doctor/file_state.h"

#include <array>
#include <cerrno>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "command_table.h"

namespace vruinfo::tool::doctor
{
namespace
{

using Kind = FileState::Kind;
using Status = struct stat;

bool mayBe(const QByteArray& path, int access)
{
    return faccessat(AT_FDCWD, path.constData(), access, AT_EACCESS) == 0;
}

Kind kindOfError(int error)
{
    const bool isNowhere = error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG;
    return isNowhere ? Kind::Missing : Kind::OutOfReach;
}

Kind kindOfMode(mode_t mode)
{
    if (S_ISREG(mode))
        return Kind::File;
    return S_ISDIR(mode) ? Kind::Directory : Kind::Other;
}

Kind kindOf(const QByteArray& path, Status& status)
{
    if (lstat(path.constData(), &status) != 0)
        return kindOfError(errno);
    if (!S_ISLNK(status.st_mode))
        return kindOfMode(status.st_mode);
    if (stat(path.constData(), &status) == 0)
        return kindOfMode(status.st_mode);
    return errno == EACCES ? Kind::OutOfReach : Kind::DanglingLink;
}

/// A file, opened and closed with the object.
class OpenFile final
{
public:
    // Not waiting for the other end of a pipe.
    explicit OpenFile(const QByteArray& path) :
        m_descriptor(open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY))
    {
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }

    [[nodiscard]] bool isPlain() const
    {
        Status status{};
        return m_descriptor >= 0 && fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
    }
    /// Up to its end; nothing when that lies behind `most` bytes.
    [[nodiscard]] std::optional<QByteArray> bytes(qint64 most) const
    {
        QByteArray all;
        std::array<char, 65536> piece; // NOLINT(cppcoreguidelines-pro-type-member-init) filled by the call
        ssize_t count = 0;
        while ((count = read(m_descriptor, piece.data(), piece.size())) > 0) {
            all.append(piece.data(), static_cast<int>(count));
            if (all.size() > most)
                return std::nullopt;
        }
        return count < 0 ? std::nullopt : std::optional<QByteArray>(all);
    }

private:
    int m_descriptor;
};

QString parentOf(const QString& path)
{
    const int slash = path.lastIndexOf(QLatin1Char('/'));
    return slash <= 0 ? QStringLiteral("/") : path.left(slash);
}

/// What can be seen at the path or, where there is nothing, right above.
QString nearestThere(const QString& path)
{
    QString nearest = path;
    for (;;) {
        const Kind kind = FileState::of(nearest).kind;
        if ((kind != Kind::Missing && kind != Kind::OutOfReach) || nearest == QLatin1String("/"))
            return nearest;
        nearest = parentOf(nearest);
    }
}

} // namespace

FileState FileState::of(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    Status status{};
    FileState state;
    state.kind = kindOf(name, status);
    const int enter = state.kind == Kind::Directory ? X_OK : 0;
    state.isReadable = mayBe(name, R_OK | enter);
    state.isWritable = mayBe(name, W_OK | enter);
    state.size = state.kind == Kind::File ? static_cast<qint64>(status.st_size) : 0;
    return state;
}

std::optional<QByteArray> bytesOf(const QString& path, qint64 most)
{
    const OpenFile file(QFile::encodeName(path));
    return file.isPlain() ? file.bytes(most) : std::nullopt;
}

std::optional<FileFault> faultOf(const QString& path)
{
    const FileState state = FileState::of(path);
    const QString moveAway = QStringLiteral("Move it away: mv %1 %1.old").arg(shellWord(path));
    switch (state.kind) {
    case Kind::Missing:
        return FileFault{"missing", QStringLiteral("is not there"), {}};
    case Kind::DanglingLink:
        return FileFault{"dangling-link", QStringLiteral("is a link to nothing"),
                         QStringLiteral("Make what it points to, or remove it: rm %1").arg(shellWord(path))};
    case Kind::OutOfReach:
        return FileFault{"unreadable", QStringLiteral("lies where this user may not look"),
                         QStringLiteral("Let this user enter the directories above %1.").arg(path)};
    case Kind::Directory:
        return FileFault{"not-a-file", QStringLiteral("is a directory"), moveAway};
    case Kind::Other:
        return FileFault{"not-a-file", QStringLiteral("is no plain file"), moveAway};
    default:
        break;
    }
    if (state.isReadable)
        return std::nullopt;
    return FileFault{"unreadable", QStringLiteral("cannot be read by this user"),
                     QStringLiteral("Let this user read it: chmod +r %1").arg(shellWord(path))};
}

std::optional<Finding> faultFinding(const QString& path, const FileWords& words)
{
    const std::optional<FileFault> fault = faultOf(path);
    if (!fault)
        return std::nullopt;
    const bool isMissing = fault->remedy.isEmpty();
    return Finding{isMissing ? words.whenMissing : words.otherwise, text(words.idPrefix) + text(fault->id), path,
                   QStringLiteral("It %1, %2.").arg(fault->words, text(words.consequence)),
                   isMissing ? words.remedyIfMissing : fault->remedy};
}

std::optional<Obstacle> obstacleTo(const QString& directory)
{
    const QString nearest = nearestThere(QDir::cleanPath(directory));
    const FileState state = FileState::of(nearest);
    if (state.kind == Kind::Directory && state.isWritable)
        return std::nullopt;
    if (state.kind == Kind::Directory)
        return Obstacle{nearest, QStringLiteral("cannot be written by this user"),
                        QStringLiteral("Let this user write there: chmod u+rwx %1, or give it to this user with chown.")
                            .arg(shellWord(nearest))};
    return Obstacle{nearest, QStringLiteral("is no directory"),
                    QStringLiteral("Move it away: mv %1 %1.old").arg(shellWord(nearest))};
}

QString shellWord(const QString& word)
{
    const auto isHarmless = [](QChar c) {
        const bool isLetter = c.isLetterOrNumber();
        return isLetter || QStringLiteral("/._-+@%:=").contains(c);
    };
    bool needsQuotes = word.isEmpty();
    for (const QChar c : word)
        needsQuotes = needsQuotes || !isHarmless(c);
    if (!needsQuotes)
        return word;
    return QLatin1Char('\'') + QString(word).replace(QLatin1Char('\''), QStringLiteral("'\\''")) + QLatin1Char('\'');
}

QString toolLine(const char* command, const QString& path)
{
    return QStringLiteral("%1 %2 %3").arg(text(kProgram), text(command), shellWord(path));
}

} // namespace vruinfo::tool::doctor
