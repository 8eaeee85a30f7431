#pragma once

#include <gtest/gtest.h>

#include <hwy/targets.h>

namespace OndrelTest
{

// Calls body() once for every instruction level that this processor has and the library was compiled for.
template <typename Body>
void forEveryInstructionLevel(Body body)
{
    for (const auto target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        SCOPED_TRACE(hwy::TargetName(target));
        body();
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

} // namespace OndrelTest
