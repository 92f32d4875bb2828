// "YesNoDialog": the question with Yes and No; "-button" names the default.
#pragma once

#include "desktop/DesktopWindow.hpp"

namespace OrvelGui {

class YesNoWindow : public DesktopWindow {
    Q_OBJECT
public:
    explicit YesNoWindow(const Request &request, QWidget *parent = nullptr);
    bool yes() const { return yes_; }

private:
    bool yes_ = false;
};

} // namespace OrvelGui
