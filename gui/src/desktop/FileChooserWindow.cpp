#include "desktop/FileChooserWindow.hpp"

#include "common/Texts.hpp"
#include "desktop/DesktopWindow.hpp"
#include "desktop/HostWatch.hpp"

#include <QDir>
#include <QFileInfo>

namespace OrvelGui {

QStringList qtNameFilters(const std::string &filterText)
{
    QStringList filters;
    for (const FilterEntry &entry : filterEntries(filterText)) {
        if (entry.allFiles)
            return {}; // an entry for every file: no filter at all
        if (entry.patterns.empty())
            continue;
        QStringList globs;
        for (std::string pattern : entry.patterns) {
            if (pattern.starts_with("*."))
                pattern.erase(0, 2);
            else if (pattern.starts_with("."))
                pattern.erase(0, 1);
            globs << QStringLiteral("*.") + qs(pattern);
        }
        QString name = qs(entry.name).trimmed();
        if (name.isEmpty())
            name = globs.join(QLatin1Char(' '));
        filters << name + QStringLiteral(" (") + globs.join(QLatin1Char(' ')) + QLatin1Char(')');
    }
    return filters;
}

FileChooserWindow::FileChooserWindow(const Request &request, QWidget *parent) : QFileDialog(parent)
{
    const Texts &t = texts(request.language);
    const bool save = request.window == Window::FileSave;
    const QString title = qs(save ? t.titleSave : t.titleOpen);
    // The message names what the file is for; a long one would not fit a
    // title bar, so its first line is used.
    const QString message = qs(request.message).section(QLatin1Char('\n'), 0, 0).left(120);
    setWindowTitle(message.isEmpty() ? title : message);
    setAccessibleName(title);
    setDirectory(QDir::current());
    const QStringList filters = qtNameFilters(request.fileFilter);
    if (!filterUnderstood(request.fileFilter))
        // Said where the file types are chosen; every file is shown.
        setNameFilter(qs(fill(t.filterNotUnderstood, {request.fileFilter})) + QStringLiteral(" (*)"));
    else if (!filters.isEmpty())
        setNameFilters(filters);
    if (save) {
        setAcceptMode(QFileDialog::AcceptSave);
        setFileMode(QFileDialog::AnyFile);
        if (!request.fileName.empty())
            selectFile(qs(request.fileName));
    } else {
        setAcceptMode(QFileDialog::AcceptOpen);
        setFileMode(QFileDialog::ExistingFile);
    }
    auto *watch = new HostWatch(this);
    connect(watch, &HostWatch::hostGone, this, [this] {
        hostGone_ = true;
        reject();
    });
}

std::string FileChooserWindow::chosenPath() const
{
    const QStringList files = selectedFiles();
    if (files.isEmpty())
        return {};
    // The name as the file system holds it, byte for byte.
    return QFile::encodeName(QFileInfo(files.front()).absoluteFilePath()).toStdString();
}

} // namespace OrvelGui
