// Outside text as the terminal shows it: through VisibleText, with every
// marker in reverse video, so that nothing the text holds can steer the
// terminal, hide or reorder what the user reads; and the styles of our own
// words (bold labels, dim notes).
#pragma once

#include "common/Texts.hpp"
#include "common/VisibleText.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace OrvelGui {

using Lines = std::vector<std::string>;

inline constexpr const char *kBold = "\x1b[1m";
inline constexpr const char *kDim = "\x1b[2m";
inline constexpr const char *kReverse = "\x1b[7m";
inline constexpr const char *kNormal = "\x1b[0m";
// Around a marker: reverse video on and off (the other styles stay).
inline constexpr std::string_view kMarkOn = "\x1b[7m";
inline constexpr std::string_view kMarkOff = "\x1b[27m";

std::string bold(const std::string &text);
// "Label:" in bold.
std::string label(const char *text);

// The text with its marks in reverse video and tabs as spaces; line feeds
// stay.
std::string styled(const VisibleText &text);
// An outside value on one line (line feeds shown as markers).
std::string oneLine(std::string_view outside);
// Each line of the text (styled) as a line of its own.
void addLines(Lines &lines, const VisibleText &text);
// The warning above a text that holds hidden characters; nothing when it
// holds none.
void addHiddenWarning(Lines &lines, const Texts &t, std::size_t hiddenCharacters);

} // namespace OrvelGui
