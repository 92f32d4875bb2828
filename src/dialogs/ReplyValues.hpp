// Values that the file and PKCS#12 dialogs take from the reply (Base64 of
// UTF-8 text) and copy into the host's buffers.
#pragma once

#include <string>
#include <string_view>

namespace OrvelDialogs::Dialogs {

// The text a value token stands for, up to its first zero character, in
// `value`; false when its bytes are not UTF-8 (logged, naming the window).
// Nothing of the value is left outside `value`, and the bytes cut off or
// refused are wiped, so that a secret value leaves no copy behind.
bool decodeReplyValue(std::string_view token, const std::string &windowName, std::string &value);

// Copies `value` and its terminating zero when it fits `size`: true, else
// false and nothing written.
bool copyToHostBuffer(const std::string &value, char *buffer, unsigned int size);

} // namespace OrvelDialogs::Dialogs
