#pragma once

#include <csetjmp>
#include <type_traits>

namespace Ondrel
{

// Runs a step that calls a C library whose errors leave by longjmp() to `landing`; false if one did. longjmp() runs no
// destructors, so the step owns nothing, and the owner of the library's structures lives outside it.
template <class Step>
[[nodiscard, gnu::noinline]] bool runWithLanding(std::jmp_buf& landing, Step step)
{
    static_assert(std::is_trivially_destructible_v<Step>);
    if (setjmp(landing))
        return false;
    step();
    return true;
}

} // namespace Ondrel
