// Exports as the tool reads them: what is taken is written so that it is taken again and is the same; what is refused
// is refused with a place in the file.
#include <sys/mman.h>
#include <unistd.h>

#include <QtCore/QJsonDocument>
#include <QtCore/QRegularExpression>

#include "export_file.h"
#include "fuzz_input.h"

using namespace vruinfo::tool;

namespace
{

class MemoryFile final
{
public:
    explicit MemoryFile(const QByteArray& bytes) : m_descriptor(memfd_create("export", MFD_CLOEXEC))
    {
        VR_HOLDS(m_descriptor >= 0 &&
                     write(m_descriptor, bytes.constData(), static_cast<std::size_t>(bytes.size())) == bytes.size(),
                 "a file can be made");
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(m_descriptor); }
    [[nodiscard]] QString name() const { return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor); }

private:
    int m_descriptor;
};

/// "<file>:<line>:<column>: <what>", within the text.
void checkPlace(const Problem& problem, const QString& name, const QByteArray& text)
{
    VR_HOLDS(problem.exit == Exit::Failed && !problem.text.isEmpty(), "a refusal says why");
    static const QRegularExpression kPlace(QStringLiteral("^:(\\d+):(\\d+): ."));
    const auto match = kPlace.match(problem.text.mid(name.size()));
    if (!problem.text.startsWith(name) || !match.hasMatch())
        return; // about the file as a whole
    const int line = match.captured(1).toInt();
    VR_HOLDS(line >= 1 && line <= text.count('\n') + 1, "the line of a refusal is one of the file");
    VR_HOLDS(match.captured(2).toInt() >= 1, "the column of a refusal begins with 1");
}

void checkAgain(const Place& place, const Snapshot& values)
{
    const QByteArray text = exportText(place, values);
    const MemoryFile file(text);
    const Result<ExportFile> again = ExportFile::read(file.name());
    VR_HOLDS(bool(again), "what was written is an export");
    VR_HOLDS(again->place().path() == place.path(), "the place comes back");
    const Result<Snapshot> back = again->valuesAt(again->place());
    VR_HOLDS(bool(back), "the values of what was written are taken");
    VR_HOLDS(*back == values, "the values come back");
    VR_HOLDS(exportText(place, *back) == text, "the same values have the same bytes");
}

void checkText(const QByteArray& text)
{
    const MemoryFile file(text);
    const Result<ExportFile> read = ExportFile::read(file.name());
    if (!read)
        return checkPlace(read.problem(), file.name(), text);
    VR_HOLDS(QJsonDocument::fromJson(text).isObject(), "an export is a JSON object");
    for (const Place& place : {read->place(), Place(QStringLiteral("Some/Where"))}) {
        const Result<Snapshot> values = read->valuesAt(place);
        if (!values)
            checkPlace(values.problem(), file.name(), text);
        else
            checkAgain(place, *values);
    }
}

} // namespace

/// Where a name is told twice in an object, and the first one's value is an object or an array, the parser of the
/// settings library never frees that. It is gone with the tool, which reads one file.
extern "C" const char* __lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier) the sanitizer's name
{
    return "leak:libQt5Core";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // As a part of each export is the same, an input may leave it out: a "+" stands for it.
    QByteArray text(reinterpret_cast<const char*>(data), static_cast<int>(size));
    if (text.startsWith('+'))
        text = R"({"format":"vruinfo-settings","version":1,"path":"/","values":[)" + text.mid(1) + "]}";
    checkText(text);
    return 0;
}
