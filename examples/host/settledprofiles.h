#pragma once

namespace Host
{

// Makes the bytes of all registered profiles depend on their hash alone: blanks, in their headers, the date and the
// other fields that the hash leaves out. Those made by the library carry the time at which the process started, and of
// equal profiles in several pictures the one that came first stays; so without this a file that is written would
// depend on when the process was started and what it read before. To be called after pictures have been added to the
// store, before they are used. Any thread.
void settleProfiles();

} // namespace Host
