#pragma once

#include <string>

namespace OrvelTest {

// A new empty directory under $TMPDIR (or /tmp).
std::string makeTempDir();
void removeTree(const std::string &path);

} // namespace OrvelTest
