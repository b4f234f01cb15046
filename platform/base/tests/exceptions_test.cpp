#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "VrPlatformBase/VrPlatformBase.h"

namespace
{

// Modules of other makes call these objects by slot number, hence the calls through the table itself.
template <typename Function>
Function slot(const void* object, std::size_t index)
{
    return reinterpret_cast<Function>((*static_cast<void* const* const*>(object))[index]);
}

using Destroy = void (*)(void*);
using Text = const wchar_t* (*)(const void*);
using Number = int (*)(const void*);

class Tracked final : public VrException
{
public:
    ~Tracked() override { ++destroyed; }
    const wchar_t* description() const override { return L"the description"; }
    int code() const override { return 4711; }
    const wchar_t* className() const override { return L"Tracked"; }

    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void* operator new(std::size_t /*size*/, void* place) { return place; }
    static void operator delete(void* memory)
    {
        ++deleted;
        ::operator delete(memory);
    }

    static int destroyed;
    static int deleted;
};

int Tracked::destroyed = 0;
int Tracked::deleted = 0;

TEST(VrExceptionTest, DescriptionIsEmptyCodeZeroAndClassItsOwnName)
{
    const VrException exception;
    EXPECT_STREQ(exception.description(), L"");
    EXPECT_EQ(exception.code(), 0);
    EXPECT_STREQ(exception.className(), L"VrException");
}

TEST(VrExceptionTest, SlotsAreDestructorsDescriptionCodeClassName)
{
    auto* object = new Tracked;
    EXPECT_STREQ(slot<Text>(object, 2)(object), L"the description");
    EXPECT_EQ(slot<Number>(object, 3)(object), 4711);
    EXPECT_STREQ(slot<Text>(object, 4)(object), L"Tracked");
    slot<Destroy>(object, 1)(object);
    EXPECT_EQ(Tracked::destroyed, 1);
    EXPECT_EQ(Tracked::deleted, 1);
}

TEST(VrExceptionTest, FirstSlotDestroysWithoutFreeing)
{
    alignas(Tracked) std::byte memory[sizeof(Tracked)];
    void* object = new (memory) Tracked;
    slot<Destroy>(object, 0)(object);
    EXPECT_EQ(Tracked::destroyed, 1);
    EXPECT_EQ(Tracked::deleted, 0);
}

TEST(VrExceptionWithMsgTest, CarriesCopiesOfMessageFileAndLine)
{
    std::wstring message = L"message \U0001F600";
    std::wstring file = L"file.cpp";
    const VrExceptionWithMsg exception(message.c_str(), file.c_str(), 42);
    message.assign(message.size(), L'x');
    file.assign(file.size(), L'x');
    EXPECT_STREQ(exception.description(), L"message \U0001F600");
    EXPECT_STREQ(exception.file(), L"file.cpp");
    EXPECT_EQ(exception.line(), 42);
}

TEST(VrExceptionWithMsgTest, NullTextsCountAsEmpty)
{
    const VrExceptionWithMsg exception(nullptr, nullptr, 0);
    EXPECT_STREQ(exception.description(), L"");
    EXPECT_STREQ(exception.file(), L"");
    EXPECT_EQ(exception.line(), 0);
}

TEST(VrExceptionWithMsgTest, CodeAndClassNameAreTheBases)
{
    const VrExceptionWithMsg exception(L"m", L"f", 1);
    EXPECT_EQ(exception.code(), 0);
    EXPECT_STREQ(exception.className(), L"VrException");
}

TEST(VrExceptionWithMsgTest, HasTheSlotsOfItsBase)
{
    auto* object = new VrExceptionWithMsg(L"a message that is too long to be stored inside a string object", L"f", 1);
    EXPECT_STREQ(slot<Text>(object, 2)(object), object->description());
    EXPECT_EQ(slot<Number>(object, 3)(object), 0);
    EXPECT_STREQ(slot<Text>(object, 4)(object), L"VrException");
    slot<Destroy>(object, 1)(object);
}

TEST(VrExceptionWithMsgTest, IsCaughtAsItsBaseAndCopied)
{
    std::unique_ptr<VrExceptionWithMsg> copy;
    try {
        throw VrExceptionWithMsg(L"thrown", L"f", 3);
    } catch (const VrException& caught) {
        copy = std::make_unique<VrExceptionWithMsg>(dynamic_cast<const VrExceptionWithMsg&>(caught));
    }
    ASSERT_TRUE(copy);
    EXPECT_STREQ(copy->description(), L"thrown");
    EXPECT_EQ(copy->line(), 3);
}

TEST(VrErrorStatusTest, CarriesStatusMessageAndLine)
{
    const VrErrorStatus error(0xFFFFFFFFU, L"message", -1);
    EXPECT_EQ(error.status(), 0xFFFFFFFFU);
    EXPECT_STREQ(error.message(), L"message");
    EXPECT_EQ(error.line(), -1);
}

TEST(VrErrorStatusTest, NullMessageCountsAsEmpty)
{
    EXPECT_STREQ(VrErrorStatus(6, nullptr, 0).message(), L"");
}

class Recorder final : public VrCrashRecorder
{
public:
    void begin() override { calls.emplace_back(L"begin"); }
    void recordMessage(const wchar_t* text) override { calls.emplace_back(text); }
    void end() override { calls.emplace_back(L"end"); }
    void recordError(VrErrorStatus* error) override
    {
        calls.emplace_back(L"error");
        recorded = error;
    }

