#include <kiv/utility.h>

#include <exception>
#include <typeinfo>

#include <gtest/gtest.h>

#include <kiv/char16.h>

#include "platform/demangle.h"

namespace {

struct Local {};

TEST(TypeInfoName, IsReadable)
{
    EXPECT_EQ(kiv::type_info_name(typeid(kiv::char16)), "kiv::char16");
    EXPECT_EQ(kiv::type_info_name(typeid(Local)), "(anonymous namespace)::Local");
    EXPECT_EQ(kiv::platform::demangle(""), "");
    EXPECT_EQ(kiv::platform::demangle("not a mangled name"), "not a mangled name");
}

TEST(BadOptionalAccess, HasItsText)
{
    try {
        throw kiv::BadOptionalAccess();
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "bad optional access");
    }
}

TEST(Heap, NothingIsRecorded)
{
    namespace heap = kiv::heap;
    heap::StartRecording();
    EXPECT_FALSE(heap::IsRecording());
    // Never read: a pointer to nothing usable must do.
    heap::RegisterInterpreterCallbacks(reinterpret_cast<heap::InterpreterCallbacks*>(8));

    heap::HProfStats stats{~0ull, ~0ull};
    heap::GetStatistic(&stats);
    const auto [first, second] = stats;
    EXPECT_TRUE(first == 0 && second == 0);
    EXPECT_EQ(heap::NewCookie(), nullptr);
}

}  // namespace
