// The GUI application's own diagnostic log. It travels back to the host inside
// the reply (after "-log", Base64), where the library appends it to its log.
#pragma once

#include <string>
#include <string_view>

namespace OrvelGui {

class GuiLog {
public:
    void add(std::string_view entry)
    {
        text_.append(entry);
        text_.push_back('\n');
    }
    const std::string &text() const { return text_; }

private:
    std::string text_;
};

} // namespace OrvelGui
