// The readable text of the "-rtf" value: RTF markup with its control words,
// font and colour tables taken out, so that the user reads what is signed and
// not the markup around it.
#pragma once

#include <string>
#include <string_view>

namespace OrvelGui {

// Text that does not begin with "{\rtf" is returned as it is.
std::string rtfToPlainText(std::string_view rtf);

} // namespace OrvelGui
