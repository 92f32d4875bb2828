// Counts of what a test process holds, to show that nothing leaks.
#pragma once

namespace OrvelTest {

int openDescriptorCount();
// Children of this process, zombies included.
int childProcessCount();
// Children of this process that have exited but were not reaped.
int zombieChildCount();
// Waits (for ten seconds at most) until every child has exited.
bool childrenHaveExited();

} // namespace OrvelTest
