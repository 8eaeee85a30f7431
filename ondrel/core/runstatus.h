#pragma once

namespace Ondrel
{

// How the owner of a long operation asks it to stop. `state` points to a word of the owner: 1 asks to stop, every other
// value, and a null pointer, means to go on. The owner may set the word from any thread while the operation runs; it
// must live as long. Nothing in the library writes it.
//
//     int word = 0;
//     const Ondrel::RunStatus status{&word};
struct RunStatus {
    int const* state = nullptr;
};

} // namespace Ondrel
