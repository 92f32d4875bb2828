// "FileOpen" and "FileSave": the platform's file chooser, titled with the
// host's message, filtered by "-fileFilter"; saving starts with "-filename"
// and asks before it replaces a file.
#pragma once

#include "protocol/Protocol.hpp"

#include <QFileDialog>
#include <QStringList>

namespace OrvelGui {

// "Documents (pdf,doc)|Text (txt)" as Qt name filters:
// "Documents (*.pdf *.doc)", "Text (*.txt)". Empty when every file fits.
QStringList qtNameFilters(const std::string &filterText);

class FileChooserWindow : public QFileDialog {
    Q_OBJECT
public:
    explicit FileChooserWindow(const Request &request, QWidget *parent = nullptr);
    bool hostGone() const { return hostGone_; }
    // The chosen file, absolute; empty before the user accepted.
    std::string chosenPath() const;

private:
    bool hostGone_ = false;
};

} // namespace OrvelGui
