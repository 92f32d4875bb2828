// The room for the next reply. A reply may be tens of MiB; reading it into
// memory that an earlier reply already touched spares the first-touch page
// faults, which on our machines cost more than the read itself. One buffer is
// kept between dialogs, only up to a bound, and only while large replies keep
// coming.
#pragma once

#include <string>

namespace OrvelDialogs::Launcher {

// An empty string with the room that was kept (none at first, and none once
// several dialogs in a row had no large reply). Called once per dialog.
std::string takeReplyBuffer();

// Keeps the room of `buffer`, which still holds its reply, for the next reply
// when it is more than what is kept and within the bound; anything else is
// freed. Inside a secret scope the reply is wiped first.
void keepReplyBuffer(std::string &&buffer);

} // namespace OrvelDialogs::Launcher
