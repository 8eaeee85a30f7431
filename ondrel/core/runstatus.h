#pragma once

namespace Ondrel
{
struct RunStatus {
    int const* state = nullptr;
};
} // namespace Ondrel
// use: int word = 0; Ondrel::RunStatus status{&word};
