// "ReinsertCard": the modeless notice. The host steers it through standard
// input ("insert", "remove", "close"); it ends on the close command or when
// the input ends. The user may hide it; it then still takes the commands to
// their end.
#pragma once

#include "desktop/DesktopWindow.hpp"
#include "protocol/FrontEnd.hpp"

class QLabel;
class QSocketNotifier;

namespace OrvelGui {

class ReinsertCardWindow : public DesktopWindow {
    Q_OBJECT
public:
    ReinsertCardWindow(const Request &request, ReinsertCommandReader &commands, GuiLog &log,
                       QWidget *parent = nullptr);
    // Shows the notice and returns once the commands have ended.
    Outcome run();
    bool hidden() const { return hidden_; }

protected:
    void reject() override;

private:
    void takeCommands();
    void showState(ReinsertCommand command);

    ReinsertCommandReader &commands_;
    GuiLog &log_;
    QLabel *state_ = nullptr;
    QSocketNotifier *notifier_ = nullptr;
    bool hidden_ = false;
    bool ended_ = false;
};

} // namespace OrvelGui
