#pragma once

#include <version>

// What the sources use of C++20 and LLVM 14's library lacks; included ahead of each of them.

#if !defined(__cpp_lib_bit_cast)
namespace std
{
template <class To, class From>
constexpr To bit_cast(const From& from) noexcept
{
    return __builtin_bit_cast(To, from);
}
} // namespace std
#endif
