// A settings file that has every kind of value, and every file that differs from it by one damage.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include <QtCore/QSettings>
#include <QtCore/QString>
#include <QtCore/QVariant>

#include "provision/bounded_values.h"

namespace vrtest
{

/// As a user has it after a start, with values of each type and some of other programs.
inline const std::string kWholeFile = R"([General]
First=5$at the top

; written by hand
[Other]
Bytes=@ByteArray(a\0b\xff)
Colour=@Variant(\0\0\0\x43\x1\xff\xff\x12\x12\x34\x34VV\0\0)
List=one, "two; three", 4
Nothing=@Invalid()
Place=@Point(3 4)
Texts=@Variant(\0\0\0\v\0\0\0\x1\0\0\0\x2\0\x61)

[Software]
HALVIK\CurProduct=5$VORNA
HALVIK\VORNA\2026\CurVer=5$en-US
HALVIK\VORNA\2026\en-US\Profiles\Profiles=5$Default
HALVIK\VORNA\2026\en-US\Settings\Binary=4$00ff7f80
HALVIK\VORNA\2026\en-US\Settings\Double=3$182d4454fb210940
HALVIK\VORNA\2026\en-US\Settings\Empty=5$
HALVIK\VORNA\2026\en-US\Settings\Grid\Step=1$-17
HALVIK\VORNA\2026\en-US\Settings\Long=2$9223372036854775807
HALVIK\VORNA\2026\en-US\Settings\Text="5$a; b, c=d \"q\" \\ \n\xe4\x20ac\xd83d\xde00"
HALVIK\VORNA\2026\en-US\Settings\With%20blank%U20AC=5$x
)";

/// The settings library says much about damaged values of other programs.
inline void silenceWarnings()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}

/// The environment's number, for those who have more time than the tests of each change have.
inline std::size_t numberFrom(const char* variable, std::size_t otherwise)
{
    const char* const text = std::getenv(variable);
    return text ? std::strtoul(text, nullptr, 10) : otherwise;
}

struct Damage {
    enum class Kind { Cut, Flip };

    Kind kind = Kind::Cut;
    std::size_t place = 0; ///< The file ends before it, or the byte there is another one.
    unsigned int mask = 0; ///< What the byte is combined with.

    [[nodiscard]] std::string applied() const
    {
        std::string bytes = kWholeFile;
        if (kind == Kind::Cut)
            bytes.resize(place);
        else
            bytes[place] = static_cast<char>(static_cast<unsigned char>(bytes[place]) ^ mask);
        return bytes;
    }
    [[nodiscard]] std::string words() const
    {
        return kind == Kind::Cut ? "cut before byte " + std::to_string(place)
                                 : "byte " + std::to_string(place) + " with " + std::to_string(mask) + " flipped";
    }
};

/// Calls a function with every `step`th cut and flip of one bit or of all bits of a byte.
template <typename Function>
void forEachDamage(std::size_t step, const Function& function)
{
    constexpr unsigned int kAll = 0xFF;
    std::size_t index = 0;
    const auto call = [&](const Damage& damage) {
        if (index++ % step == 0)
            function(damage);
    };
    for (std::size_t place = 0; place <= kWholeFile.size(); ++place)
        call({Damage::Kind::Cut, place, 0});
    for (std::size_t place = 0; place < kWholeFile.size(); ++place) {
        for (unsigned int bit = 1; bit <= kAll; bit <<= 1U)
            call({Damage::Kind::Flip, place, bit});
        call({Damage::Kind::Flip, place, kAll});
    }
}

/// Writes a file that is a second younger than the one before, since the settings library reads one again only when its
/// size or time is another.
inline void writeDamaged(const std::filesystem::path& file, const std::string& bytes)
{
    static auto time = std::filesystem::file_time_type::clock::now();
    time += std::chrono::seconds(1);
    std::ofstream(file, std::ios::binary) << bytes;
    std::filesystem::last_write_time(file, time);
}

using Values = std::map<QString, QVariant>;

/// What the settings library reads by itself.
struct PlainReading {
    Values values;
    bool isWhole = false;
    bool isBounded = false; ///< With a value that asks for all the memory there is nothing can be read.

    static PlainReading of(const std::filesystem::path& file)
    {
        const QSettings settings(QString::fromStdString(file), QSettings::NativeFormat);
        PlainReading reading;
        reading.isBounded = vruinfo::internal::canTakeValuesApart(settings);
        if (!reading.isBounded)
            return reading;
        for (const QString& key : settings.allKeys()) {
            if (!key.split(QLatin1Char('/')).contains(QString()))
                reading.values[key] = settings.value(key);
        }
        reading.isWhole = settings.status() == QSettings::NoError;
        return reading;
    }
    [[nodiscard]] QVariant value(const QString& key) const
    {
        const auto found = values.find(key);
        return found == values.end() ? QVariant() : found->second;
    }
};

} // namespace vrtest
