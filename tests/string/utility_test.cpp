#include <kiv/utility.h>

#include <sstream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include <gtest/gtest.h>

#include <kiv/char16.h>

#include "platform/demangle.h"

namespace {

struct Local {};

TEST(TypeInfoName, IsReadable)
{
    EXPECT_EQ(kiv::type_info_name(typeid(int)), "int");
    EXPECT_EQ(kiv::type_info_name(typeid(kiv::char16)), "kiv::char16");
    EXPECT_EQ(kiv::type_info_name(typeid(std::vector<const char*>)),
              "std::vector<char const*, std::allocator<char const*> >");
    EXPECT_EQ(kiv::type_info_name(typeid(Local)), "(anonymous namespace)::Local");
}

TEST(TypeInfoName, OddNamesComeBackAsTheyAre)
{
    EXPECT_EQ(kiv::platform::demangle(""), "");
    EXPECT_EQ(kiv::platform::demangle("not a mangled name"), "not a mangled name");
}

TEST(BadOptionalAccess, HasItsText)
{
    using Error = kiv::BadOptionalAccess;
    static_assert(std::is_base_of_v<std::exception, Error>);
    static_assert(std::is_nothrow_copy_constructible_v<Error> &&
                  sizeof(Error) == sizeof(std::exception));
    const Error first;
    Error copy(first);
    EXPECT_EQ(&(copy = first), &copy);
    EXPECT_STREQ(first.what(), "bad optional access");
    EXPECT_STREQ(copy.what(), "bad optional access");
    try {
        throw copy;
    } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "bad optional access");
    }
}

TEST(Heap, NothingIsRecorded)
{
    namespace heap = kiv::heap;
    heap::StartRecording();
    EXPECT_FALSE(heap::IsRecording());
    heap::SetDumpAddr(true);
    // Never read: a pointer to nothing usable must do.
    heap::RegisterInterpreterCallbacks(reinterpret_cast<heap::InterpreterCallbacks*>(8));

    static_assert(sizeof(heap::HProfStats) == 16 &&
                  std::is_trivially_copyable_v<heap::HProfStats>);
    heap::HProfStats stats{~0ull, ~0ull};
    heap::GetStatistic(&stats);
    const auto [first, second] = stats;
    EXPECT_TRUE(first == 0 && second == 0);

    std::ostringstream os;
    os.width(7);
    os.setstate(std::ios_base::failbit);
    heap::DumpProfile(os);
    EXPECT_EQ(os.str(), "");
    EXPECT_EQ(os.rdstate(), std::ios_base::failbit);
    EXPECT_EQ(os.width(), 7);

    heap::StopRecording();
    heap::ResetRecording();
    EXPECT_FALSE(heap::IsRecording());
    EXPECT_EQ(heap::NewCookie(), nullptr);
}

}  // namespace
