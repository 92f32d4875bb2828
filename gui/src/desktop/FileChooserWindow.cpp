#include "desktop/FileChooserWindow.hpp"

#include "common/Texts.hpp"
#include "desktop/DesktopWindow.hpp"
#include "desktop/HostText.hpp"
#include "desktop/HostWatch.hpp"

#include <QDir>
#include <QFileInfo>
#include <QIdentityProxyModel>

namespace OrvelGui {
namespace {

// The names of the files in the folder as a view may show them (Qt's own
// chooser; a native panel shows its own names).
class VisibleFileNames : public QIdentityProxyModel {
public:
    using QIdentityProxyModel::QIdentityProxyModel;
    QVariant data(const QModelIndex &index, int role) const override
    {
        const QVariant value = QIdentityProxyModel::data(index, role);
        if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
            return value;
        return shownOnOneLine(value.toString().toStdString());
    }
};

} // namespace

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
            globs << QStringLiteral("*.") + shownOnOneLine(pattern);
        }
        QString name = shownOnOneLine(entry.name).trimmed();
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
    const std::string firstLine = request.message.substr(0, request.message.find('\n'));
    const QString message = shownOnOneLine(firstLine).left(120);
    setWindowTitle(message.isEmpty() ? title : message);
    setAccessibleName(title);
    setDirectory(QDir::current());
    const QStringList filters = qtNameFilters(request.fileFilter);
    if (!filterUnderstood(request.fileFilter))
        // Said where the file types are chosen; every file is shown.
        setNameFilter(qs(fill(t.filterNotUnderstood, {visibleText(request.fileFilter, LineBreaks::Mark).text})) +
                      QStringLiteral(" (*)"));
    else if (!filters.isEmpty())
        setNameFilters(filters);
    if (save) {
        setAcceptMode(QFileDialog::AcceptSave);
        setFileMode(QFileDialog::AnyFile);
        if (!request.fileName.empty())
            selectFile(qs(offeredAsShown(request.fileName)));
    } else {
        setAcceptMode(QFileDialog::AcceptOpen);
        setFileMode(QFileDialog::ExistingFile);
    }
    setProxyModel(new VisibleFileNames(this));
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
