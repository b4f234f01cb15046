// Repairing a settings file of the fuzzer's bytes: what the settings library calls damaged is repaired, what is
// repaired is whole, and what could be read before can be read after. (That the repair compares the two readings is its
// own rule; that it never has to give up, and comes to an end in one step, is tried here.)
#include <fstream>

#include <unistd.h>

#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>

#include "fuzz_input.h"
#include "provision/bounded_values.h"
#include "repair.h"
#include "rewritten.h"
#include "saved_form.h"
#include "stored_value.h"

using namespace vruinfo::tool;

namespace
{

/// Nothing can be read by such a name. (Nor can a value that this program does not know, such as a colour.)
bool hasEmptyPart(const QString& key)
{
    return key.split(QLatin1Char('/')).contains(QString());
}

struct Reading {
    QMap<QString, QVariant> values;
    bool isWhole = false;
};

/// The fuzzer ends without destroying what is static: each directory goes at once.
Reading readingOf(const QByteArray& bytes)
{
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("read.conf"));
    std::ofstream(file.toStdString(), std::ios::binary).write(bytes.constData(), bytes.size());
    const QSettings settings(file, QSettings::NativeFormat);
    Reading reading{};
    if (!vruinfo::internal::canTakeValuesApart(settings))
        return reading;
    for (const QString& key : settings.allKeys()) {
        if (!hasEmptyPart(key) && !isForeign(settings.value(key)))
            reading.values.insert(key, settings.value(key));
    }
    reading.isWhole = settings.status() == QSettings::NoError;
    return reading;
}

bool isKept(const QVariant& now, const QVariant& before)
{
    return StoredValue::isSame(now, before) || StoredValue::isSame(now, vrtest::rewritten(before));
}

/// How many texts may have become shorter: those that were closed.
void checkValues(const Reading& before, const Reading& after, std::size_t closed)
{
    std::size_t different = 0;
    for (auto value = before.values.cbegin(); value != before.values.cend(); ++value) {
        const auto now = after.values.constFind(value.key());
        VR_HOLDS(now != after.values.cend(), "a repair keeps every name");
        different += isKept(*now, *value) ? 0 : 1;
    }
    VR_HOLDS(different <= closed, "a repair changes no value but texts whose end was missing");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    setenv("TMPDIR", access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp", 1);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const Reading before = readingOf(bytes);
    const Result<Repair> repair = repairBytes(bytes);
    VR_HOLDS(bool(repair), "a repair can be made");
    VR_HOLDS(before.isWhole || repair->isDamaged, "what the settings library calls damaged is repaired");
    if (!repair->isDamaged) {
        VR_HOLDS(repair->lines.bytes == bytes, "what is not damaged stays as it is");
        return 0;
    }
    const Reading after = readingOf(repair->lines.bytes);
    VR_HOLDS(after.isWhole, "what is repaired is whole");
    checkValues(before, after, repair->lines.closed.size());
    const Result<Repair> again = repairBytes(repair->lines.bytes);
    VR_HOLDS(bool(again) && !again->isDamaged, "what is repaired is not damaged");
    return 0;
}