    std::vector<std::wstring> calls;
    VrErrorStatus* recorded = nullptr;
};

class OnlyErrors final : public VrCrashRecorder
{
public:
    void recordError(VrErrorStatus* error) override { recorded = error; }
    VrErrorStatus* recorded = nullptr;
};

TEST(VrCrashRecorderTest, SlotsAreBeginMessageEndError)
{
    Recorder recorder;
    VrErrorStatus error(3, L"", 0);
    slot<void (*)(void*)>(&recorder, 0)(&recorder);
    slot<void (*)(void*, const wchar_t*)>(&recorder, 1)(&recorder, L"line");
    slot<void (*)(void*)>(&recorder, 2)(&recorder);
    slot<void (*)(void*, VrErrorStatus*)>(&recorder, 3)(&recorder, &error);
    EXPECT_EQ(recorder.calls, (std::vector<std::wstring>{L"begin", L"line", L"end", L"error"}));
    EXPECT_EQ(recorder.recorded, &error);
}

TEST(VrCrashRecorderTest, FirstThreeOperationsHaveBodiesThatDoNothing)
{
    OnlyErrors recorder;
    recorder.begin();
    recorder.recordMessage(L"line");
    recorder.recordMessage(nullptr);
    recorder.end();
    EXPECT_EQ(recorder.recorded, nullptr);
}

TEST(VrCrashRecorderTest, NoneIsInstalledAtFirst)
{
    EXPECT_EQ(vornGetCrashRecorder(), nullptr);
}

TEST(VrCrashRecorderTest, SettingReturnsTheFormerOne)
{
    Recorder first;
    OnlyErrors second;
    EXPECT_EQ(vornSetCrashRecorder(&first), nullptr);
    EXPECT_EQ(vornGetCrashRecorder(), &first);
    EXPECT_EQ(vornSetCrashRecorder(&second), &first);
    EXPECT_EQ(vornSetCrashRecorder(nullptr), &second);
    EXPECT_EQ(vornGetCrashRecorder(), nullptr);
}

TEST(VrCrashRecorderTest, InstalledOneIsSeenByOtherThreads)
{
    Recorder recorder;
    vornSetCrashRecorder(&recorder);
    VrCrashRecorder* seen = nullptr;
    std::thread([&] { seen = vornGetCrashRecorder(); }).join();
    vornSetCrashRecorder(nullptr);
    EXPECT_EQ(seen, &recorder);
}

std::unique_ptr<VrErrorStatus> raisedError(unsigned int status, const wchar_t* message, int line)
{
    try {
        VrRaiseErrorStatus(status, message, line);
    } catch (VrErrorStatus* error) { // NOLINT(misc-throw-by-value-catch-by-reference) what is promised
        return std::unique_ptr<VrErrorStatus>(error);
    }
    return nullptr;
}

TEST(VrRaiseErrorStatusTest, ThrowsAPointerThatTheCatcherDeletes)
{
    const std::unique_ptr<VrErrorStatus> error = raisedError(6, L"\"\"", 12);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->status(), 6U);
    EXPECT_STREQ(error->message(), L"\"\"");
    EXPECT_EQ(error->line(), 12);
}

TEST(VrRaiseErrorStatusTest, RecorderGetsTheSameObjectOnly)
{
    Recorder recorder;
    vornSetCrashRecorder(&recorder);
    const std::unique_ptr<VrErrorStatus> error = raisedError(3, nullptr, 0);
    vornSetCrashRecorder(nullptr);
    EXPECT_EQ(recorder.recorded, error.get());
    EXPECT_EQ(recorder.calls, std::vector<std::wstring>{L"error"});
}

class ThrowingRecorder final : public VrCrashRecorder
{
public:
    [[noreturn]] void recordError(VrErrorStatus* /*error*/) override { throw VrException(); }
};

TEST(VrRaiseErrorStatusTest, ErrorIsFreedWhenTheRecorderThrows)
{
    ThrowingRecorder recorder;
    vornSetCrashRecorder(&recorder);
    EXPECT_THROW(VrRaiseErrorStatus(3, L"freed, as the leak checker sees", 0), VrException);
    vornSetCrashRecorder(nullptr);
}

} // namespace
